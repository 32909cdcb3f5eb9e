#include "platform/files/replace.h"

#include "platform/failure/sure.h"

#include <algorithm>

namespace files {
namespace {

const std::string mark = ".new";

} // namespace

Replacement::Replacement(Disk& disk, const std::string& path, File* rights_of)
    : disk_(disk), path_(disk.resolve(path)) {
    std::unique_ptr<File> replaced;
    // Renaming asks nobody for the rights of the file that goes.
    if (disk_.file_exists(path_)) replaced = disk_.open(path_, Access::read_write);
    if (replaced) rights_of = replaced.get();
    open_beside(rights_of ? Access::create_private : Access::create_new);
    if (rights_of) give_standing(disk_, *file_, rights_of->standing());
}

void Replacement::open_beside(Access access) {
    // A crash may have left such a file, and another copy may be writing one: the next number is
    // free.
    for (int number = 1;; ++number) {
        beside_ = path_ + mark + std::to_string(number);
        try {
            file_ = disk_.open(beside_, access);
            return;
        } catch (const Error& error) {
            if (error.kind != Failure::exists || number == 100) throw;
        }
    }
}

Replacement::~Replacement() {
    if (!file_) return;
    file_.reset();
    try {
        disk_.remove(beside_);
    } catch (const Error&) {
        // The failure that led here is the one worth telling.
    }
}

void Replacement::write(std::span<const std::byte> bytes) {
    SURE(file_);
    file_->write_at(written_, bytes);
    written_ += bytes.size();
}

void Replacement::finish() {
    SURE(file_);
    file_->sync();
    disk_.rename(beside_, path_);
    file_.reset();
    disk_.sync_folder(folder_of(path_));
}

void replace_file(Disk& disk, const std::string& path, std::span<const std::byte> bytes) {
    Replacement replacement(disk, path);
    replacement.write(bytes);
    replacement.finish();
}

void copy_file(Disk& disk, const std::string& from, const std::string& to, Rights rights) {
    const auto source = disk.open(from, Access::read);
    Replacement copy(disk, to, rights == Rights::of_source ? source.get() : nullptr);
    std::vector<std::byte> portion(std::size_t{1} << 20);
    std::uint64_t offset = 0;
    while (const std::size_t count = source->read_at(offset, portion)) {
        copy.write(std::span(portion).first(count));
        offset += count;
    }
    copy.finish();
}

std::optional<std::string> replaced_by(const std::string& name) {
    const auto cut = name.rfind(mark);
    if (cut == std::string::npos || cut == 0) return std::nullopt;
    const std::string number = name.substr(cut + mark.size());
    const bool ours =
        !number.empty() && number.size() <= 3 &&
        std::ranges::all_of(number, [](char digit) { return digit >= '0' && digit <= '9'; });
    return ours ? std::optional(name.substr(0, cut)) : std::nullopt;
}

std::vector<std::byte> read_file(Disk& disk, const std::string& path) {
    const auto file = disk.open(path, Access::read);
    std::vector<std::byte> bytes(file->size());
    bytes.resize(file->read_at(0, bytes));
    return bytes;
}

} // namespace files
