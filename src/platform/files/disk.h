#pragma once

#include "platform/failure/error.h"
#include "platform/files/acl.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace files {

/// Thrown by everything in this folder; the subject is the path, the detail the system's own words.
using failure::Error;
using Failure = failure::Kind;

enum class Access {
    read,
    read_write,
    create_new,
    create_private, ///< as create_new; nobody but its owner may open it before others are let in
    create_or_empty
};

enum class Lock { none, shared, exclusive };

/// Tells whether two names lead to one file, and whether a name still leads to the file that is
/// open.
struct Identity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    bool operator==(const Identity&) const = default;
};

using User = std::uint32_t;
using Group = std::uint32_t;

/// Whose a file is, who may do what with it, and under how many names (hard links) it stands.
struct Standing {
    User owner = 0;
    Group group = 0;
    /// rwxrwxrwx: for the owner, members of the group (where there is a list: its mask), all others
    std::uint32_t mode = 0;
    std::uint64_t names = 1;
    Acl acl = {};
    bool operator==(const Standing&) const = default;
};

/// What stands under a name.
struct Look {
    Identity identity;
    bool is_file = true; ///< no folder, pipe or link
    std::uint64_t size = 0;
    User owner = 0;
};

/// One open file description; closing it drops its lock.
class File {
public:
    virtual ~File() = default;
    /// Reads up to `into.size()` bytes at `offset`; @return how many (fewer only at the end of the
    /// file).
    [[nodiscard]] virtual std::size_t read_at(std::uint64_t offset, std::span<std::byte> into) = 0;
    /// Writes all bytes at `offset`, lengthening the file if need be. After an Error any part may
    /// be written.
    virtual void write_at(std::uint64_t offset, std::span<const std::byte> bytes) = 0;
    virtual std::uint64_t size() = 0;
    virtual void resize(std::uint64_t bytes) = 0;
    /// Returns when everything written so far is on the medium.
    virtual void sync() = 0;
    /// Takes, changes or drops the lock on the whole file, waiting at most `patience`.
    /// @return false when another description still holds it then; the lock held before stays.
    [[nodiscard]] virtual bool lock(Lock wanted, std::chrono::milliseconds patience) = 0;
    virtual Identity identity() = 0;
    /// A number that moves when the content is written, as finely as the medium tells: another
    /// number proves a change, the same one proves nothing.
    virtual std::uint64_t stamp() = 0;
    virtual Standing standing() = 0;
    /// Changes owner, group, mode and list as far as the system allows; what came of it is seen by
    /// asking again. A list changes the mode, too, and an empty one is none.
    virtual void set_owner(User owner, Group group) noexcept = 0;
    virtual void set_mode(std::uint32_t mode) noexcept = 0;
    virtual void set_acl(const Acl& acl) noexcept = 0;
    /// Whether the medium may count a short name that it keeps beside the real one as a second
    /// name.
    virtual bool counts_short_names() = 0;
};

/// Folders and names: the real disk, one in memory, and ones that fail on request.
/// Paths are UTF-8 with the separator of the platform.
class Disk {
public:
    virtual ~Disk() = default;
    virtual std::unique_ptr<File> open(const std::string& path, Access access) = 0;
    /// The same, but a link in the last place is refused (no_file).
    virtual std::unique_ptr<File> open_no_link(const std::string& path, Access access) = 0;
    /// What the name stands for, a link for itself. @return nothing when there is nothing.
    virtual std::optional<Look> look(const std::string& path) = 0;
    /// @return nothing when no file has this name (a folder is no file).
    virtual std::optional<Identity> identity(const std::string& path) = 0;
    virtual bool folder_exists(const std::string& path) = 0;
    virtual void make_folder(const std::string& path) = 0; ///< one level
    virtual void remove(const std::string& path) = 0;
    /// Gives the file a new name, replacing a file of that name in one step.
    virtual void rename(const std::string& from, const std::string& to) = 0;
    /// Returns when names made, changed or removed in the folder are on the medium.
    virtual void sync_folder(const std::string& path) = 0;
    /// Throws what sync_folder would for want of rights, without waiting for the medium.
    virtual void try_folder(const std::string& path) = 0;
    /// Names (not paths) of the files in the folder, sorted.
    virtual std::vector<std::string> files_in(const std::string& folder) = 0;

    /// The path behind links; the path itself where there are none.
    virtual std::string resolve(const std::string& path) { return path; }
    virtual User user() = 0; ///< whose rights the program has
    /// Whether the list of users says so, whoever may be logged in.
    virtual bool is_member(User user, Group group) = 0;
    /// The name for people; the number where there is none.
    virtual std::string user_name(User user) { return std::to_string(user); }

    bool file_exists(const std::string& path) { return identity(path).has_value(); }
};

/// "a/b.mdb" -> "a", "/b.mdb" -> "/", "b.mdb" -> "".
std::string folder_of(const std::string& path);

constexpr User administrator = 0;

/// What mode or list of a file give to somebody who is not its owner: rwx.
std::uint32_t granted(Disk& disk, User user, const Standing& file);
/// Whether mode or list of a file let the user write, or make the file his to change.
bool may_write(Disk& disk, User user, const Standing& file);
/// The list by which a file of this owner and group is open to the same people, with the same
/// rights, as the other file by its list; none where that one has none.
Acl acl_for(User owner, Group group, const Standing& of);
/// Gives a file that was just made the group, mode and list of another, and the owner too where we
/// may; a list that it got from its folder goes. Where group or list are refused, fewer people may
/// open it, never more.
void give_standing(Disk& disk, File& file, const Standing& of);
/// All paths in the folder of this one under which the open file stands.
std::vector<std::string> names_beside(Disk& disk, File& file, const std::string& path);
/// Whether the open file, found at this path, has no second name. A short name is none.
[[nodiscard]] bool has_one_name(Disk& disk, File& file, const std::string& path);

/// The disk of this computer.
Disk& real_disk();

} // namespace files
