#pragma once

// What the parts of clsDBConn share.

#include "platform/ado/catalog.h"
#include "platform/ado/command.h"
#include "platform/ado/connection.h"
#include "platform/ado/error.h"
#include "platform/ado/recordset.h"
#include "store/clsDBConn.h"

#include <array>
#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <vector>

namespace scripts {
class cls_script;
class cls_script_coll;
} // namespace scripts

namespace store {

/// A row of Sets, with what was completed in memory.
struct Set_Row {
    std::optional<std::int32_t> SetID;
    QString Name;
    std::optional<std::int32_t> Nummer;
    std::optional<std::int32_t> ResCV;
};

struct clsDBConn::Inside : ado::Row_Watcher {
    explicit Inside(files::Disk& disk_);

    files::Disk& disk;
    ado::Connection connection;
    std::array<ado::Command, 3> commands; ///< for queries inside queries
    ado::Recordset recordset;
    ado::Catalog catalog;

    bool active = false;
    bool is_library = false; ///< Sets is there
    bool lacks_cvs = false;
    Trouble no_library; ///< why is_library is not set
    QString file;
    std::optional<files::Identity> identity;   ///< of the file that is open
    std::optional<files::Identity> file_now(); ///< which the path names by now
    std::int32_t akt_set = 0;
    bool ldb_beside = false;

    std::optional<Trouble> trouble;
    int sets_in_no_view = 0;
    /// Numbers and reset CVs that a library would hold if it could be written, by SetID.
    std::map<std::int32_t, Set_Row> completed;

    std::vector<CVRec> picture; ///< rows between DB_Open_CVs and DB_Close_CVs
    std::size_t next_in_picture = 0;

    void note(Failure kind, const QString& subject, const QString& detail);
    void note(const ado::Error& error);
    bool expect_library();        ///< @return false: there is none, and why is noted
    Failure without_sets() const; ///< why there are none
    Lost_End lost_end() const;
    Blocked blocked() const;

    // Operations; see clsDBConn_operation.cpp
    Change_Listener* listener = nullptr;
    std::optional<ado::Transaction> transaction;
    Change_Record record;
    int depth = 0;
    bool spoiled = false;
    bool lost = false; ///< the path names another file by now: to be closed after the operation

    std::int32_t set_there = 0; ///< seen by this operation, in which nobody else can delete it
    bool begin();               ///< @return false: nothing can be changed, and why is noted
    void begin_lost();          ///< an operation in which nothing is done
    bool end(bool keep);
    void row_changed(const QString& table, const ado::Row& before, const ado::Row& after) override;
    void replay(const Row_Change& change);
    void note_doubles(); ///< in the record
    static QString table_name(const Row_Change& change);
    void leave_lost_file();
    void close();

    Before_First_Write* keeper = nullptr;
    std::optional<bool> copy_kept; ///< nothing: not asked for since the library was opened
    bool keep_copy();              ///< @return whether an old file may be upgraded

    /// Runs work under one shared lock; an error ends it and is noted. @return whether it ran to
    /// its end.
    template <class Work>
    bool reading(ado::Extent extent, Work work) {
        if (!active) return false;
        try {
            const ado::Reading guard(connection, extent);
            work();
            return true;
        } catch (const ado::Error& error) {
            note(error);
            // an operation must not go on with what it only believes to have read
            spoiled = spoiled || (depth > 0 && !is_refusal(error.kind));
        }
        leave_lost_file();
        return false;
    }

    /// Runs work as one operation. A refusal ends it and keeps what was changed before; any other
    /// error rolls everything back. @return whether it ran to its end and is kept.
    template <class Work>
    bool changing(Work work) {
        if (!begin()) return false;
        bool done = false;
        try {
            work();
            done = true;
        } catch (const ado::Error& error) {
            note(error);
            spoiled = spoiled || !is_refusal(error.kind);
        } catch (...) { // a fault of ours
            end(false);
            throw;
        }
        return end(true) && done;
    }
    /// The same, if a set is current.
    template <class Work>
    bool changing_current_set(Work work) {
        if (active && akt_set == 0 && expect_library())
            note(Failure::no_set, file, QStringLiteral("no current set"));
        return akt_set != 0 && changing(work);
    }
    /// Runs work of which half would be a loss: when it is refused after its first change, the
    /// outermost operation is rolled back.
    template <class Work>
    void whole(Work work) {
        const std::size_t before = record.rows.size();
        try {
            work();
        } catch (const ado::Error&) {
            spoiled = spoiled || record.rows.size() > before;
            throw;
        }
    }
    static bool is_refusal(ado::Failure kind);

    /// Opens a query in the shared recordset.
    ado::Recordset& query(const QString& sql, std::vector<QString> wanted = {});
    int execute(const QString& sql);
    int width(QLatin1StringView table, QLatin1StringView column);

    void look_for_library();
    void upgrade();
    void make_current(std::int32_t SetID) {
        if (SetID > 0) akt_set = SetID;
    }

    // Sets
    Set_Row set_row(ado::Recordset& rows);
    void visit_sets(const std::function<void(const Set_Row&)>& visit); ///< in table order
    std::optional<Set_Row> find_set(std::int32_t id);
    void store_repair(const Set_Row& repair);
    void complete(const Set_Row& repair);
    /// Throws when rows of other tables forbid to delete a set, before anything is deleted.
    void refuse_if_referred(std::int32_t set_id);
    static ado::Error gone(const QString& table, std::int32_t key);

    // CVs
    void fill_cvs(cls_CV_Set& set);
    std::vector<CVRec> cvs_of(std::int32_t set_id);
    void delete_rows(const QString& sql);

    // Scripts
    void load_states(scripts::cls_script& script);
    void load_scripts(scripts::cls_script_coll& into, std::int32_t set_id, bool with_names);
    /// Runs work on the row of a script, if there is one.
    void with_script_row(std::int32_t script_id, const std::function<void(ado::Recordset&)>& work);
    void delete_script(std::int32_t script_id);
    void delete_scripts_of(std::int32_t set_id);
    /// Runs work on a script of AktScripts as one operation of the current set.
    bool changing_script(std::int32_t position,
                         const std::function<void(scripts::cls_script&)>& work);
};

/// Columns that are read of each row of Sets.
std::vector<QString> set_columns();

} // namespace store
