#include "store/library_file.h"

#include "platform/failure/sure.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace store {

namespace {

/// Other programs keep their locks in a file of this name while they have the library open.
QString lock_file_of(const QString& file) {
    const auto dot = file.lastIndexOf(QLatin1Char('.'));
    return (dot < 0 ? file : file.first(dot)) + u".ldb"_s;
}

} // namespace

std::string row_name(const QString& table, std::int32_t key) {
    return table.toStdString() + ' ' + std::to_string(key);
}

ado::Error gone(const QString& table, std::int32_t key) {
    return {Failure::not_found, row_name(table, key), "the row is gone"};
}

Library_File::Library_File(files::Disk& disk)
    : disk_(disk), connection_(disk), catalog_(connection_) {}

void Library_File::open(const QString& path) {
    SURE(!active_);
    path_ = path;
    try {
        connection_.open(ado::Connection::string_for(path));
        active_ = connection_.state() == ado::State::open;
        identity_ = file_now();
        ldb_beside_ = has_lock_file();
    } catch (const ado::Error& error) {
        note(error);
    }
}

bool Library_File::has_lock_file() {
    try {
        return disk_.file_exists(lock_file_of(path_).toStdString());
    } catch (const files::Error&) {
        return false;
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

bool Library_File::is_its(const QString& path) const {
    if (!active()) return false;
    try {
        const std::string own = disk_.resolve(path_.toStdString());
        const std::string other = disk_.resolve(path.toStdString());
        return other == own + "-journal" || (identity_ && disk_.identity(other) == identity_);
    } catch (const files::Error&) { // nothing that could be written
        return false;
    }
}

void Library_File::expect_same_file() {
    if (file_now() != identity_)
        throw ado::Error(Failure::replaced, path_.toStdString(),
                         "the path names another file by now");
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
    trouble = trouble_of(error);
    lost_ = lost_ || error.kind == Failure::replaced;
    const bool in_it = error.kind == Failure::not_found && active_; // the file itself is there
    if (in_it)
        trouble->kind = !contents_.sets  ? without_sets()
                        : !contents_.cvs ? Failure::no_cvs
                                         : Failure::gone;
    if (!in_it && error.kind != Failure::damaged && error.kind != Failure::changed) return;
    trouble->subject = path_; // the place in it matters only to the log
    trouble->detail = QString::fromStdString(error.what());
}

Failure Library_File::without_sets() const {
    return is_cut_off() ? Failure::cut_off : Failure::no_library;
}

Blocked Library_File::blocked() const {
    try {
        const ado::Reading once(connection_); // else each table takes the lock for itself
        for (const QString& table : {u"Sets"_s, u"CVs"_s, u"Scripte"_s, u"Scriptstates"_s}) {
            const Blocked found = connection_.blocked(table);
            if (found != Blocked::no) return found;
        }
        return contents_.cvs ? Blocked::no : Blocked::no_cvs;
    } catch (const ado::Error&) { // locked elsewhere, perhaps: beginning to write will tell
        return connection_.status().blocked;
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
