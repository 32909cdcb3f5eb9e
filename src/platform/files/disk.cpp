#include "platform/files/disk.h"

#include <algorithm>

namespace files {

std::string folder_of(const std::string& path) {
    const std::size_t cut = path.find_last_of('/');
    return cut == std::string::npos ? "" : path.substr(0, std::max<std::size_t>(cut, 1));
}

namespace {

using Of = Acl_Entry::Of;

/// What can be given to group and others where a list cannot be: nobody whom it names would get
/// more.
std::uint32_t mode_without_list(const Standing& file) {
    if (file.acl.empty()) return file.mode & 0777;
    const Acl acl = unmasked(file.acl);
    std::uint32_t for_group = rights_of(acl, Of::group);
    std::uint32_t for_others = rights_of(acl, Of::others);
    for (const Acl_Entry& entry : acl) {
        if (entry.of != Of::owner) for_others &= entry.rights;
        if (entry.of == Of::user) for_group &= entry.rights;
    }
    return (file.mode & 0700) | for_group << 3 | for_others;
}

} // namespace

std::uint32_t granted(Disk& disk, User user, const Standing& file) {
    if (file.acl.empty()) {
        const std::uint32_t by_group = file.mode >> 3 & 07;
        const std::uint32_t by_anybody = file.mode & 07;
        return by_group != by_anybody && disk.is_member(user, file.group) ? by_group : by_anybody;
    }
    std::uint32_t by_groups = 0;
    bool member = false;
    for (const Acl_Entry& entry : unmasked(file.acl)) {
        if (entry.of == Of::user && entry.id == user) return entry.rights;
        if (entry.of != Of::group && entry.of != Of::named_group) continue;
        if (!disk.is_member(user, entry.of == Of::group ? file.group : entry.id)) continue;
        member = true;
        by_groups |= entry.rights;
    }
    return member ? by_groups : rights_of(file.acl, Of::others);
}

bool may_write(Disk& disk, User user, const Standing& file) {
    return user == administrator || user == file.owner || (granted(disk, user, file) & 02) != 0;
}

Acl acl_for(User owner, Group group, const Standing& of) {
    if (of.acl.empty() || (owner == of.owner && group == of.group)) return of.acl;
    Acl acl;
    const Acl given = unmasked(of.acl);
    std::optional<std::uint16_t> for_group;
    const auto add = [&](Acl_Entry entry) { // the first that is said of somebody counts
        if (entry.of == Of::user && entry.id == owner) return;
        if (entry.of == Of::named_group && entry.id == group) {
            if (!for_group) for_group = entry.rights;
            return;
        }
        const auto same = [&](const Acl_Entry& other) {
            return other.of == entry.of && other.id == entry.id;
        };
        if (std::ranges::none_of(acl, same)) acl.push_back(entry);
    };
    add({Of::owner, rights_of(given, Of::owner)});
    add({Of::user, rights_of(given, Of::owner), of.owner});
    add({Of::named_group, rights_of(given, Of::group), of.group});
    for (const Acl_Entry& entry : given)
        if (entry.of == Of::user || entry.of == Of::named_group) add(entry);
    add({Of::others, rights_of(given, Of::others)});
    if (!for_group) { // a member of it may be one of the other groups as well
        for_group = rights_of(given, Of::others);
        for (const Acl_Entry& entry : given)
            if (entry.of == Of::group || entry.of == Of::named_group) *for_group &= entry.rights;
    }
    add({Of::group, *for_group});
    std::uint16_t mask = 0;
    for (const Acl_Entry& entry : acl)
        if (entry.of != Of::owner && entry.of != Of::others) mask |= entry.rights;
    add({Of::mask, mask});
    put_in_order(acl);
    return acl;
}

void give_standing(Disk& disk, File& file, const Standing& of) {
    const Standing made = file.standing();
    const User owner = disk.user() == administrator ? of.owner : made.owner;
    // Owner and group first: as long as the wrong ones have it, it stays private.
    if (owner != made.owner || of.group != made.group) file.set_owner(owner, of.group);
    Standing now = file.standing();
    const Acl acl = acl_for(now.owner, now.group, of);
    if (now.acl != acl) {
        file.set_acl(acl);
        now = file.standing();
    }
    if (!now.acl.empty()) {
        // One that came from the folder and stays lets in more people with every bit of the group.
        if (now.acl != acl) file.set_mode(of.mode & 0700);
        return;
    }
    std::uint32_t mode = mode_without_list(of);
    if (now.group != of.group) { // members of the right one are others now
        const std::uint32_t least = mode >> 3 & mode & 07;
        mode = (mode & 0700) | least << 3 | least;
    }
    file.set_mode(mode);
}

std::vector<std::string> names_beside(Disk& disk, File& file, const std::string& path) {
    const std::string folder = folder_of(path);
    const std::string start = path.substr(0, path.find_last_of('/') + 1);
    std::vector<std::string> names;
    for (const std::string& name : disk.files_in(folder)) {
        const auto found = disk.look(start + name);
        if (found && found->is_file && found->identity == file.identity())
            names.push_back(start + name);
    }
    return names;
}

bool has_one_name(Disk& disk, File& file, const std::string& path) {
    const std::uint64_t names = file.standing().names;
    if (names < 2) return true;
    if (names > 2 || !file.counts_short_names()) return false;
    return names_beside(disk, file, path).size() < 2;
}

} // namespace files
