#include "store/clsDBConn.h"

#include "platform/failure/sure.h"
#include "scripts/cls_script_coll.h"
#include "store/library_cvs.h"
#include "store/library_schema.h"
#include "store/library_scripts.h"
#include "store/library_sets.h"
#include "store/row_restore.h"

#include <tuple>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace store {

struct clsDBConn::Parts {
    explicit Parts(files::Disk& disk) : file(disk), operation(file, [this] { close(); }) {}

    /// What is told before says nothing about the next library.
    void close() {
        operation.forget();
        cvs.close();
        sets.forget();
        file.close();
        akt_set = 0;
        scripts::AktScripts().Clear();
        operation.tell_left();
    }
    /// The set to work on; a SetID greater than 0 makes it the current one.
    std::int32_t current(std::int32_t SetID) {
        if (SetID > 0) akt_set = SetID;
        return akt_set;
    }

    Library_File file;
    Library_Operation operation;
    Library_Schema schema{operation};
    Library_Sets sets{operation};
    Library_Cvs cvs{operation};
    Library_Scripts scripts{operation};
    std::int32_t akt_set = 0;
};

clsDBConn::clsDBConn(files::Disk& disk) : parts_(std::make_unique<Parts>(disk)) {}

clsDBConn::~clsDBConn() {
    parts_->operation.forget();
    parts_->file.close();
}

void clsDBConn::Connection_Start(const QString& FileName) {
    Connection_Close();
    parts_->file.open(FileName);
    if (parts_->file.active()) parts_->schema.upgrade();
}

void clsDBConn::Connection_Close() { parts_->close(); }

bool clsDBConn::Connection_Active() const { return parts_->file.active(); }

bool clsDBConn::is_library() const { return parts_->file.is_library(); }

bool clsDBConn::expect_library() { return parts_->file.expect_library(); }

QString clsDBConn::database_file() const { return parts_->file.path(); }

bool clsDBConn::is_its_file(const QString& path) const { return parts_->file.is_its(path); }

Opening clsDBConn::opening() const { return parts_->file.opening(); }

bool clsDBConn::writable() const {
    return parts_->file.active() && parts_->file.blocked() == Blocked::no;
}

std::optional<std::uint64_t> clsDBConn::foreign_changes() {
    std::optional<std::uint64_t> count;
    parts_->operation.reading(ado::Extent::some, [&] {
        parts_->file.expect_same_file();
        count = parts_->file.connection().foreign_changes();
    });
    return count;
}

std::int32_t clsDBConn::AktCVSetID() const { return parts_->akt_set; }

void clsDBConn::AktCVSetID(std::int32_t SetID) { parts_->akt_set = SetID; }

const std::optional<Trouble>& clsDBConn::last_trouble() const { return parts_->file.trouble; }

std::optional<Trouble> clsDBConn::take_trouble() {
    return std::exchange(parts_->file.trouble, std::nullopt);
}

int clsDBConn::sets_in_no_view() const { return parts_->sets.in_no_view(); }

int clsDBConn::sets_completed_in_memory() const { return parts_->sets.completed_in_memory(); }

int clsDBConn::set_name_width() const { return parts_->schema.width("Sets"_L1, "Name"_L1); }

int clsDBConn::script_name_width() const {
    return parts_->schema.width("Scripte"_L1, "ScriptName"_L1);
}

int clsDBConn::script_info_width() const {
    return parts_->schema.width("Scriptstates"_L1, "Info"_L1);
}

void clsDBConn::listen(Change_Listener& listener) { parts_->operation.listen(listener); }

void clsDBConn::unlisten(Change_Listener& listener) { parts_->operation.unlisten(listener); }

void clsDBConn::keep_copies(Before_First_Write* keeper) { parts_->operation.keeper = keeper; }

Replayed clsDBConn::replay(const std::vector<Row_Change>& changes, const Oddities& odd) {
    const std::vector<Row_Change> all = net(changes);
    const bool current_set_goes = going(all, Table::Sets).contains(parts_->akt_set);
    const Replayed result = restore_rows(parts_->operation, changes, all, odd);
    if (result == Replayed::done && current_set_goes) parts_->akt_set = 0;
    return result;
}

void clsDBConn::Fill_Sets_in_Listbox(List_Filler& list, std::int16_t ResCV) {
    if (parts_->file.active()) parts_->sets.fill(list, ResCV);
}

void clsDBConn::Fill_Sets_in_SetObj(cls_Sets_Coll& sets) {
    if (!parts_->file.active()) return;
    sets.Clear();
    sets.CVs_Left_Out = 0;
    parts_->operation.reading(ado::Extent::whole, [&] {
        Running_Number numbers;
        parts_->sets.visit([&](const Set_Row& row) {
            const std::int32_t number = numbers.visit(row.Nummer);
            if (!row.SetID || sets.contains(QString::number(*row.SetID))) return;
            sets.Add_CVSet(row.Name, to_16_bits(row.ResCV.value_or(8)), to_16_bits(number),
                           *row.SetID);
        });
        for (const auto& set : sets) {
            parts_->cvs.fill(*set);
            sets.CVs_Left_Out += set->CVs_Left_Out;
        }
    });
}

std::int16_t clsDBConn::Get_Set_Nummer(std::int32_t SetID) {
    return to_16_bits(number_of_set(SetID));
}

std::int32_t clsDBConn::number_of_set(std::int32_t SetID) {
    return parts_->file.active() ? parts_->sets.number(parts_->current(SetID)) : 0;
}

std::int16_t clsDBConn::Get_Set_Nummer2(std::int32_t SetID) {
    if (!parts_->file.active()) return 0;
    const auto found = parts_->sets.find(parts_->current(SetID));
    return found ? to_16_bits(found->Nummer.value_or(0)) : std::int16_t{0};
}

QString clsDBConn::Get_Set_Name(std::int32_t SetID) {
    if (!parts_->file.active()) return {};
    const auto found = parts_->sets.find(parts_->current(SetID));
    return found ? found->Name : QString();
}

std::int16_t clsDBConn::reset_cv(std::int32_t SetID) {
    const auto found = parts_->sets.find(SetID);
    return found ? to_16_bits(found->ResCV.value_or(8)) : std::int16_t{0};
}

std::int16_t clsDBConn::Get_Anz_CVSets() { return to_16_bits(parts_->sets.count()); }

std::int16_t clsDBConn::DB_Get_Free_SetNr(std::int16_t ResCV) {
    return parts_->file.active() ? parts_->sets.free_number(ResCV) : std::int16_t{0};
}

std::int32_t clsDBConn::DB_Add_CVSet(const QString& Name, std::int16_t& Nummer,
                                     std::int16_t ResCV) {
    return parts_->sets.add(Name, Nummer, {.number = ResCV});
}

bool clsDBConn::DB_Rename_CVSet(const QString& Name, std::int16_t Nummer) {
    return parts_->sets.rename(parts_->akt_set, Name, Nummer);
}

bool clsDBConn::set_gone(std::int32_t SetID) { return parts_->sets.is_gone(SetID); }

bool clsDBConn::DB_Del_CVSet(std::int32_t SetID) {
    Library_Operation& operation = parts_->operation;
    const bool done = operation.changing([&] {
        const std::size_t before = operation.changes().size();
        parts_->sets.refuse_if_referred(SetID);
        operation.whole([&] {
            parts_->scripts.erase_all(SetID);
            parts_->cvs.erase_all(SetID);
            parts_->sets.erase(SetID);
        });
        if (operation.changes().size() == before) throw gone(u"Sets"_s, SetID);
    });
    if (done) parts_->akt_set = 0;
    return done;
}

std::int16_t clsDBConn::Fill_CVs_in_Listbox(List_Filler& list, std::int32_t SetID) {
    if (!parts_->file.active()) return 0;
    return to_16_bits(parts_->cvs.fill(list, parts_->current(SetID)));
}

bool clsDBConn::DB_Del_CVWert(std::int32_t CVID) { return parts_->cvs.erase(CVID); }

bool clsDBConn::DB_Write_CV(CVRec& rec) { return parts_->cvs.write(parts_->akt_set, rec); }

bool clsDBConn::DB_Find_CV(CVRec& rec) { return parts_->cvs.find(parts_->akt_set, rec); }

CVRec clsDBConn::DB_Get_CV(std::int32_t CVID) { return parts_->cvs.get(CVID); }

std::int16_t clsDBConn::DB_Open_CVs(std::int32_t SetID) {
    return to_16_bits(static_cast<std::int64_t>(parts_->cvs.open(SetID)));
}

std::vector<CVRec> clsDBConn::cvs_of(std::int32_t SetID) {
    std::vector<CVRec> cvs(static_cast<std::size_t>(DB_Open_CVs(SetID)));
    for (CVRec& cv : cvs) cv = DB_Next_CV();
    DB_Close_CVs();
    return cvs;
}

CVRec clsDBConn::DB_Next_CV() { return parts_->cvs.next(); }

void clsDBConn::DB_Close_CVs() { parts_->cvs.close(); }

void clsDBConn::Fill_Scripts_in_ScriptsObj(scripts::cls_Script_Sets& sets) {
    if (parts_->file.active()) parts_->scripts.fill(sets);
}

void clsDBConn::DB_Load_Scripts() {
    if (parts_->file.active() && parts_->akt_set != 0)
        parts_->scripts.load(scripts::AktScripts(), parts_->akt_set);
}

bool clsDBConn::DB_Add_Script(std::int32_t position) {
    return parts_->scripts.add(parts_->akt_set, scripts::AktScripts(), position);
}

bool clsDBConn::expect_script_positions() {
    return parts_->scripts.expect_positions(parts_->akt_set, scripts::AktScripts());
}

bool clsDBConn::DB_Save_Script_States(std::int32_t position) {
    return parts_->scripts.save_states(parts_->akt_set, scripts::AktScripts(), position);
}

bool clsDBConn::DB_Rename_Script(std::int32_t position) {
    return parts_->scripts.rename(parts_->akt_set, scripts::AktScripts(), position);
}

bool clsDBConn::DB_Delete_Script(std::int32_t position) {
    return parts_->scripts.erase(parts_->akt_set, scripts::AktScripts(), position);
}

std::int32_t clsDBConn::DB_Count_Scripts(std::int32_t SetID) {
    return parts_->scripts.count(SetID);
}

QString clsDBConn::script_name(std::int32_t ScriptID) { return parts_->scripts.name(ScriptID); }

std::int32_t clsDBConn::set_of_script(std::int32_t ScriptID) {
    return parts_->scripts.set_of(ScriptID);
}

Library_Operation& clsDBConn::operation() { return parts_->operation; }

Operation::Operation(clsDBConn& connection) : running_(connection.operation()) {
    if (!running_.begin()) running_.begin_lost(); // what follows inside must not act on its own
}

Operation::~Operation() {
    if (open_) std::ignore = running_.end(false);
}

bool Operation::keep() {
    SURE(open_);
    open_ = false;
    return running_.end(true);
}

clsDBConn& DBConn() {
    static clsDBConn connection;
    return connection;
}

std::int16_t Get_CV_Wert(clsDBConn& connection, std::int16_t CVNr) {
    CVRec rec{.CVPageHi = 0, .CVPageLo = 1, .CVNr = CVNr};
    return connection.DB_Find_CV(rec) ? rec.CVWert : std::int16_t{0};
}

} // namespace store
