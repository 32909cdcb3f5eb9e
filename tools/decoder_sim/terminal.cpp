#include "terminal.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <system_error>
#include <termios.h>
#include <unistd.h>

namespace decoder_sim {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

int opened_master() {
    const int master = ::posix_openpt(O_RDWR | O_NOCTTY);
    if (master < 0) fail("no pseudo-terminal");
    const int flags = ::fcntl(master, F_GETFL);
    if (::grantpt(master) != 0 || ::unlockpt(master) != 0 ||
        ::fcntl(master, F_SETFL, flags | O_NONBLOCK) != 0 ||
        ::fcntl(master, F_SETFD, FD_CLOEXEC) != 0) {
        ::close(master);
        fail("pseudo-terminal");
    }
    return master;
}

/// Raw, so that nothing is echoed to whom the port is opened for; but at another speed than that
/// which a host has to choose.
void prepare_line(int descriptor) {
    termios line{};
    if (::tcgetattr(descriptor, &line) != 0) return;
    line.c_iflag &= ~static_cast<tcflag_t>(ICRNL | INLCR | IGNCR | IXON | ISTRIP);
    line.c_oflag &= ~static_cast<tcflag_t>(OPOST);
    line.c_lflag &= ~static_cast<tcflag_t>(ECHO | ICANON | ISIG | IEXTEN);
    ::cfsetispeed(&line, B9600);
    ::cfsetospeed(&line, B9600);
    ::tcsetattr(descriptor, TCSANOW, &line);
}

} // namespace

Terminal::Terminal() : master_(opened_master()) {
    if (const char* name = ::ptsname(master_)) port_ = name;
    const int host_end = ::open(port_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (host_end < 0) {
        ::close(master_);
        fail("pseudo-terminal");
    }
    prepare_line(host_end);
    ::close(host_end);
}

Terminal::~Terminal() { ::close(master_); }

Terminal::Read Terminal::read() {
    Read all;
    std::array<Byte, 256> some{};
    for (;;) {
        const ssize_t count = ::read(master_, some.data(), some.size());
        if (count > 0) {
            all.bytes.insert(all.bytes.end(), some.begin(), some.begin() + count);
            continue;
        }
        all.closed = count < 0 && errno == EIO;
        return all;
    }
}

void Terminal::write(Byte byte) const {
    // a host that never reads loses bytes, as on a real line
    [[maybe_unused]] const ssize_t count = ::write(master_, &byte, 1);
}

Line_Settings Terminal::line() const {
    termios line{};
    if (::tcgetattr(master_, &line) != 0) return {};
    const bool cooked_in = (line.c_iflag & (ICRNL | INLCR | IGNCR | IXON | ISTRIP)) != 0;
    const bool cooked = (line.c_lflag & (ECHO | ICANON | ISIG)) != 0;
    return {.raw = !cooked_in && !cooked && (line.c_oflag & OPOST) == 0,
            .baud_38400 = ::cfgetospeed(&line) == B38400,
            .stop_bits = (line.c_cflag & CSTOPB) != 0 ? 2 : 1};
}

void Terminal::drop_unread() const {
    const int host_end = ::open(port_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    if (host_end < 0) return; // somebody holds it for himself
    ::tcflush(host_end, TCIFLUSH);
    ::close(host_end);
}

Port_Link::Port_Link(fs::path link, const std::string& name, const std::string& port)
    : link_(std::move(link)), port_(port) {
    if (link_.empty()) return;
    const fs::file_status there = fs::symlink_status(link_);
    if (fs::exists(there) && !fs::is_symlink(there))
        throw fs::filesystem_error("something else than a link is there", link_,
                                   std::make_error_code(std::errc::file_exists));
    const fs::path fresh = link_.string() + ".new"; // nobody finds the name without a link
    fs::remove(fresh);
    fs::create_symlink(port_, fresh);
    fs::rename(fresh, link_);
    if (name.empty()) return;
    name_file_ = link_.string() + ".name";
    std::ofstream(name_file_) << name << '\n';
}

Port_Link::~Port_Link() {
    std::error_code ignored;
    if (link_.empty() || fs::read_symlink(link_, ignored) != port_) return;
    fs::remove(link_, ignored);
    if (!name_file_.empty()) fs::remove(name_file_, ignored);
}

} // namespace decoder_sim
