#include "store/library_file.h"

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
    case ado::Failure::changed:
        return Failure::changed;
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

ado::Error gone(const QString& table, std::int32_t key) {
    return {ado::Failure::not_found, table + QLatin1Char(' ') + QString::number(key),
            u"the row is gone"_s};
}

Library_File::Library_File(files::Disk& disk)
    : disk_(disk), connection_(disk), catalog_(connection_) {}

void Library_File::open(const QString& path) {
    path_ = path;
    try {
        connection_.open(ado::Connection::string_for(path));
        active_ = connection_.state() == ado::State::open;
        identity_ = file_now();
        ldb_beside_ = disk_.file_exists(lock_file_of(path).toStdString());
    } catch (const ado::Error& error) {
        note(error);
    } catch (const files::Error& error) { // only looking for the lock file failed
        ldb_beside_ = false;
    }
}

void Library_File::close() {
    connection_.close();
    contents_ = {};
    active_ = false;
    lost_ = false;
}

std::optional<files::Identity> Library_File::file_now() {
    try {
        return disk_.identity(path_.toStdString());
    } catch (const files::Error&) { // a medium that is away, perhaps
        return std::nullopt;
    }
}

void Library_File::expect_same_file() {
    if (file_now() != identity_)
        throw ado::Error{ado::Failure::replaced, path_, u"the path names another file by now"_s};
}

ado::Recordset Library_File::rows(const QString& sql, std::vector<QString> wanted) {
    ado::Command command(connection_);
    command.text = sql;
    ado::Recordset found;
    found.open(command, std::move(wanted));
    return found;
}

void Library_File::erase_rows(const QString& sql) {
    for (ado::Recordset found = rows(sql); !found.at_end(); found.move_next()) found.erase();
}

int Library_File::execute(const QString& sql) {
    ado::Command command(connection_);
    command.text = sql;
    return command.execute();
}

void Library_File::note(Failure kind, const QString& subject, const QString& detail) {
    trouble = Trouble{kind, subject, detail};
}

void Library_File::note(const ado::Error& error) {
    const QString place = error.subject + u": "_s + error.detail; // matters only to the log
    if (error.kind == ado::Failure::damaged || error.kind == ado::Failure::changed)
        note(translated(error.kind), path_, place);
    else if (error.kind == ado::Failure::not_found && active_)
        note(!contents_.sets  ? without_sets()
             : !contents_.cvs ? Failure::no_cvs
                              : Failure::gone,
             path_, place);
    else
        note(translated(error.kind), error.subject, error.detail);
    lost_ = lost_ || error.kind == ado::Failure::replaced;
}

Failure Library_File::without_sets() const {
    return is_cut_off() ? Failure::cut_off : Failure::no_library;
}

Blocked Library_File::blocked() const {
    try {
        for (const QString& table : {u"Sets"_s, u"CVs"_s, u"Scripte"_s, u"Scriptstates"_s}) {
            const Blocked found = translated(connection_.blocked(table));
            if (found != Blocked::no) return found;
        }
        return contents_.cvs ? Blocked::no : Blocked::no_cvs;
    } catch (const ado::Error&) { // locked elsewhere, perhaps: beginning to write will tell
        return translated(connection_.status().blocked);
    }
}

bool Library_File::expect_library() {
    if (!active_)
        note(Failure::not_open, path_, u"no database is open"_s);
    else if (!contents_.sets)
        trouble = contents_.no_sets;
    return contents_.sets;
}

Lost_End Library_File::lost_end() const {
    const std::optional<jet::Lost_End> found = connection_.status().lost_end;
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

Opening Library_File::opening() const {
    if (!active_) return {};
    const ado::Status status = connection_.status();
    return {.jet3 = status.jet3,
            .blocked = blocked(),
            .blocked_detail = QString::fromStdString(status.detail),
            .journal_owner = QString::fromStdString(status.journal_owner),
            .lost_end = lost_end(),
            .recovered = status.recovered,
            .journal_set_aside = QString::fromStdString(status.set_aside),
            .journal_spoiled = status.journal_spoiled,
            .ldb_beside = ldb_beside_};
}

} // namespace store
