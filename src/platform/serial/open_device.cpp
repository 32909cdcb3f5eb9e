#include "platform/serial/open_device.h"

#include "platform/files/disk.h"
#include "platform/serial/folder_entries.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <grp.h>
#include <optional>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <system_error>
#include <termios.h>
#include <unistd.h>
#include <vector>

namespace serial {

Handle::~Handle() {
    if (number_ >= 0) ::close(number_);
}

namespace {

namespace fs = std::filesystem;

std::string group_name(gid_t group) {
    std::array<char, 4096> room{};
    struct group entry {};
    struct group* found = nullptr;
    if (::getgrgid_r(group, &entry, room.data(), room.size(), &found) != 0 || found == nullptr) {
        return std::to_string(group);
    }
    return found->gr_name;
}

files::Acl list_of(const std::string& path) {
    std::array<std::byte, 4096> bytes{};
    const ssize_t count =
        ::getxattr(path.c_str(), "system.posix_acl_access", bytes.data(), bytes.size());
    if (count <= 0) return {};
    try {
        return files::decode_acl({bytes.data(), static_cast<std::size_t>(count)});
    } catch (const std::runtime_error&) {
        return {};
    }
}

Missing_Rights missing_rights(const std::string& path) {
    constexpr std::uint32_t both = 06; // to read and to write
    Missing_Rights missing;
    struct stat status {};
    if (::stat(path.c_str(), &status) < 0) return missing;
    missing.owner = files::real_disk().user_name(status.st_uid);
    const files::Acl acl = list_of(path);
    std::vector<gid_t> groups;
    if (acl.empty() && (status.st_mode >> 3 & both) == both) groups.push_back(status.st_gid);
    for (const files::Acl_Entry& entry : files::unmasked(acl)) {
        using Of = files::Acl_Entry::Of;
        if ((entry.rights & both) != both) continue;
        if (entry.of == Of::user) missing.listed = true;
        if (entry.of == Of::group) groups.push_back(status.st_gid);
        if (entry.of == Of::named_group) groups.push_back(entry.id);
    }
    if (groups.empty()) return missing;
    missing.group = group_name(groups.front());
    missing.joined = files::real_disk().is_member(::geteuid(), groups.front());
    return missing;
}

std::string program(pid_t process) {
    const std::string name = first_line_of("/proc/" + std::to_string(process) + "/comm");
    return name + (name.empty() ? "" : " ") + "(" + std::to_string(process) + ")";
}

std::optional<pid_t> number_in(const std::string& text) {
    const std::size_t blanks = std::min(text.find_first_not_of(' '), text.size());
    pid_t number = 0;
    const auto [end, trouble] =
        std::from_chars(text.data() + blanks, text.data() + text.size(), number);
    if (trouble != std::errc{} || number <= 0) return std::nullopt;
    return number;
}

/// Terminal programs keep each other away by a file with their process number in its first line.
std::optional<pid_t> holder_by_lock_file(const std::string& path, const std::string& folder) {
    const std::string name = "LCK.." + fs::path(path).filename().string();
    const std::optional<pid_t> holder = number_in(first_line_of(fs::path(folder) / name));
    if (!holder || *holder == ::getpid()) return std::nullopt;
    if (::kill(*holder, 0) < 0 && errno == ESRCH) return std::nullopt; // left by a crash
    return holder;
}

/// Who has the device open, as far as we may look.
std::string holder_by_open_file(const std::string& path) {
    std::error_code ignored;
    for (const fs::path& process : entries_of("/proc")) {
        const std::optional<pid_t> number = number_in(process.filename().string());
        if (!number || *number == ::getpid()) continue;
        for (const fs::path& file : entries_of(process / "fd")) {
            if (fs::read_symlink(file, ignored) == path) return program(*number);
        }
    }
    return {};
}

struct Errno_Failure {
    int number;
    Failure kind;
};
constexpr Errno_Failure opening_failures[] = {
    {ENOENT, Failure::not_found},       {ENOTDIR, Failure::not_found},
    {ENODEV, Failure::not_found},       {ENXIO, Failure::not_found},
    {EIO, Failure::not_found},          {ELOOP, Failure::not_found},
    {EACCES, Failure::denied},          {EPERM, Failure::denied},
    {EBUSY, Failure::locked_elsewhere}, {EWOULDBLOCK, Failure::locked_elsewhere},
    {ENOTTY, Failure::no_port},         {EISDIR, Failure::no_port},
};

[[noreturn]] void refuse(const std::string& path) {
    const int number = errno;
    const auto* found = std::ranges::find(opening_failures, number, &Errno_Failure::number);
    Error error(found == std::end(opening_failures) ? Failure::device : found->kind, path,
                std::generic_category().message(number));
    if (error.kind == Failure::denied) error.rights = missing_rights(path);
    if (error.kind == Failure::locked_elsewhere) error.holder = holder_by_open_file(path);
    throw error;
}

} // namespace

Handle open_device_alone(const std::string& given, const std::string& locks) {
    std::error_code ignored;
    const fs::path real = fs::canonical(given, ignored);
    const std::string path = real.empty() ? given : real.string();
    if (const std::optional<pid_t> holder = holder_by_lock_file(path, locks)) {
        Error error(Failure::locked_elsewhere, path, "LCK..");
        error.holder = program(*holder);
        throw error; // before opening, which would switch the lines of the device
    }
    Handle handle(::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    if (handle.number() < 0) refuse(path);
    termios found{};
    if (::tcgetattr(handle.number(), &found) < 0) refuse(path);
    // The first keeps out everybody but the administrator, the second whoever asks.
    if (::flock(handle.number(), LOCK_EX | LOCK_NB) < 0) refuse(path);
    if (::ioctl(handle.number(), TIOCEXCL) < 0) refuse(path);
    return handle;
}

} // namespace serial
