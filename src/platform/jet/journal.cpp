// The rules by which nothing is lost. Journal, recovery and pager keep them; the places cite them.
//
// J1  A page of the database is overwritten or appended only after its old content, or the old size,
//     lies synced in the journal, and the name of the journal lies synced in its folder.
// J2  The journal is emptied only after every page of its operation, or every page taken back, is
//     synced in the database. Emptying itself needs no sync: see J3.
// J3  The journal tells the old and the new state of every page by checksums. An operation whose
//     pages are all new is complete and stays, even if the emptying was lost with the power; one
//     whose pages are all old never began; only between the two it is taken back.
// J4  The head is one sector. A table or an old page that fails its checksum was never synced, so
//     that by J1 its operation has not touched the database, or it was spoiled since, and then a
//     change may be half written. Nothing tells which, so such a journal is kept and reported.
// J5  A journal is written, emptied and rolled back only under the exclusive lock on the database.
// J6  A journal is applied only if every sector of every page that it names is as before the
//     operation or as after it, and size and page 0 fit. Any other is renamed and reported, never
//     applied and never emptied.
// J7  An operation that failed is marked before its pages are put back: after a failed sync the
//     pages may read as new and yet not be on the medium, so J3 must not accept them.
// J8  The journal is opened, made, renamed and removed only under a lock on the database; each copy
//     holds it with a shared lock; it is removed only by who has both files exclusively. Whoever
//     begins a transaction makes sure, under the exclusive lock, that the path names the journal
//     that is open.
// J9  Before the first page is overwritten the path of the database must still name the open file.
// J10 Every operation and every taking back moves the counter. Pages stay in the cache from one
//     operation to the next only while salt, counter and the stamp of the database are the same.

#include "platform/jet/journal.h"

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
    void fill_to(std::uint64_t offset) { waiting_.resize(offset - written_); }
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
}

void Journal::attach(bool writable) { // J8
    const auto named = disk_.identity(path_);
    if (!named) {
        detach();
        return;
    }
    if (!file_ || file_->identity() != *named) open(writable);
    read_head();
}

void Journal::open(bool writable) {
    detach();
    name_synced_ = false;
    writable_ = writable;
    try {
        file_ = disk_.open(path_, writable ? files::Access::read_write : files::Access::read);
    } catch (const files::Error& error) {
        const bool refused =
            error.kind == files::Failure::denied || error.kind == files::Failure::read_only;
        if (!writable || !refused) throw;
        writable_ = false;
        file_ = disk_.open(path_, files::Access::read);
    }
    if (writable_ && !file_->lock(files::Lock::shared, moment))
        throw files::Error(files::Failure::locked_elsewhere, path_, "the journal is locked");
}

void Journal::read_head() {
    std::vector<std::byte> sector(journal_sector);
    sector.resize(file_->read_at(0, sector));
    if (const auto head = decode_head(sector)) {
        head_ = *head;
        state_ = head_.state == Journal_State::empty ? State::empty : State::hot;
    } else if (!is_beginning_of_head(sector)) {
        state_ = State::unreadable;
    } else {
        state_ = holds_nothing() ? State::blank : State::headless;
    }
}

bool Journal::holds_nothing() {
    std::vector<std::byte> piece(portion);
    for (std::uint64_t at = 0; const std::size_t count = file_->read_at(at, piece); at += count)
        if (at + count > journal_sector &&
            std::any_of(piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(count),
                        [](std::byte byte) { return byte != std::byte{}; }))
            return false;
    return true;
}

void Journal::make(std::size_t page_size) {
    if (state_ == State::absent) {
        static_cast<void>(disk_.open(path_, files::Access::create_new));
        disk_.copy_rights(database_, path_);
        open(true);
        read_head();
    }
    if (!writable_)
        throw files::Error(files::Failure::denied, path_, "the journal is write-protected");
    if (state_ != State::blank) return;
    head_ = {};
    head_.page_size = static_cast<std::uint32_t>(page_size);
    head_.salt = new_salt();
    file_->write_at(0, encode(head_));
    state_ = State::empty;
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

void Journal::mark_take_back() { write_state(Journal_State::take_back); } // J7

void Journal::empty() {
    write_state(Journal_State::empty);
    if (file_->size() > room_kept) file_->resize(room_kept);
}

std::string Journal::set_aside() {
    std::string free_path;
    for (int number = 1; free_path.empty() || disk_.file_exists(free_path); ++number)
        free_path = path_ + "-aside-" + std::to_string(number);
    disk_.rename(path_, free_path);
    detach();
    disk_.sync_folder(files::folder_of(path_));
    return free_path;
}

bool Journal::last_copy(files::File& database) { // J8
    if (!file_ || !writable_ || !database.lock(files::Lock::exclusive, moment)) return false;
    const bool ours = disk_.identity(database_) == database.identity() &&
                      disk_.identity(path_) == file_->identity();
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
