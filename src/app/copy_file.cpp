#include "app/copy_file.h"

#include "app/mod_fileverwaltung.h"

#include <vector>

namespace app {
namespace {

constexpr std::size_t portion = std::size_t{1} << 20;

void copy_bytes(files::File& from, files::File& to) {
    std::vector<std::byte> bytes(portion);
    for (std::uint64_t offset = 0;;) {
        const std::size_t count = from.read_at(offset, bytes);
        if (count == 0) return;
        to.write_at(offset, std::span(bytes).first(count));
        offset += count;
    }
}

void remove_quietly(files::Disk& disk, const std::string& path) noexcept {
    try {
        disk.remove(path);
    } catch (const files::Error&) {
        // The failure that led here is the one to report.
    }
}

} // namespace

void copy_file(files::Disk& disk, const QString& from, const QString& to) {
    const std::string target = to.toStdString();
    const std::string unfinished = target + ".neu";
    const auto source = disk.open(from.toStdString(), files::Access::read);
    auto copy = disk.open(unfinished, files::Access::create_or_empty);
    try {
        copy_bytes(*source, *copy);
        copy->sync();
        copy.reset();
        disk.rename(unfinished, target);
    } catch (const files::Error&) {
        copy.reset();
        remove_quietly(disk, unfinished);
        throw;
    }
    disk.sync_folder(PathOf(to).toStdString());
}

} // namespace app
