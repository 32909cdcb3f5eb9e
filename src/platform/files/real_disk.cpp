#include "platform/files/disk.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <grp.h>
#include <linux/magic.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/xattr.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

namespace files {
namespace {

struct Errno_Kind {
    int number;
    Failure kind;
};
constexpr Errno_Kind errno_kinds[] = {
    {ENOENT, Failure::not_found}, {ENOTDIR, Failure::not_found},
    {EEXIST, Failure::exists},    {EACCES, Failure::denied},
    {EPERM, Failure::denied},     {EROFS, Failure::read_only},
    {ENOSPC, Failure::disk_full}, {EDQUOT, Failure::disk_full},
    {EFBIG, Failure::disk_full},  {ELOOP, Failure::no_file},
    {ENXIO, Failure::no_file},    {ENAMETOOLONG, Failure::name_too_long},
};

[[noreturn]] void fail(const std::string& path, int number = errno) {
    const auto* found = std::ranges::find(errno_kinds, number, &Errno_Kind::number);
    const Failure kind = found == std::end(errno_kinds) ? Failure::device : found->kind;
    throw Error(kind, path, std::generic_category().message(number));
}

/// Repeats a call that a signal interrupted.
template <class Call>
auto persistently(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR) result = call();
    return result;
}

off_t as_offset(std::uint64_t offset) { return static_cast<off_t>(offset); }

Identity identity_of(const struct stat& status) {
    return {static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino)};
}

constexpr const char* acl_name = "system.posix_acl_access";

/// The list of an open file, where it has one and the file system knows such.
Acl acl_of(int handle, const std::string& path) {
    std::vector<std::byte> bytes(512);
    ssize_t count = 0;
    while ((count = ::fgetxattr(handle, acl_name, bytes.data(), bytes.size())) < 0 &&
           errno == ERANGE && bytes.size() < std::size_t{1} << 20)
        bytes.resize(2 * bytes.size());
    if (count < 0 && (errno == ENODATA || errno == ENOTSUP || errno == ENOSYS)) return {};
    if (count < 0) fail(path);
    bytes.resize(static_cast<std::size_t>(count));
    try {
        return decode_acl(bytes);
    } catch (const std::runtime_error& error) {
        throw Error(Failure::device, path, error.what());
    }
}

class Real_File final : public File {
public:
    Real_File(int handle, std::string path) : handle_(handle), path_(std::move(path)) {}
    ~Real_File() override { ::close(handle_); }
    Real_File(const Real_File&) = delete;
    Real_File& operator=(const Real_File&) = delete;

    std::size_t read_at(std::uint64_t offset, std::span<std::byte> into) override;
    void write_at(std::uint64_t offset, std::span<const std::byte> bytes) override;
    std::uint64_t size() override { return static_cast<std::uint64_t>(status().st_size); }
    void resize(std::uint64_t bytes) override {
        if (persistently([&] { return ::ftruncate(handle_, as_offset(bytes)); }) < 0) fail(path_);
    }
    void sync() override {
        if (persistently([&] { return ::fdatasync(handle_); }) < 0) fail(path_);
    }
    bool lock(Lock wanted, std::chrono::milliseconds patience) override;
    Identity identity() override { return identity_of(status()); }
    std::uint64_t stamp() override;
    Standing standing() override {
        const struct stat found = status();
        return {found.st_uid, found.st_gid, found.st_mode & 0777,
                static_cast<std::uint64_t>(found.st_nlink), acl_of(handle_, path_)};
    }
    void set_owner(User owner, Group group) noexcept override {
        if (::fchown(handle_, owner, group) == 0) return;
        static_cast<void>(::fchown(handle_, static_cast<uid_t>(-1), group) + 0);
    }
    void set_mode(std::uint32_t mode) noexcept override {
        static_cast<void>(::fchmod(handle_, mode));
    }
    void set_acl(const Acl& acl) noexcept override {
        if (acl.empty()) {
            static_cast<void>(::fremovexattr(handle_, acl_name) + 0);
            return;
        }
        const std::vector<std::byte> bytes = encode(acl);
        static_cast<void>(::fsetxattr(handle_, acl_name, bytes.data(), bytes.size(), 0) + 0);
    }
    bool counts_short_names() override;
    struct stat status() {
        struct stat result {};
        if (::fstat(handle_, &result) < 0) fail(path_);
        return result;
    }

private:
    int handle_;
    std::string path_;
};

std::size_t Real_File::read_at(std::uint64_t offset, std::span<std::byte> into) {
    std::size_t done = 0;
    while (done < into.size()) {
        const ssize_t got = persistently([&] {
            return ::pread(handle_, into.data() + done, into.size() - done,
                           as_offset(offset + done));
        });
        if (got < 0) fail(path_);
        if (got == 0) break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

void Real_File::write_at(std::uint64_t offset, std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const ssize_t put = persistently(
            [&] { return ::pwrite(handle_, bytes.data(), bytes.size(), as_offset(offset)); });
        if (put < 0) fail(path_);
        if (put == 0) fail(path_, EIO);
        bytes = bytes.subspan(static_cast<std::size_t>(put));
        offset += static_cast<std::uint64_t>(put);
    }
}

bool Real_File::lock(Lock wanted, std::chrono::milliseconds patience) {
    // F_OFD_SETLK, not F_SETLK (lost when any handle of the process closes) and not flock (unknown
    // on network drives); and not F_OFD_SETLKW, which cannot be told how long to wait.
    constexpr short types[] = {F_UNLCK, F_RDLCK, F_WRLCK};
    struct flock request {};
    request.l_type = types[static_cast<std::size_t>(wanted)];
    request.l_whence = SEEK_SET;
    const auto deadline = std::chrono::steady_clock::now() + patience;
    for (auto pause = std::chrono::milliseconds(1);;
         pause = std::min(2 * pause, std::chrono::milliseconds(4))) {
        if (persistently([&] { return ::fcntl(handle_, F_OFD_SETLK, &request); }) == 0) return true;
        if (errno != EAGAIN && errno != EACCES) fail(path_);
        if (std::chrono::steady_clock::now() >= deadline) return false;
        std::this_thread::sleep_for(pause);
    }
}

std::uint64_t Real_File::stamp() {
    const struct stat found = status();
    const auto nanoseconds = [](const struct timespec& time) {
        return static_cast<std::uint64_t>(time.tv_sec) * 1'000'000'000 +
               static_cast<std::uint64_t>(time.tv_nsec);
    };
    return nanoseconds(found.st_mtim) * 31 + nanoseconds(found.st_ctim);
}

/// NTFS keeps short names, and the driver that shows it through FUSE counts them.
bool Real_File::counts_short_names() {
    struct statfs found {};
    return ::fstatfs(handle_, &found) == 0 && found.f_type == FUSE_SUPER_MAGIC;
}

/// @param flags of fstatat
std::optional<struct stat> status_of(const std::string& path, int flags = 0) {
    struct stat result {};
    if (::fstatat(AT_FDCWD, path.c_str(), &result, flags) == 0) return result;
    // Nothing can have a name that is too long, either.
    if (errno == ENOENT || errno == ENOTDIR || errno == ENAMETOOLONG) return std::nullopt;
    fail(path);
}

class Real_Disk final : public Disk {
public:
    std::unique_ptr<File> open(const std::string& path, Access access) override {
        return open_with(path, access, 0);
    }
    std::unique_ptr<File> open_no_link(const std::string& path, Access access) override {
        return open_with(path, access, O_NOFOLLOW);
    }
    std::optional<Look> look(const std::string& path) override {
        const auto found = status_of(path, AT_SYMLINK_NOFOLLOW);
        if (!found) return std::nullopt;
        return Look{identity_of(*found), S_ISREG(found->st_mode),
                    static_cast<std::uint64_t>(found->st_size), found->st_uid};
    }
    std::optional<Identity> identity(const std::string& path) override {
        const auto found = status_of(path);
        return found && !S_ISDIR(found->st_mode) ? std::optional(identity_of(*found))
                                                 : std::nullopt;
    }
    bool folder_exists(const std::string& path) override {
        const auto found = status_of(path);
        return found && S_ISDIR(found->st_mode);
    }
    void make_folder(const std::string& path) override {
        if (::mkdir(path.c_str(), 0777) < 0) fail(path);
    }
    void remove(const std::string& path) override {
        if (::unlink(path.c_str()) < 0) fail(path);
    }
    void rename(const std::string& from, const std::string& to) override {
        if (::rename(from.c_str(), to.c_str()) < 0) fail(to);
    }
    void sync_folder(const std::string& path) override;
    void try_folder(const std::string& path) override { ::close(open_folder(path)); }
    std::vector<std::string> files_in(const std::string& folder) override;
    std::string resolve(const std::string& path) override;
    User user() override { return ::geteuid(); }
    bool is_member(User user, Group group) override;
    std::string user_name(User user) override;

private:
    static std::unique_ptr<File> open_with(const std::string& path, Access access, int more_flags);
    static int open_folder(const std::string& path);
};

std::unique_ptr<File> Real_Disk::open_with(const std::string& path, Access access, int more_flags) {
    constexpr int flags[] = {O_RDONLY, O_RDWR, O_RDWR | O_CREAT | O_EXCL, O_RDWR | O_CREAT | O_EXCL,
                             O_RDWR | O_CREAT | O_TRUNC};
    // O_NONBLOCK: a pipe of that name must not hang the program; on files it means nothing.
    const int flag = flags[static_cast<std::size_t>(access)] | O_CLOEXEC | O_NONBLOCK | more_flags;
    const mode_t mode = access == Access::create_private ? 0600 : 0666;
    const int handle = persistently([&] { return ::open(path.c_str(), flag, mode); });
    if (handle < 0) fail(path);
    auto file = std::make_unique<Real_File>(handle, path);
    const struct stat found = file->status();
    if (!S_ISREG(found.st_mode)) throw Error(Failure::no_file, path, "not a file");
    // The administrator may write everything; whoever took the write permission off a file meant
    // it.
    if (access == Access::read_write && (found.st_mode & 0222) == 0) fail(path, EACCES);
    return file;
}

int Real_Disk::open_folder(const std::string& path) {
    const std::string& name = path.empty() ? "." : path;
    const int handle =
        persistently([&] { return ::open(name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
    if (handle < 0) fail(name);
    return handle;
}

void Real_Disk::sync_folder(const std::string& path) {
    const int handle = open_folder(path);
    const int result = persistently([&] { return ::fsync(handle); });
    const int reason = errno;
    ::close(handle);
    if (result < 0 && reason != EINVAL) fail(path, reason); // EINVAL: a file system without it
}

std::vector<std::string> Real_Disk::files_in(const std::string& folder) {
    const std::unique_ptr<DIR, int (*)(DIR*)> handle(
        ::opendir(folder.empty() ? "." : folder.c_str()), ::closedir);
    if (!handle) fail(folder);
    std::vector<std::string> names;
    while (const dirent* entry = ::readdir(handle.get())) {
        struct stat found {};
        if (::fstatat(::dirfd(handle.get()), entry->d_name, &found, 0) == 0 &&
            !S_ISDIR(found.st_mode))
            names.emplace_back(entry->d_name);
    }
    std::ranges::sort(names);
    return names;
}

std::string Real_Disk::resolve(const std::string& path) {
    const std::unique_ptr<char, void (*)(void*)> found(::realpath(path.c_str(), nullptr),
                                                       std::free);
    return found ? found.get() : path;
}

/// The entry of the user in the system's list, or nothing.
template <class Use>
auto with_entry(User user, Use use) -> decltype(use(std::declval<const struct passwd&>())) {
    std::vector<char> room(std::size_t{16} << 10);
    struct passwd entry {};
    struct passwd* found = nullptr;
    while (::getpwuid_r(user, &entry, room.data(), room.size(), &found) == ERANGE &&
           room.size() < std::size_t{1} << 20)
        room.resize(2 * room.size());
    return found ? use(*found) : decltype(use(entry)){};
}

bool Real_Disk::is_member(User user, Group group) {
    return with_entry(user, [&](const struct passwd& entry) {
        std::vector<gid_t> groups(64);
        auto count = static_cast<int>(groups.size());
        while (::getgrouplist(entry.pw_name, entry.pw_gid, groups.data(), &count) < 0 &&
               groups.size() < 65536) {
            groups.resize(std::max(static_cast<std::size_t>(count), 2 * groups.size()));
            count = static_cast<int>(groups.size());
        }
        groups.resize(std::min(groups.size(), static_cast<std::size_t>(std::max(count, 0))));
        return std::ranges::find(groups, group) != groups.end();
    });
}

std::string Real_Disk::user_name(User user) {
    const auto name =
        with_entry(user, [](const struct passwd& entry) { return std::string(entry.pw_name); });
    return name.empty() ? Disk::user_name(user) : name;
}

} // namespace

Disk& real_disk() {
    static Real_Disk disk;
    return disk;
}

} // namespace files
