#include "platform/jet/pager_file.h"

#include "platform/files/replace.h"

#include <algorithm>
#include <cstring>

namespace jet {
namespace {

/// Jet addresses pages with 24 bits, and no engine opens more than 2 GiB.
constexpr std::uint64_t largest_file = std::uint64_t{1} << 31;

Failure kind_for(files::Failure kind) {
    switch (kind) {
    case files::Failure::not_found:
        return Failure::not_found;
    case files::Failure::denied:
        return Failure::denied;
    case files::Failure::read_only:
        return Failure::read_only;
    case files::Failure::locked_elsewhere:
        return Failure::locked_elsewhere;
    case files::Failure::disk_full:
        return Failure::disk_full;
    case files::Failure::exists:
    case files::Failure::device:
        break;
    }
    return Failure::device;
}

/// Runs a step and turns what the disk says into what a database says.
template <class Step>
auto at_border(Step step) {
    try {
        return step();
    } catch (const files::Error& error) {
        throw Error(kind_for(error.kind), error.subject, error.what());
    }
}

bool is_protection(files::Failure kind) {
    return kind == files::Failure::denied || kind == files::Failure::read_only;
}

std::uint64_t checksum_of_page_0(files::File& file, std::size_t page_size) {
    Page_Bytes page(page_size);
    page.resize(file.read_at(0, page));
    return journal_checksum(page);
}

} // namespace

File_Pager::File_Pager(files::Disk& disk, std::string path, Open_Mode mode,
                       std::chrono::milliseconds patience)
    : disk_(disk), path_(std::move(path)), real_path_(disk.resolve(path_)), patience_(patience),
      journal_(disk, real_path_) {
    at_border([&] {
        open_file(mode);
        read_header();
        cache_ = Page_Cache(page_size_);
        prepare();
    });
}

File_Pager::~File_Pager() {
    while (write_depth_ > 0) rollback();
    journal_.leave(*file_);
}

void File_Pager::open_file(Open_Mode mode) {
    const auto open = [&](files::Access access) {
        file_ = disk_.open(path_, access);
        identity_ = file_->identity();
    };
    if (mode == Open_Mode::read_only) {
        report_.refusal = {Failure::read_only, "opened for reading"};
        open(files::Access::read);
        return;
    }
    try {
        open(files::Access::read_write);
        file_writable_ = true;
    } catch (const files::Error& error) {
        if (!is_protection(error.kind)) throw;
        report_.refusal = {Failure::read_only, error.what()};
        open(files::Access::read);
    }
}

void File_Pager::read_header() {
    constexpr char signature[] = "\x00\x01\x00";
    constexpr char name[] = "Standard Jet DB";
    std::array<std::byte, 0x18> header{};
    const bool whole = file_->read_at(0, header) == header.size();
    if (!whole || std::memcmp(header.data(), signature, sizeof signature) != 0)
        throw Error(Failure::not_a_database, path_, "no Jet header");
    const int version = std::to_integer<int>(header[0x14]);
    if (std::memcmp(&header[4], name, sizeof name) != 0 || version > 1)
        throw Error(Failure::unsupported, path_, "another generation of the format");
    page_size_ = version == 0 ? 2048 : 4096;
    if (version == 0 && !report_.refusal) report_.refusal = {Failure::unsupported, "Jet 3"};
}

void File_Pager::take(files::Lock wanted) {
    if (!file_->lock(wanted, patience_))
        throw Error(Failure::locked_elsewhere, path_, "another program is using the file");
}

void File_Pager::release() noexcept {
    try {
        file_->lock(read_depth_ > 0 ? files::Lock::shared : files::Lock::none, {});
    } catch (const files::Error&) {
        // Closing the file drops it at the latest.
    }
}

/// The journal is made at the first look, so that whether the folder permits writing is known from
/// the start, and so that its counter lets pages outlive an operation.
void File_Pager::prepare() {
    if (file_writable_ && file_->lock(files::Lock::exclusive, {})) {
        enter_writing();
        if (!report_.refusal) make_journal();
        release();
    } else {
        begin_read();
        end_read();
    }
}

void File_Pager::make_journal() {
    try {
        journal_.make(page_size_);
    } catch (const files::Error& error) {
        // A full disk, say, may have room again when the first change comes, and is reported then.
        if (is_protection(error.kind)) report_.refusal = {Failure::read_only, error.what()};
    }
}

/// A mark proves that nothing changed; without one the cache starts anew.
std::optional<Cache_Mark> File_Pager::mark_now() {
    if (journal_.state() != Journal::State::empty) return std::nullopt;
    return Cache_Mark{journal_.head().salt, journal_.head().counter, file_->stamp()};
}

void File_Pager::notice_state() {
    const std::uint64_t size = shown_ ? shown_->size : file_->size();
    count_in_file_ = static_cast<Page_Number>(std::min(size, largest_file) / page_size_);
    page_count_ = count_in_file_;
    if ((size % page_size_ != 0 || size > largest_file) && !report_.refusal)
        report_.refusal = {Failure::damaged, "the length is no whole number of pages"};
    const auto mark = mark_now();
    if (!mark || mark != cached_at_) { // J10
        cache_.clear();
        ++generation_;
    }
    cached_at_ = mark;
}

bool File_Pager::must_settle() const {
    return journal_.state() == Journal::State::hot ||
           journal_.state() == Journal::State::unreadable;
}

void File_Pager::begin_read() {
    if (read_depth_ + write_depth_ == 0) {
        at_border([&] {
            take(files::Lock::shared);
            try {
                enter_reading();
            } catch (...) {
                release();
                throw;
            }
        });
    }
    ++read_depth_;
}

void File_Pager::enter_reading() {
    shown_.reset();
    if (still_named())
        journal_.attach(file_writable_);
    else
        journal_.detach(); // the one at the path belongs to another file now
    if (must_settle() && file_writable_ && journal_.writable()) {
        // Not from shared to exclusive in one step: two copies that try would wait for each other.
        file_->lock(files::Lock::none, {});
        take(files::Lock::exclusive);
        enter_writing();
        file_->lock(files::Lock::shared, {});
        return;
    }
    if (must_settle()) show_settled();
    notice_state();
}

void File_Pager::enter_writing() {
    check_still_named(); // J9
    journal_.attach(true);
    if (must_settle()) journal_.writable() ? settle() : show_settled();
    notice_state();
}

/// Under the exclusive lock (J5).
void File_Pager::settle() {
    const Journal_Finding finding = examine(journal_, *file_, page_size_);
    if (finding.verdict == Journal_Finding::Verdict::foreign) {
        report_.foreign_journal = true;
        set_aside(); // J6
        return;
    }
    if (finding.verdict == Journal_Finding::Verdict::take_back) {
        take_back(finding, *file_, page_size_);
        report_.recovery = Pager_Report::Recovery::rolled_back;
    } else {
        file_->sync(); // J2: so far its pages may stand in memory only
    }
    journal_.empty();
}

void File_Pager::set_aside() {
    try {
        report_.set_aside = journal_.set_aside();
    } catch (const files::Error& error) {
        if (!is_protection(error.kind)) throw;
        report_.refusal = {Failure::read_only, error.what()};
    }
}

/// Where nothing may be written, the old pages are laid over those in the file.
void File_Pager::show_settled() {
    Journal_Finding finding = examine(journal_, *file_, page_size_);
    if (finding.verdict == Journal_Finding::Verdict::foreign) report_.foreign_journal = true;
    if (finding.verdict != Journal_Finding::Verdict::take_back) return;
    report_.recovery = Pager_Report::Recovery::shown_only;
    shown_ = std::move(finding);
}

void File_Pager::end_read() noexcept {
    if (--read_depth_ == 0 && write_depth_ == 0) release();
}

void File_Pager::check_still_named() {
    if (still_named()) return;
    report_.refusal = {Failure::replaced, "the path names another file now"};
    throw Error(Failure::replaced, path_, report_.refusal->detail);
}

void File_Pager::check_may_write() const {
    if (report_.refusal) throw Error(report_.refusal->kind, path_, report_.refusal->detail);
}

void File_Pager::begin_write() {
    check_may_write();
    if (write_depth_ == 0) {
        at_border([&] {
            take(files::Lock::exclusive);
            try {
                enter_writing();
                check_may_write();
                journal_.make(page_size_); // J8
            } catch (...) {
                release();
                throw;
            }
        });
    }
    ++write_depth_;
}

void File_Pager::commit() {
    if (write_depth_ > 1) {
        --write_depth_;
        return;
    }
    try {
        if (doomed_) throw Error(Failure::refused, path_, "an inner operation was rolled back");
        at_border([&] { store(); });
    } catch (...) {
        rollback();
        throw;
    }
    write_depth_ = 0;
    release();
}

void File_Pager::rollback() noexcept {
    forget_changes();
    doomed_ = --write_depth_ > 0;
    if (!doomed_) release();
}

void File_Pager::forget_changes() noexcept {
    changed_.clear();
    page_count_ = count_in_file_;
}

void File_Pager::store() {
    drop_unchanged();
    if (changed_.empty()) return;
    check_still_named(); // J9
    write_journal(); // J1
    try {
        write_pages();
        file_->sync();
    } catch (const files::Error&) {
        put_back();
        throw;
    }
    try {
        journal_.empty(); // J2
    } catch (const files::Error&) {
        // The operation is complete all the same (J3); whoever comes next empties the journal or
        // says why it cannot be done.
    }
    keep_written();
}

void File_Pager::write_journal() {
    Journal_Head head;
    head.database = identity_;
    head.size_before = std::uint64_t{count_in_file_} * page_size_;
    head.size_after = std::uint64_t{page_count_} * page_size_;
    head.page_0 = checksum_of_page_0(*file_, page_size_);
    try {
        journal_.write(head, changed_);
    } catch (const files::Error&) {
        try {
            journal_.empty();
        } catch (const files::Error&) {
            // All pages are old (J3), so whoever comes next empties it.
        }
        throw;
    }
}

/// What cannot be put back now is taken back from the journal before the next operation.
void File_Pager::put_back() noexcept {
    try {
        journal_.mark_take_back(); // J7
        Journal_Finding finding;
        finding.size = std::uint64_t{count_in_file_} * page_size_;
        for (const auto& [number, page] : changed_)
            if (page.before) finding.pages[number] = page.before;
        take_back(finding, *file_, page_size_);
        journal_.empty(); // J2
    } catch (const std::exception&) {
        // The failure that led here is the one worth telling.
    }
}

void File_Pager::drop_unchanged() {
    std::erase_if(changed_, [](const auto& entry) {
        return entry.second.before && *entry.second.before == *entry.second.after;
    });
}

void File_Pager::write_pages() {
    Page_Bytes run; // neighbours go out in one write
    constexpr std::size_t longest_run = std::size_t{1} << 20;
    for (auto entry = changed_.begin(); entry != changed_.end();) {
        const Page_Number first = entry->first;
        run.clear();
        for (Page_Number next = first;
             entry != changed_.end() && entry->first == next && run.size() < longest_run;
             ++entry, ++next)
            run.insert(run.end(), entry->second.after->begin(), entry->second.after->end());
        file_->write_at(std::uint64_t{first} * page_size_, run);
    }
}

void File_Pager::keep_written() {
    for (auto& [number, page] : changed_) cache_.put(number, std::move(page.after));
    changed_.clear();
    count_in_file_ = page_count_;
    cached_at_ = mark_now();
}

void File_Pager::check_number(Page_Number number) const {
    if (read_depth_ + write_depth_ == 0) throw std::logic_error("page outside of an operation");
    if (number >= page_count_)
        throw Error(Failure::damaged, path_,
                    "page " + std::to_string(number) + " lies beyond the end of the file");
}

Page File_Pager::read_from_file(Page_Number number) {
    if (Page held = cache_.find(number)) return held;
    if (shown_ && shown_->pages.contains(number)) return shown_->pages[number];
    auto bytes = std::make_shared<Page_Bytes>(page_size_);
    at_border([&] {
        if (file_->read_at(std::uint64_t{number} * page_size_, *bytes) != page_size_)
            throw Error(Failure::damaged, path_, "page " + std::to_string(number) + " is cut off");
    });
    cache_.put(number, bytes);
    return bytes;
}

Page File_Pager::read(Page_Number number) {
    check_number(number);
    const auto found = changed_.find(number);
    // A copy, because whoever holds the span from change() may go on writing to it.
    if (found != changed_.end()) return std::make_shared<Page_Bytes>(*found->second.after);
    return read_from_file(number);
}

std::span<std::byte> File_Pager::change(Page_Number number) {
    check_number(number);
    if (write_depth_ == 0 || doomed_) throw std::logic_error("change outside of a transaction");
    auto found = changed_.find(number);
    if (found == changed_.end()) {
        const Page before = read_from_file(number);
        found = changed_.try_emplace(number, before, std::make_shared<Page_Bytes>(*before)).first;
    }
    return *found->second.after;
}

Page_Number File_Pager::append() {
    if (write_depth_ == 0 || doomed_) throw std::logic_error("append outside of a transaction");
    const Page_Number number = page_count_;
    if ((std::uint64_t{number} + 1) * page_size_ > largest_file)
        throw Error(Failure::refused, path_, "the file has reached its largest size, 2 GiB");
    changed_.try_emplace(number, nullptr, std::make_shared<Page_Bytes>(page_size_));
    ++page_count_;
    return number;
}

std::unique_ptr<Pager> open_pager(files::Disk& disk, const std::string& path, Open_Mode mode,
                                  std::chrono::milliseconds patience) {
    return std::make_unique<File_Pager>(disk, path, mode, patience);
}

std::unique_ptr<Pager> create_pager(files::Disk& disk, const std::string& path,
                                    std::span<const Page_Bytes> pages,
                                    std::chrono::milliseconds patience) {
    at_border([&] {
        files::Replacement file(disk, path);
        for (const Page_Bytes& page : pages) file.write(page);
        file.finish();
    });
    return open_pager(disk, path, Open_Mode::read_write, patience);
}

} // namespace jet
