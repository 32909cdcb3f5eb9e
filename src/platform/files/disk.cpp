#include "platform/files/disk.h"

#include <algorithm>

namespace files {

std::string folder_of(const std::string& path) {
    const std::size_t cut = path.find_last_of('/');
    return cut == std::string::npos ? "" : path.substr(0, std::max<std::size_t>(cut, 1));
}

bool may_write(Disk& disk, User user, const Standing& file) {
    if (user == administrator || user == file.owner) return true;
    const bool by_group = (file.mode & 020) != 0;
    const bool by_anybody = (file.mode & 02) != 0;
    if (by_group == by_anybody) return by_anybody;
    return disk.is_member(user, file.group) ? by_group : by_anybody;
}

void give_standing(Disk& disk, File& file, const Standing& of) {
    const Standing made = file.standing();
    const User owner = disk.user() == administrator ? of.owner : made.owner;
    // Owner and group first: as long as the wrong ones have it, it stays private.
    if (owner != made.owner || of.group != made.group) file.set_owner(owner, of.group);
    std::uint32_t mode = of.mode & 0777;
    if (file.standing().group != of.group) mode = (mode & ~070U) | (mode & 07) << 3;
    file.set_mode(mode);
}

bool has_one_name(Disk& disk, File& file, const std::string& path) {
    const std::uint64_t names = file.standing().names;
    if (names < 2) return true;
    if (names > 2 || !file.counts_short_names()) return false;
    const std::string folder = folder_of(path);
    const auto is_it = [&](const std::string& name) {
        const auto found = disk.look(folder.empty()  ? name
                                     : folder == "/" ? folder + name
                                                     : folder + "/" + name);
        return found && found->is_file && found->identity == file.identity();
    };
    return std::ranges::count_if(disk.files_in(folder), is_it) < 2;
}

} // namespace files
