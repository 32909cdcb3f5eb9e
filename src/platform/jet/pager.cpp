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

} // namespace

File_Pager::File_Pager(files::Disk& disk, std::string path, Open_Mode mode,
                       std::chrono::milliseconds patience)
    : disk_(disk), path_(std::move(path)), patience_(patience) {
    at_border([&] {
        open_file(mode);
        read_header();
        cache_ = Page_Cache(page_size_);
        begin_read();
        end_read();
    });
}

File_Pager::~File_Pager() {
    while (write_depth_ > 0) rollback();
}

void File_Pager::open_file(Open_Mode mode) {
    if (mode == Open_Mode::read_only) {
        report_.refusal = {Failure::read_only, "opened for reading"};
        file_ = disk_.open(path_, files::Access::read);
        return;
    }
    try {
        file_ = disk_.open(path_, files::Access::read_write);
    } catch (const files::Error& error) {
        if (error.kind != files::Failure::denied && error.kind != files::Failure::read_only) throw;
        report_.refusal = {Failure::read_only, error.what()};
        file_ = disk_.open(path_, files::Access::read);
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

void File_Pager::notice_size() {
    const std::uint64_t size = file_->size();
    count_in_file_ = static_cast<Page_Number>(std::min(size, largest_file) / page_size_);
    page_count_ = count_in_file_;
}

void File_Pager::begin_read() {
    if (read_depth_ + write_depth_ == 0) {
        at_border([&] {
            take(files::Lock::shared);
            notice_size();
            cache_.clear();
        });
    }
    ++read_depth_;
}

void File_Pager::end_read() noexcept {
    if (--read_depth_ == 0 && write_depth_ == 0) release();
}

void File_Pager::check_still_named() {
    if (disk_.identity(path_) == file_->identity()) return;
    report_.refusal = {Failure::replaced, "the path names another file now"};
    throw Error(Failure::replaced, path_, report_.refusal->detail);
}

void File_Pager::begin_write() {
    if (report_.refusal) throw Error(report_.refusal->kind, path_, report_.refusal->detail);
    if (write_depth_ == 0) {
        at_border([&] {
            take(files::Lock::exclusive);
            check_still_named();
            notice_size();
            if (read_depth_ == 0) cache_.clear();
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
    check_still_named();
    write_pages();
    file_->sync();
    keep_written();
}

void File_Pager::drop_unchanged() {
    std::erase_if(changed_, [](const auto& entry) {
        return entry.second.before && *entry.second.before == *entry.second.after;
    });
}

void File_Pager::write_pages() {
    for (const auto& [number, page] : changed_)
        file_->write_at(std::uint64_t{number} * page_size_, *page.after);
}

void File_Pager::keep_written() {
    for (auto& [number, page] : changed_) cache_.put(number, std::move(page.after));
    changed_.clear();
    count_in_file_ = page_count_;
}

void File_Pager::check_number(Page_Number number) const {
    if (read_depth_ + write_depth_ == 0) throw std::logic_error("page outside of an operation");
    if (number >= page_count_)
        throw Error(Failure::damaged, path_,
                    "page " + std::to_string(number) + " lies beyond the end of the file");
}

Page File_Pager::read_from_file(Page_Number number) {
    if (Page held = cache_.find(number)) return held;
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
