#include "platform/failure/sure.h"
#include "platform/jet/pages/pager_file.h"

#include "platform/files/replace.h"

#include <algorithm>
#include <cstring>

namespace jet {
namespace {

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
    open_file(mode);
    read_header();
    cache_ = Page_Cache(page_size_);
    prepare();
}

File_Pager::~File_Pager() {
    if (writing_) rollback();
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
    } catch (const Error& error) {
        if (!is_protection(error.kind)) throw;
        report_.refusal = {Failure::read_only, error.detail};
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
    if (version == 0 && !report_.refusal)
        report_.refusal = {Failure::unsupported, "Jet 3", Blocked::jet3};
}

void File_Pager::commit() {
    SURE(writing_);
    try {
        store();
    } catch (...) {
        rollback();
        throw;
    }
    writing_ = false;
    release();
}

void File_Pager::rollback() noexcept {
    SURE(writing_);
    forget_changes();
    writing_ = false;
    release();
}

void File_Pager::forget_changes() noexcept {
    changed_.clear();
    page_count_ = count_in_file_;
}

void File_Pager::store() {
    drop_unchanged();
    if (changed_.empty()) return;
    check_still_named(); // J9
    write_journal();     // J1
    try {
        write_pages();
        file_->sync();
    } catch (const Error&) {
        put_back();
        throw;
    }
    try {
        journal_.empty(); // J2
    } catch (const Error&) {
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
    } catch (const Error&) {
        try {
            journal_.empty();
        } catch (const Error&) {
            // All pages are old (J3), so whoever comes next empties it.
        }
        throw;
    }
}

/// What cannot be put back now is taken back from the journal before the next operation.
void File_Pager::put_back() noexcept {
    try {
        journal_.mark_take_back(); // J7
    } catch (const Error&) {
        // The journal remembers it, and the old pages may find their way all the same.
    }
    try {
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
    if (!reading_ && !writing_) throw std::logic_error("page outside of an operation");
    if (number >= page_count_)
        throw Error(Failure::damaged, path_,
                    "page " + std::to_string(number) + " lies beyond the end of the file");
}

Page File_Pager::read_from_file(Page_Number number) {
    if (Page held = cache_.find(number)) return held;
    if (shown_ && shown_->pages.contains(number)) return shown_->pages[number];
    auto bytes = std::make_shared<Page_Bytes>(page_size_);
    if (file_->read_at(std::uint64_t{number} * page_size_, *bytes) != page_size_)
        throw Error(Failure::damaged, path_, "page " + std::to_string(number) + " is cut off");
    cache_.put(number, bytes);
    return bytes;
}

Page File_Pager::read(Page_Number number) {
    check_number(number);
    const auto found = changed_.find(number);
    if (found != changed_.end()) return found->second.after;
    return read_from_file(number);
}

std::span<std::byte> File_Pager::change(Page_Number number) {
    check_number(number);
    if (!writing_) throw std::logic_error("change outside of a transaction");
    auto found = changed_.find(number);
    if (found == changed_.end()) {
        const Page before = read_from_file(number);
        found =
            changed_
                .try_emplace(number, Changed_Page{before, std::make_shared<Page_Bytes>(*before)})
                .first;
    }
    auto& after = found->second.after;
    if (after.use_count() > 1) // whoever holds the page goes on seeing it as it was
        after = std::make_shared<Page_Bytes>(*after);
    return *after;
}

Page_Number File_Pager::append() {
    if (!writing_) throw std::logic_error("append outside of a transaction");
    const Page_Number number = page_count_;
    if ((std::uint64_t{number} + 1) * page_size_ > largest_database)
        throw Error(Failure::refused, path_, "the file has reached its largest size, 2 GiB");
    changed_.try_emplace(number, Changed_Page{nullptr, std::make_shared<Page_Bytes>(page_size_)});
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
    files::Replacement file(disk, path);
    for (const Page_Bytes& page : pages) file.write(page);
    file.finish();
    return open_pager(disk, path, Open_Mode::read_write, patience);
}

} // namespace jet
