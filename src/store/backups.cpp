#include "store/backups.h"

#include "platform/files/replace.h"
#include "platform/jet/check/check.h"
#include "platform/jet/database.h"

#include <QCryptographicHash>

#include <algorithm>
#include <tuple>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace store {

namespace {

constexpr std::size_t copies_kept = 10;
constexpr std::uint64_t bytes_checked = 16'000'000; ///< of all copies, in a fraction of a second
const std::string folder_name = "Sicherungen";
const QString time_form = u"yyyy-MM-dd HH-mm-ss"_s;
const QString extension = u".mdb"_s;

std::string joined(const std::string& folder, const std::string& name) {
    if (folder.empty() || folder.back() == '/') return folder + name;
    return folder + '/' + name;
}

QString name_of(const std::string& path) {
    return QString::fromStdString(path.substr(path.find_last_of('/') + 1));
}

/// What the names of a library's copies begin with. Two libraries "a.mdb" and "a.MDB" in one folder
/// do not share their copies.
QString stem_of(const std::string& path) {
    const QString name = name_of(path);
    return name.endsWith(extension) ? name.chopped(extension.size()) : name;
}

QString copy_name(const QString& stem, const QDateTime& time) {
    return stem + u' ' + time.toString(time_form) + extension;
}

/// When the copy of this name was made; nothing when it is no copy of the library.
std::optional<QDateTime> time_in(const QString& name, const QString& stem) {
    if (name.size() != stem.size() + 1 + time_form.size() + extension.size()) return std::nullopt;
    const QString text = name.sliced(stem.size() + 1, time_form.size());
    // Date and time apart: read in another time zone, the two together need not exist.
    const QDate date = QDate::fromString(text.first(10), u"yyyy-MM-dd"_s);
    const QTime time = QTime::fromString(text.last(8), u"HH-mm-ss"_s);
    const QString name_again = // what was read leniently differs
        stem + date.toString(u" yyyy-MM-dd"_s) + time.toString(u" HH-mm-ss"_s) + extension;
    return name == name_again ? std::optional(QDateTime(date, time)) : std::nullopt;
}

/// When the copy was begun that a crash has cut off; nothing for other files.
std::optional<QDateTime> cut_off_in(const std::string& name, const QString& stem) {
    const auto unfinished = files::replaced_by(name);
    return unfinished ? time_in(QString::fromStdString(*unfinished), stem) : std::nullopt;
}

/// Keeps everybody from changing a library while it lives, with what a crash cut off taken back.
class Held_Library {
public:
    Held_Library(files::Disk& disk, const std::string& path)
        : database_(jet::Database::open(disk, path, jet::Mode::read_write)), guard_(database_) {}

private:
    jet::Database database_;
    jet::Read_Guard guard_;
};

} // namespace

Backups::Backups(files::Disk& disk, const QString& user_folder, timing::Time& time)
    : disk_(disk), user_folder_(user_folder.toStdString()), time_(time), started_(time_.date()) {}

template <class Work>
bool Backups::noting(Work work) {
    try {
        work();
        return true;
    } catch (const files::Error& error) {
        trouble_ = trouble_of(error);
        if (error.kind == Failure::exists) trouble_->kind = Failure::refused; // a name in the way
    }
    return false;
}

std::optional<Trouble> Backups::take_trouble() { return std::exchange(trouble_, std::nullopt); }

std::vector<Backups::Place> Backups::places(const std::string& path) const {
    const std::string folder = files::folder_of(path);
    const std::string of_user = joined(user_folder_, folder_name);
    const auto mark =
        QCryptographicHash::hash(QByteArray::fromStdString(folder), QCryptographicHash::Sha256);
    return {{joined(folder, folder_name), folder},
            {joined(of_user, mark.toHex().first(16).toStdString()), of_user}};
}

std::string Backups::copy_to(const Place& place, const std::string& path) {
    for (const std::string& folder : {place.above, place.folder}) {
        if (folder.empty() || disk_.folder_exists(folder)) continue;
        disk_.make_folder(folder);
        disk_.sync_folder(files::folder_of(folder)); // or the copy is lost with it
    }
    QDateTime time = time_.date();
    std::string copy;
    do { // the second may be taken: by the copy before, or after the clock was set back
        copy = joined(place.folder, copy_name(stem_of(path), time).toStdString());
        time = time.addSecs(1);
    } while (disk_.file_exists(copy));
    files::copy_file(disk_, path, copy, files::Rights::of_source);
    return copy;
}

std::string Backups::make_copy(const std::string& path) {
    const auto all = places(path);
    try {
        return copy_to(all.front(), path);
    } catch (const files::Error&) {
        try {
            return copy_to(all.back(), path);
        } catch (const files::Error&) {
            // The failure of the place that people expect is the one worth telling.
        }
        throw;
    }
}

/// A copy that cannot be removed does no harm.
void Backups::remove_old(const std::string& path, const std::string& just_made) noexcept {
    try {
        const std::string folder = files::folder_of(just_made);
        const QString stem = stem_of(path);
        std::vector<std::string> copies;
        for (const std::string& name : disk_.files_in(folder)) {
            const auto cut_off = cut_off_in(name, stem);
            if (cut_off && *cut_off < started_) // not one that another copy of the program makes
                disk_.remove(joined(folder, name));
            if (time_in(QString::fromStdString(name), stem) &&
                joined(folder, name) != just_made) // not the newest by its name if the clock is
                copies.push_back(name);            // wrong now or was wrong once
        }
        std::sort(copies.begin(), copies.end(), std::greater<>());
        for (std::size_t i = copies_kept - 1; i < copies.size(); ++i)
            disk_.remove(joined(folder, copies[i]));
    } catch (const files::Error&) {
    }
}

bool Backups::keep_copy(const QString& file) {
    return noting([&] {
        const std::string path = disk_.resolve(file.toStdString());
        const auto identity = disk_.identity(path);
        const auto known = copied_.find(path);
        if (known != copied_.end() && known->second == identity) return;
        remove_old(path, make_copy(path));
        if (identity) copied_[path] = *identity;
    });
}

void Backups::made_now(const QString& file) {
    std::ignore = noting([&] {
        const std::string path = disk_.resolve(file.toStdString());
        if (const auto identity = disk_.identity(path)) copied_[path] = *identity;
    });
}

std::optional<int> Backups::sets_in(const std::string& path) {
    try {
        auto library = jet::Database::open(disk_, path, jet::Mode::read_only);
        const auto sets = library.table(u"Sets");
        if (!sets || !sets->column(u"SetID") || !sets->column(u"Name")) return std::nullopt;
        int count = 0; // of the rows themselves: their number alone outlives them
        for (jet::Cursor rows = sets->rows(jet::Order::file); rows.next(); ++count) rows.values();
        return count;
    } catch (const jet::Error&) {
        // Whatever is wrong with it, it cannot be brought back.
    }
    return std::nullopt;
}

/// @param bytes_left that may still be looked through
Soundness Backups::soundness_of(const std::string& path, std::uint64_t& bytes_left) {
    try {
        auto library = jet::Database::open(disk_, path, jet::Mode::read_only);
        if (library.status().lost_end || !library.table(u"CVs")) return Soundness::cut_off;
        const auto look = disk_.look(path);
        if (!look || look->size > bytes_left) return Soundness::whole;
        bytes_left -= look->size;
        return library.check().sound() ? Soundness::whole : Soundness::damaged;
    } catch (const jet::Error&) {
        return Soundness::damaged;
    }
}

std::vector<Backup> Backups::copies_of(const QString& file) {
    std::vector<Backup> found; // up to where it was refused
    std::ignore = noting([&] {
        const std::string path = disk_.resolve(file.toStdString());
        for (const Place& place : places(path)) {
            if (!disk_.folder_exists(place.folder)) continue;
            for (const std::string& name : disk_.files_in(place.folder)) {
                const auto time = time_in(QString::fromStdString(name), stem_of(path));
                const std::string copy = joined(place.folder, name);
                if (time) found.push_back({QString::fromStdString(copy), *time, sets_in(copy)});
            }
        }
    });
    std::stable_sort(found.begin(), found.end(),
                     [](const Backup& one, const Backup& other) { return one.made > other.made; });
    std::uint64_t bytes_left = bytes_checked;
    for (Backup& copy : found)
        if (copy.sets) copy.soundness = soundness_of(copy.path.toStdString(), bytes_left);
    return found;
}

/// A journal that could not be settled with the library that it belongs to must not come to lie
/// beside another one.
void Backups::put_journal_away(const std::string& path) {
    const std::string journal = path + "-journal";
    if (!disk_.file_exists(journal)) return;
    std::string away;
    for (int number = 1; away.empty() || disk_.file_exists(away); ++number)
        away = journal + "-aside-" + std::to_string(number);
    disk_.rename(journal, away);
}

void Backups::put(const std::string& source, const std::string& path, files::Rights rights) {
    std::string kept;
    std::optional<Held_Library> held;
    if (disk_.file_exists(path)) {
        try {
            held.emplace(disk_, path);
        } catch (const jet::Error& error) { // damaged, perhaps: the more reason to bring one back
            if (error.kind == Failure::locked_elsewhere)
                throw files::Error(Failure::locked_elsewhere, path, error.detail);
        }
        kept = make_copy(path);
    }
    if (!held) put_journal_away(path);
    files::copy_file(disk_, source, path, rights);
    copied_.erase(path);
    if (!kept.empty()) remove_old(path, kept);
}

bool Backups::restore(const QString& copy, const QString& file) {
    if (!sets_in(copy.toStdString())) {
        trouble_ = {Failure::damaged, copy, u"it cannot be read as a library"_s};
        return false;
    }
    return noting([&] {
        put(copy.toStdString(), disk_.resolve(file.toStdString()), files::Rights::of_source);
    });
}

void Backups::make_new(const QString& file, const QString& empty) {
    const std::string source = empty.toStdString();
    if (!disk_.file_exists(source)) // found out before anything is copied
        throw files::Error(Failure::not_found, source, "nothing to make it from");
    put(source, disk_.resolve(file.toStdString()), files::Rights::of_new_file);
    made_now(file);
}

} // namespace store
