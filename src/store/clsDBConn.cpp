#include "store/clsDBConn.h"

#include "scripts/cls_script_coll.h"
#include "store/clsDBConn_inside.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace store {

namespace {

Failure translated(ado::Failure kind) {
    switch (kind) {
    case ado::Failure::closed:
        return Failure::not_open;
    case ado::Failure::not_found:
        return Failure::not_found;
    case ado::Failure::denied:
        return Failure::denied;
    case ado::Failure::not_a_database:
        return Failure::not_a_database;
    case ado::Failure::unsupported:
        return Failure::unsupported;
    case ado::Failure::damaged:
        return Failure::damaged;
    case ado::Failure::read_only:
        return Failure::read_only;
    case ado::Failure::locked_elsewhere:
        return Failure::locked_elsewhere;
    case ado::Failure::replaced:
        return Failure::replaced;
    case ado::Failure::disk_full:
        return Failure::disk_full;
    case ado::Failure::device:
        return Failure::device;
    case ado::Failure::statement:
    case ado::Failure::refused:
        return Failure::refused;
    }
    return Failure::device;
}

Blocked translated(ado::Blocked blocked) {
    switch (blocked) {
    case ado::Blocked::no:
        return Blocked::no;
    case ado::Blocked::write_protected:
        return Blocked::write_protected;
    case ado::Blocked::jet3:
        return Blocked::jet3;
    case ado::Blocked::damaged:
        return Blocked::damaged;
    case ado::Blocked::cut_off:
        return Blocked::cut_off;
    case ado::Blocked::foreign_index:
        return Blocked::foreign_index;
    case ado::Blocked::replaced:
        return Blocked::replaced;
    case ado::Blocked::second_name:
        return Blocked::second_name;
    case ado::Blocked::journal_doubted:
        return Blocked::journal_doubted;
    case ado::Blocked::journal_barred:
        return Blocked::journal_barred;
    case ado::Blocked::journal_no_file:
        return Blocked::journal_no_file;
    case ado::Blocked::journal_name:
        return Blocked::journal_name;
    case ado::Blocked::journal_rights:
        return Blocked::journal_rights;
    case ado::Blocked::folder_hidden:
        return Blocked::folder_hidden;
    }
    return Blocked::damaged;
}

/// Other programs keep their locks in a file of this name while they have the library open.
QString lock_file_of(const QString& file) {
    const auto dot = file.lastIndexOf(QLatin1Char('.'));
    return (dot < 0 ? file : file.first(dot)) + u".ldb"_s;
}

} // namespace

clsDBConn::Inside::Inside(files::Disk& disk_)
    : disk(disk_), connection(disk_), catalog(connection) {
    connection.watch(this);
}

void clsDBConn::Inside::note(Failure kind, const QString& subject, const QString& detail) {
    trouble = Trouble{kind, subject, detail};
}

void clsDBConn::Inside::note(const ado::Error& error) {
    const QString place = error.subject + u": "_s + error.detail; // matters only to the log
    if (error.kind == ado::Failure::damaged)
        note(Failure::damaged, file, place);
    else if (error.kind == ado::Failure::not_found && active)
        note(!is_library ? without_sets()
             : lacks_cvs ? Failure::no_cvs
                         : Failure::gone,
             file, place);
    else
        note(translated(error.kind), error.subject, error.detail);
    lost = lost || error.kind == ado::Failure::replaced;
}

Failure clsDBConn::Inside::without_sets() const {
    return connection.status().lost_end ? Failure::cut_off : Failure::no_library;
}

ado::Error clsDBConn::Inside::gone(const QString& table, std::int32_t key) {
    return {ado::Failure::not_found, table + QLatin1Char(' ') + QString::number(key),
            u"the row is gone"_s};
}

Blocked clsDBConn::Inside::blocked() const {
    try {
        for (const QString& table : {u"Sets"_s, u"CVs"_s, u"Scripte"_s, u"Scriptstates"_s}) {
            const Blocked found = translated(connection.blocked(table));
            if (found != Blocked::no) return found;
        }
        return lacks_cvs ? Blocked::no_cvs : Blocked::no;
    } catch (const ado::Error&) { // locked elsewhere, perhaps: beginning to write will tell
        return translated(connection.status().blocked);
    }
}

bool clsDBConn::Inside::expect_library() {
    if (!active)
        note(Failure::not_open, file, u"no database is open"_s);
    else if (!is_library)
        trouble = no_library;
    return is_library;
}

Lost_End clsDBConn::Inside::lost_end() const {
    const std::optional<jet::Lost_End> found = connection.status().lost_end;
    if (!found) return {};
    Lost_End missing{.bytes = static_cast<std::int64_t>(found->bytes),
                     .whole = static_cast<std::int64_t>(found->whole)};
    for (const std::u16string& table : found->tables) {
        const auto is = [&](QLatin1StringView name) {
            return name.compare(QStringView(table), Qt::CaseInsensitive) == 0;
        };
        missing.sets = missing.sets || is("Sets"_L1);
        missing.cvs = missing.cvs || is("CVs"_L1);
        missing.scripts = missing.scripts || is("Scripte"_L1) || is("Scriptstates"_L1);
    }
    return missing;
}

int clsDBConn::Inside::width(QLatin1StringView table, QLatin1StringView column) {
    std::size_t characters = 0;
    const bool read =
        reading(ado::Extent::some, [&] { characters = catalog.text_width(table, column); });
    if (read && characters == 0 && expect_library())
        note(Failure::gone, file, table + QLatin1Char('.') + column + u": no column for texts"_s);
    return static_cast<int>(characters);
}

void clsDBConn::Inside::close() {
    recordset.close();
    transaction.reset(); // must not outlive the connection; an operation that is open is lost
    spoiled = depth > 0;
    record = {};
    picture.clear();
    completed.clear();
    connection.close();
    copy_kept.reset();
    active = false;
    is_library = false;
    lacks_cvs = false;
    lost = false;
    akt_set = 0;
    scripts::AktScripts().Clear();
    if (listener != nullptr) listener->library_left();
}

std::optional<files::Identity> clsDBConn::Inside::file_now() {
    try {
        return disk.identity(file.toStdString());
    } catch (const files::Error&) { // a medium that is away, perhaps
        return std::nullopt;
    }
}

ado::Recordset& clsDBConn::Inside::query(const QString& sql, std::vector<QString> wanted) {
    commands[0].text = sql;
    recordset.open(commands[0], std::move(wanted));
    return recordset;
}

int clsDBConn::Inside::execute(const QString& sql) {
    commands[1].text = sql;
    return commands[1].execute();
}

clsDBConn::clsDBConn(files::Disk& disk) : inside_(std::make_unique<Inside>(disk)) {}

clsDBConn::~clsDBConn() {
    inside_->transaction.reset();
    inside_->connection.close();
}

void clsDBConn::Connection_Start(const QString& FileName) {
    Inside& inside = *inside_;
    inside.file = FileName;
    Connection_Close();
    try {
        inside.connection.open(ado::Connection::string_for(FileName));
        for (ado::Command& command : inside.commands) command.bind(inside.connection);
        inside.active = inside.connection.state() == ado::State::open;
        inside.identity = inside.file_now();
        inside.ldb_beside = inside.disk.file_exists(lock_file_of(FileName).toStdString());
    } catch (const ado::Error& error) {
        inside.note(error);
    } catch (const files::Error& error) { // only looking for the lock file failed
        inside.ldb_beside = false;
    }
    if (inside.active) inside.upgrade();
}

void clsDBConn::Connection_Close() { inside_->close(); }

bool clsDBConn::Connection_Active() const { return inside_->active; }

bool clsDBConn::is_library() const { return inside_->is_library; }

bool clsDBConn::expect_library() { return inside_->expect_library(); }

QString clsDBConn::database_file() const { return inside_->file; }

Opening clsDBConn::opening() const {
    if (!inside_->active) return {};
    const ado::Status status = inside_->connection.status();
    return {.jet3 = status.jet3,
            .blocked = inside_->blocked(),
            .blocked_detail = QString::fromStdString(status.detail),
            .journal_owner = QString::fromStdString(status.journal_owner),
            .lost_end = inside_->lost_end(),
            .recovered = status.recovered,
            .journal_set_aside = QString::fromStdString(status.set_aside),
            .journal_spoiled = status.journal_spoiled,
            .ldb_beside = inside_->ldb_beside};
}

bool clsDBConn::writable() const { return inside_->active && inside_->blocked() == Blocked::no; }

std::optional<std::uint64_t> clsDBConn::change_count() {
    Inside& inside = *inside_;
    std::optional<std::uint64_t> count;
    inside.reading(ado::Extent::some, [&] {
        if (inside.file_now() != inside.identity)
            throw ado::Error{ado::Failure::replaced, inside.file,
                             u"the path names another file by now"_s};
        count = inside.connection.change_count();
    });
    return count;
}

std::int32_t clsDBConn::AktCVSetID() const { return inside_->akt_set; }

void clsDBConn::AktCVSetID(std::int32_t SetID) { inside_->akt_set = SetID; }

const std::optional<Trouble>& clsDBConn::last_trouble() const { return inside_->trouble; }

std::optional<Trouble> clsDBConn::take_trouble() {
    return std::exchange(inside_->trouble, std::nullopt);
}

int clsDBConn::sets_in_no_view() const { return inside_->sets_in_no_view; }

int clsDBConn::sets_completed_in_memory() const {
    return static_cast<int>(inside_->completed.size());
}

int clsDBConn::set_name_width() const { return inside_->width("Sets"_L1, "Name"_L1); }

int clsDBConn::script_name_width() const { return inside_->width("Scripte"_L1, "ScriptName"_L1); }

int clsDBConn::script_info_width() const { return inside_->width("Scriptstates"_L1, "Info"_L1); }

void clsDBConn::listen(Change_Listener* listener) { inside_->listener = listener; }

void clsDBConn::keep_copies(Before_First_Write* keeper) { inside_->keeper = keeper; }

clsDBConn& DBConn() {
    static clsDBConn connection;
    return connection;
}

std::int16_t Get_CV_Wert(std::int16_t CVNr) {
    CVRec rec{.CVPageHi = 0, .CVPageLo = 1, .CVNr = CVNr};
    return DBConn().DB_Find_CV(rec) ? rec.CVWert : std::int16_t{0};
}

} // namespace store
