#pragma once

#include "platform/files/disk.h"
#include "store/Before_First_Write.h"
#include "store/CVRec.h"
#include "store/List_Filler.h"
#include "store/changes.h"
#include "store/cls_Sets_Coll.h"
#include "store/trouble.h"

#include <QString>

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <vector>

namespace scripts {
class cls_Script_Sets;
}

namespace store {

class Library_Operation;

/// The program's only access to a library of CV sets.
///
/// Nothing here throws. An operation that cannot do its work does nothing, or ends where it was,
/// and keeps the reason in last_trouble(); with no database open, each returns 0, false or an empty
/// text. Each operation that changes something is one transaction on disk and reaches the
/// Change_Listener once; several of them become one inside an Operation.
///
/// A library that cannot be written reads as if the missing numbers, reset CVs, columns and tables
/// had been added.
class clsDBConn {
public:
    explicit clsDBConn(files::Disk& disk = files::real_disk());
    clsDBConn(const clsDBConn&) = delete;
    clsDBConn& operator=(const clsDBConn&) = delete;
    ~clsDBConn(); ///< closes

    // Opening and closing

    /// Opens a library and closes the one before. Adds the tables and columns that an old file
    /// lacks. On failure none is open. Sets AktCVSetID to 0 and empties AktScripts, as closing
    /// does.
    void Connection_Start(const QString& FileName);
    void Connection_Close();
    bool Connection_Active() const;
    /// Whether there are CV sets in it, so that it is no database of another kind.
    bool is_library() const;
    /// The same for a command that needs them: if there are none, why is noted.
    [[nodiscard]] bool expect_library();
    QString database_file() const; ///< as given to the last Connection_Start
    /// Whether a path leads to the open library or to its journal, also by a link or another name.
    bool is_its_file(const QString& path) const;
    /// How the open library was found. `blocked` is brought up to date with what was met since.
    Opening opening() const;
    /// Whether changing operations can succeed at all.
    bool writable() const;

    /// SetID of the set that the user works on; 0: none. Operations that take a SetID greater than
    /// 0 store it here; with 0 they work on the set already current.
    std::int32_t AktCVSetID() const;
    void AktCVSetID(std::int32_t SetID);

    /// Differs whenever another copy of the program or somebody else may have changed rows since it
    /// was last asked for. @return nothing: the library cannot be looked at, and why is noted
    std::optional<std::uint64_t> foreign_changes();

    // Troubles and counts for the status bar

    /// The latest reason for not having done something; stays until it is taken or a newer comes.
    const std::optional<Trouble>& last_trouble() const;
    std::optional<Trouble> take_trouble();
    /// Sets with a reset CV other than 8 and 265, which no view shows; at the last set list.
    int sets_in_no_view() const;
    /// Sets whose missing number or reset CV was completed in memory only.
    int sets_completed_in_memory() const;

    /// Longest text that fits, in characters; 0 when no database is open. A wider column (memo)
    /// counts as 255.
    int set_name_width() const;
    int script_name_width() const;
    int script_info_width() const;

    /// Each is told in the order in which they came. Must outlive the connection or be taken off.
    void listen(Change_Listener& listener);
    void unlisten(Change_Listener& listener);
    /// At most one; nullptr: no copies are kept. Must outlive the connection or be taken off.
    void keep_copies(Before_First_Write* keeper);

    /// Brings rows from what they were before to what they were after, one after the other, with
    /// their keys and all of their columns. All or nothing, and only if each row still is as it was
    /// before. The reason for not doing it is noted as a trouble. Not inside an Operation.
    /// @param odd what rows that come back find as it was
    [[nodiscard]] Replayed replay(const std::vector<Row_Change>& changes, const Oddities& odd);

    // Sets

    /// Entries "Nummer - Name" of the sets of a reset CV, in table order, with the SetID. Stores
    /// the missing numbers and reset CVs that it shows.
    void Fill_Sets_in_Listbox(List_Filler& list, std::int16_t ResCV);
    /// The whole library. Missing numbers are completed, not stored.
    void Fill_Sets_in_SetObj(cls_Sets_Coll& sets);
    /// Number of a set, a running number where it has none; 0 when there is no such set.
    std::int16_t Get_Set_Nummer(std::int32_t SetID);
    /// The same where a file stores a number of more than 16 bits: as the list shows it.
    std::int32_t number_of_set(std::int32_t SetID);
    /// The stored number; 0 when it is missing.
    std::int16_t Get_Set_Nummer2(std::int32_t SetID);
    std::int16_t Get_Anz_CVSets();
    QString Get_Set_Name(std::int32_t SetID);
    /// Reset CV of a set, 8 where it has none; 0 when there is no such set. Changes no current set.
    std::int16_t reset_cv(std::int32_t SetID);

    /// @param Nummer 0 becomes the next free number of that reset CV
    /// @return the new SetID; 0 when it was not added. The current set stays.
    [[nodiscard]] std::int32_t DB_Add_CVSet(const QString& Name, std::int16_t& Nummer,
                                            std::int16_t ResCV);
    /// Highest number of the sets of a reset CV + 1, at least 10 (ResCV 8) or 1 (others).
    std::int16_t DB_Get_Free_SetNr(std::int16_t ResCV);
    /// Names the current set anew. @param Nummer 0 keeps the number
    [[nodiscard]] bool DB_Rename_CVSet(const QString& Name, std::int16_t Nummer);
    /// Whether somebody else has deleted a set; false also where that cannot be read.
    bool set_gone(std::int32_t SetID);
    /// Deletes a set with its CVs, its scripts and their states. No set is current then.
    /// @return false also when there was nothing to delete, and that is noted
    [[nodiscard]] bool DB_Del_CVSet(std::int32_t SetID);

    // CVs

    /// Entries of the CVs of a set by page and number, with the CVID. @return how many (at most
    /// 32767)
    std::int16_t Fill_CVs_in_Listbox(List_Filler& list, std::int32_t SetID);
    /// @return false also when there is no such row, and that is noted
    [[nodiscard]] bool DB_Del_CVWert(std::int32_t CVID);
    /// Adds or overwrites a CV of the current set, and fills its CVID. A CV that is not paged goes
    /// to page 0:1, which the caller sees.
    [[nodiscard]] bool DB_Write_CV(CVRec& rec);
    /// Looks in the current set for the CV of this page and number and fills value and key.
    /// @return false, with `rec` as it was, when there is none
    [[nodiscard]] bool DB_Find_CV(CVRec& rec);
    /// All zero when there is no such row.
    CVRec DB_Get_CV(std::int32_t CVID);
    /// Takes a picture of the CVs of a set, by page and number, for DB_Next_CV. @return how many
    /// (at most 32767). Other operations may run meanwhile and do not change the picture.
    std::int16_t DB_Open_CVs(std::int32_t SetID);
    /// The next row of the picture; all zero after the last one and when none is open.
    CVRec DB_Next_CV();
    void DB_Close_CVs();
    /// The CVs of a set at once. Changes no current set.
    std::vector<CVRec> cvs_of(std::int32_t SetID);

    // Scripts; a position counts from 1 in AktScripts. Operations go by the keys of the script there:
    // they refuse when it belongs to another set than the current one, or is gone.

    /// The scripts of all sets, without names. A set that is gone has the Nummer 0.
    void Fill_Scripts_in_ScriptsObj(scripts::cls_Script_Sets& sets);
    /// The scripts of the current set into AktScripts.
    void DB_Load_Scripts();
    /// Adds the row of a script to the current set and notes its new ScriptID in it; its states are
    /// stored with DB_Save_Script_States. Refuses (changed) when somebody else has added or deleted
    /// scripts of the set since they were loaded.
    [[nodiscard]] bool DB_Add_Script(std::int32_t position);
    /// Refuses (changed) when positions no longer name the scripts that were loaded.
    [[nodiscard]] bool expect_script_positions();
    /// Makes the stored states those of the script: equal rows stay, others change in place, missing
    /// ones are added and surplus ones go; numbers outside 0..255 stay. Every row is checked before
    /// anything is changed. Refuses (changed) when they are no longer those that were loaded.
    [[nodiscard]] bool DB_Save_Script_States(std::int32_t position);
    [[nodiscard]] bool DB_Rename_Script(std::int32_t position);
    /// Deletes a script with its states; it stays in AktScripts.
    [[nodiscard]] bool DB_Delete_Script(std::int32_t position);
    std::int32_t DB_Count_Scripts(std::int32_t SetID);
    /// Empty when there is no such script.
    QString script_name(std::int32_t ScriptID);
    /// The set of a script; 0 when there is no such script.
    std::int32_t set_of_script(std::int32_t ScriptID);

    Library_Operation& operation(); ///< what Operation begins and ends

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

/// Several operations as one: one transaction, one change record. What was not kept at its end is
/// rolled back. A refusal inside ends only the refused operation; a failure of disk, lock or file
/// spoils the whole: the following operations do nothing and keep() fails; so does one that could
/// not begin.
class Operation {
public:
    [[nodiscard]] explicit Operation(clsDBConn& connection);
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;
    ~Operation();
    /// Ends it, an outermost one on disk. @return whether everything is kept
    [[nodiscard]] bool keep();

private:
    Library_Operation& running_;
    bool open_ = true;
};

/// The one connection of the program, made on first use.
clsDBConn& DBConn();

/// Value of a CV of the connection's current set on page 0:1; 0 when the set does not have it. What
/// scripts show and simulate.
std::int16_t Get_CV_Wert(clsDBConn& connection, std::int16_t CVNr);

} // namespace store
