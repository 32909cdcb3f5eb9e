// The rules by which nothing is lost. Journal, recovery and pager keep them; the places cite them.
//
// J1  A page of the database is overwritten or appended only after its old content, or the old size,
//     lies synced in the journal, and the name of the journal lies synced in its folder. That the
//     folder can be opened for this is tried before the first operation.
// J2  The journal is emptied only after every page of its operation, or every page taken back, is
//     synced in the database; after a failed sync they are written again first. Emptying itself
//     needs no sync: see J3.
// J3  The journal tells the old and the new state of every page by checksums. An operation whose
//     pages are all new is complete and stays, even if the emptying was lost with the power; one
//     whose pages are all old never began; only between the two it is taken back.
// J4  The head is one sector. A table or an old page that fails its checksum was never synced, so
//     that by J1 its operation has not touched the database, or it was spoiled since, and then a
//     change may be half written; a head that is damaged or cut off likewise. Nothing tells which,
//     so such a journal is kept and reported. Only a file of zeros, or one shorter than a head whose
//     bytes name no operation, was never used. One that somebody empties or removes after a crash
//     takes what it knew with it: nothing in the database tells that an operation had begun, and
//     only the look at the whole file before the first change finds what is half written; a copy that
//     has looked already looks again when the journal is no longer the one that it knew.
// J5  A journal is written, emptied and rolled back only under the exclusive lock on the database.
// J6  A journal is applied only if every sector of every page that it names is as before the
//     operation or as after it, and size and page 0 fit. Any other is renamed and reported, never
//     applied and never emptied.
// J7  An operation that failed is marked before its pages are put back: after a failed sync the
//     pages may read as new and yet not be on the medium, so J3 must not accept them. The copy that
//     wrote it knows, also where the mark could not be written.
// J8  The journal is opened, made, renamed and removed only under a lock on the database; each copy
//     holds it with a shared lock; it is removed only by who has both files exclusively, or when it
//     is empty and does not serve (J12). Whoever begins a transaction makes sure, under the
//     exclusive lock, that the path names the journal that is open.
// J9  Before the first page is overwritten the path of the database must still name the open file.
// J10 Every operation and every taking back moves the counter. Pages stay in the cache from one
//     operation to the next only while salt, counter and the stamp of the database are the same.
// J11 A journal is believed only if whoever made it could have written the database, too: a file
//     with one name (hard link), opened without following a link, its owner being us, the
//     administrator, the owner of the database or somebody whom the mode of the database lets write
//     (members of its group by the list of users), and itself writable by nobody who may not write
//     the database. Where a file has a POSIX access list, this says who may write, and the group
//     bits of the mode, which are its mask then, say nothing; a journal has exactly the list that
//     J12 gives to one of its owner and group, and none where the database has none. One that is
//     not believed and holds an operation is neither applied nor renamed nor
//     emptied: the database is not written. Where the medium shows one owner for all files, and
//     wherever the inode is not that of the database, something of the operation must be found in
//     the database before anything is taken back.
// J12 Nobody begins an operation on a journal that somebody else who may write the database would
//     not believe or could not open for writing, or that lets more people read than the database. It
//     is made private, then gets group and mode of the database (from the administrator the owner,
//     too) by its descriptor, and its access list: what the folder gave it goes before it is opened
//     to anybody; where owner or group differ, they are named in the list as far as they may open
//     the database. What it then shows counts, not what was refused. An empty one that does not
//     serve is mended or made anew; one that was too open is always made anew, since somebody may
//     still have it open. A database with a second name is not written, because
//     nobody would find the journal from there, and who reads it is told. He sees what journals of
//     other names in the same folder say, those in other folders he cannot know of.
// J13 What is shown in place of pages, where a journal cannot be rolled back, ends with the lock
//     under which it was read.
// J14 Every number in a journal is bounded before it is used: sizes are whole pages and at most
//     2 GiB; there are no more entries than the larger size has pages and the journal has room for;
//     page numbers ascend and lie below that size; all appended pages are among them. Nothing behind
//     that is looked at, and of a file whose head is zeros no more than 64 MiB.

#include "platform/jet/pages/journal.h"
#include "platform/failure/sure.h"
#include "platform/jet/pages/journal_trust.h"

#include <algorithm>
#include <array>
#include <random>

namespace jet {
namespace {

/// An empty journal keeps this much of its room: overwriting allocated blocks costs half as long a
/// sync.
constexpr std::uint64_t room_kept = std::uint64_t{64} << 10;
constexpr std::size_t portion = std::size_t{1} << 20;
constexpr std::chrono::milliseconds moment{200};
/// A head that never arrived leaves zeros; more of them than this are not looked at.
constexpr std::uint64_t longest_blank = std::uint64_t{64} << 20;
constexpr int most_aside = 1000;

std::uint64_t new_salt() {
    std::random_device source;
    return std::uint64_t{source()} << 32 | source();
}

/// Collects small pieces into long writes.
class Portions {
public:
    explicit Portions(files::File& file) : file_(file) {}
    void add(std::span<const std::byte> bytes) {
        waiting_.insert(waiting_.end(), bytes.begin(), bytes.end());
        if (waiting_.size() >= portion) flush();
    }
    void fill_to(std::uint64_t offset) {
        SURE(offset >= written_ + waiting_.size());
        waiting_.resize(offset - written_);
    }
    void flush() {
        file_.write_at(written_, waiting_);
        written_ += waiting_.size();
        waiting_.clear();
    }

private:
    files::File& file_;
    std::uint64_t written_ = 0;
    std::vector<std::byte> waiting_;
};

std::vector<Journal_Entry> table_of(const Changed_Pages& pages) {
    std::vector<Journal_Entry> table;
    for (const auto& [number, page] : pages)
        table.push_back({number, page.before ? journal_checksum(*page.before) : 0,
                         sector_checksums(*page.after)});
    return table;
}

} // namespace

Journal::Journal(files::Disk& disk, const std::string& database)
    : disk_(disk), database_(database), path_(database + "-journal") {}

void Journal::detach() {
    file_.reset();
    state_ = State::absent;
    writable_ = false;
    served_.reset();
}

void Journal::turn_to(const std::string& database) {
    if (database == database_) return;
    detach();
    database_ = database;
    path_ = database + "-journal";
}

void Journal::attach(bool writable, files::File& database) { // J8
    const auto found = disk_.look(path_);
    if (!found) {
        detach();
        return;
    }
    if (!file_ || file_->identity() != found->identity) open(*found, writable, database);
    if (file_) read_head();
}

void Journal::open(const files::Look& found, bool writable, files::File& database) {
    detach();
    name_synced_ = folder_tried_ = false;
    found_ = found;
    if (!found.is_file) return bar(Blocked::journal_no_file, "no file lies in its place");
    open_file(writable);
    if (!writable_ || file_->lock(files::Lock::shared, moment)) return;
    if (trust(database) == Trust::none)
        return bar(Blocked::journal_barred, "somebody who may not write the file has it locked");
    throw files::Error(files::Failure::locked_elsewhere, path_, "the journal is locked");
}

void Journal::open_file(bool writable) {
    using files::Failure;
    for (const bool writing : {true, false}) {
        if (writing && !writable) continue;
        try {
            file_ = disk_.open_no_link(path_,
                                       writing ? files::Access::read_write : files::Access::read);
            writable_ = writing;
            return;
        } catch (const files::Error& error) {
            if (error.kind == Failure::no_file)
                return bar(Blocked::journal_no_file, "no file lies in its place");
            if (error.kind != Failure::denied && error.kind != Failure::read_only) throw;
        }
    }
    bar(Blocked::journal_barred, "the rights to open it are missing");
}

void Journal::bar(Blocked why, const char* detail) {
    detach();
    state_ = State::barred;
    barred_by_ = why;
    barred_detail_ = detail;
}

std::optional<Journal_Unusable> Journal::bar() {
    // An empty one its maker had not yet opened to others when he crashed; it can be made anew.
    if (state_ != State::barred || (found_.is_file && found_.size == 0)) return std::nullopt;
    return Journal_Unusable(barred_by_, path_, barred_detail_, owner());
}

std::string Journal::owner() {
    return disk_.user_name(file_ ? file_->standing().owner : found_.owner);
}

void Journal::read_head() {
    std::vector<std::byte> sector(journal_sector);
    sector.resize(file_->read_at(0, sector));
    if (const auto head = decode_head(sector)) {
        head_ = *head;
        state_ = head_.state == Journal_State::empty ? State::empty : State::hot;
        if (state_ == State::hot && failed_ == std::pair(head_.salt, head_.counter))
            head_.state = Journal_State::take_back; // J7
    } else if (is_beginning_of_first_head(sector)) {
        state_ = holds_nothing() ? State::blank : State::headless;
    } else {
        state_ = begins_like_head(sector) ? State::headless : State::unreadable; // J4
    }
}

bool Journal::holds_nothing() {
    if (file_->size() > longest_blank) return false; // J14
    std::vector<std::byte> piece(portion);
    for (std::uint64_t at = 0; const std::size_t count = file_->read_at(at, piece); at += count)
        if (at + count > journal_sector &&
            std::any_of(piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(count),
                        [](std::byte byte) { return byte != std::byte{}; }))
            return false;
    return true;
}

Journal::Trust Journal::trust(files::File& database) { // J11
    const files::Standing library = database.standing();
    const files::Standing own = file_->standing();
    if (!files::has_one_name(disk_, *file_, path_) || !opens_no_more(own, library, 02))
        return Trust::none;
    if (made_by_a_writer(disk_, own, library)) return Trust::full;
    return owners_tell() ? Trust::none : Trust::pages;
}

/// Some servers and media show one owner for all files; then a new one is not ours by its looks.
bool Journal::owners_tell() {
    if (owners_tell_) return *owners_tell_;
    if (!writable_) return true; // who looks only leaves nothing behind
    // A name of nobody else's, as short as any, made new or not at all.
    const std::string probe =
        path_.substr(0, path_.find_last_of('/') + 1) + ".cv-sets-" + std::to_string(new_salt());
    try {
        owners_tell_ =
            disk_.open(probe, files::Access::create_private)->standing().owner == disk_.user();
        disk_.remove(probe);
    } catch (const files::Error&) {
        // Without an answer an owner is taken at his word.
    }
    return owners_tell_.value_or(true);
}

bool Journal::serves(const files::Standing& library) { // J12
    const files::Standing own = file_->standing();
    if (served_ == std::pair(own, library)) return true;
    if (!writable_ || !files::has_one_name(disk_, *file_, path_)) return false;
    if (!serves_all(disk_, own, library, true) &&
        (!serves_all(disk_, own, library, false) || owners_tell()))
        return false;
    served_ = {own, library};
    return true;
}

void Journal::make(std::size_t page_size, files::File& database) {
    const files::Standing library = database.standing();
    const bool empty = state_ == State::empty || state_ == State::blank;
    if (empty && !serves(library)) {
        // Who has opened one that was too open still has it open when it is not.
        if (opens_no_more(file_->standing(), library, 06)) give_standing(disk_, *file_, library);
        if (!serves(library)) drop();
    }
    // One that its maker had not yet opened to others when he crashed.
    if (state_ == State::barred && found_.is_file && found_.size == 0) drop();
    if (state_ == State::barred) throw Journal_Unusable(barred_by_, path_, barred_detail_, owner());
    if (state_ == State::absent) create(library);
    if (!writable_)
        throw Journal_Unusable(Blocked::journal_barred, path_, "the journal is write-protected",
                               owner());
    if (!name_synced_ && !folder_tried_) try_folder();
    if (state_ != State::blank) return;
    head_ = {};
    head_.page_size = static_cast<std::uint32_t>(page_size);
    head_.salt = new_salt();
    file_->write_at(0, encode(head_));
    state_ = State::empty;
}

/// It holds nothing, and whoever has it open looks at the path before he uses it (J8).
void Journal::drop() {
    const std::string whose = owner();
    file_.reset();
    try {
        disk_.remove(path_);
    } catch (const files::Error& error) {
        if (error.kind != files::Failure::denied && error.kind != files::Failure::read_only) throw;
        throw Journal_Unusable(Blocked::journal_barred, path_, error.detail, whose);
    }
    detach();
}

void Journal::create(const files::Standing& library) { // J12
    try {
        file_ = disk_.open(path_, files::Access::create_private);
    } catch (const files::Error& error) {
        if (error.kind == files::Failure::name_too_long)
            throw Journal_Unusable(Blocked::journal_name, path_, error.detail);
        throw;
    }
    writable_ = true;
    name_synced_ = folder_tried_ = false;
    state_ = State::blank;
    owners_tell_ = file_->standing().owner == disk_.user();
    give_standing(disk_, *file_, library);
    if (!serves(library)) {
        drop();
        throw Journal_Unusable(Blocked::journal_rights, path_,
                               "it cannot get the rights that all who write the file need");
    }
    if (!file_->lock(files::Lock::shared, moment))
        throw files::Error(files::Failure::locked_elsewhere, path_, "the journal is locked");
}

/// Before the first operation depends on it.
void Journal::try_folder() {
    try {
        disk_.try_folder(files::folder_of(path_));
    } catch (const files::Error& error) {
        if (error.kind != files::Failure::denied) throw;
        throw Journal_Unusable(Blocked::folder_hidden, path_, error.detail);
    }
    folder_tried_ = true;
}

void Journal::write_state(Journal_State state) {
    head_.state = state;
    file_->write_at(journal_state_at, std::array{static_cast<std::byte>(state)});
    state_ = state == Journal_State::empty ? State::empty : State::hot;
}

void Journal::write(Journal_Head head, const Changed_Pages& pages) {
    const std::vector<Journal_Entry> entries = table_of(pages);
    const std::vector<std::byte> table = encode(entries, head_.page_size);
    head.state = Journal_State::operation;
    head.page_size = head_.page_size;
    head.salt = head_.salt;
    head.counter = head_.counter + 1; // J10
    head.entries = static_cast<std::uint32_t>(entries.size());
    head.table = journal_checksum(table);
    head_ = head;
    state_ = State::hot;
    Portions out(*file_);
    out.add(encode(head));
    out.add(table);
    out.fill_to(journal_pages_at(entries.size(), head.page_size));
    for (const auto& [number, page] : pages)
        if (page.before) out.add(*page.before);
    out.flush();
    file_->sync(); // J1
    if (!name_synced_) disk_.sync_folder(files::folder_of(path_));
    name_synced_ = true;
}

void Journal::mark_take_back() { // J7
    failed_ = {head_.salt, head_.counter};
    write_state(Journal_State::take_back);
}

void Journal::empty() {
    write_state(Journal_State::empty);
    if (file_->size() > room_kept) file_->resize(room_kept);
}

std::string Journal::set_aside() {
    std::string free_path;
    for (int number = 1; free_path.empty() || disk_.look(free_path); ++number) {
        if (number > most_aside)
            throw files::Error(files::Failure::denied, path_, "too many journals were set aside");
        free_path = path_ + "-aside-" + std::to_string(number);
    }
    disk_.rename(path_, free_path);
    detach();
    disk_.sync_folder(files::folder_of(path_));
    return free_path;
}

bool Journal::last_copy(files::File& database) { // J8
    if (!file_ || !writable_ || !database.lock(files::Lock::exclusive, moment)) return false;
    const auto named = disk_.look(path_);
    const bool ours = disk_.identity(database_) == database.identity() && named &&
                      named->identity == file_->identity();
    if (!ours || !file_->lock(files::Lock::exclusive, {})) return false;
    read_head();
    return state_ == State::empty || state_ == State::blank;
}

void Journal::leave(files::File& database) noexcept {
    try {
        if (last_copy(database)) disk_.remove(path_);
    } catch (const files::Error&) {
        // An empty journal that stays does no harm, and one that is not empty must stay.
    }
    file_.reset();
}

} // namespace jet
