#include "platform/serial/real_scomm.h"

#include "platform/serial/open_device.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <linux/serial.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <system_error>
#include <termios.h>
#include <unistd.h>

namespace serial {
namespace {

using std::chrono::steady_clock;

/// How long a device that takes no more may hold up its writer. Its own buffer has room for more
/// than anybody sends at once, so it is one that has stopped.
constexpr std::chrono::milliseconds patience_of_writer{50};

struct Speed {
    int baud;
    speed_t code;
};
constexpr Speed speeds[] = {{50, B50},         {75, B75},         {110, B110},      {134, B134},
                            {150, B150},       {200, B200},       {300, B300},      {600, B600},
                            {1200, B1200},     {1800, B1800},     {2400, B2400},    {4800, B4800},
                            {9600, B9600},     {19200, B19200},   {38400, B38400},  {57600, B57600},
                            {115200, B115200}, {230400, B230400}, {460800, B460800}};

struct Counter {
    int serial_icounter_struct::*count;
    Event event;
};
constexpr Counter counters[] = {{&serial_icounter_struct::brk, Event::break_received},
                                {&serial_icounter_struct::frame, Event::framing_error},
                                {&serial_icounter_struct::overrun, Event::overrun},
                                {&serial_icounter_struct::buf_overrun, Event::receive_overflow},
                                {&serial_icounter_struct::parity, Event::parity_error}};

timespec as_timespec(steady_clock::duration time) {
    const auto left = std::max(time, steady_clock::duration::zero());
    const auto seconds = std::chrono::floor<std::chrono::seconds>(left);
    return {seconds.count(), (left - seconds).count()};
}

class Real_SComm final : public SComm {
public:
    explicit Real_SComm(Port_Numbers& numbers)
        : numbers_(numbers), wake_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
        if (wake_.number() < 0) throw std::system_error(errno, std::generic_category(), "eventfd");
    }
    ~Real_SComm() override { close(); }

    void look_for_ports() override { numbers_.look(); }
    QString device_name(int number) override {
        const std::optional<Port> found = numbers_.port(number);
        return found ? found->name : QString();
    }

protected:
    void open_device(const Line_Settings& line) override;
    void close_device() noexcept override;
    void put_settings(const Line_Settings& line) override;
    bool put_rts(bool on) override { return put_lines(TIOCM_RTS, on); }
    void send(std::span<const Byte> bytes) override;
    void fetch() override;
    void discard_input() override { discard(TCIFLUSH); }
    void discard_output() override { discard(TCOFLUSH); }
    bool sleep_until(Milliseconds moment, timing::Interruption& by) override;

private:
    [[noreturn]] void vanish(int number) {
        throw Error(Failure::vanished, path_, std::generic_category().message(number));
    }
    /// For what may fail without the device being lost.
    void doubt(int number) {
        if (number == EIO || number == ENXIO || number == ENODEV) vanish(number);
        happened(Event::unexpected_error);
    }
    bool put_lines(int lines, bool on);
    void discard(int which) {
        if (::tcflush(device_.number(), which) < 0) doubt(errno);
    }
    void answer_at_once() noexcept;
    void look_at_counters();

    Port_Numbers& numbers_;
    Handle wake_;
    Handle device_;
    std::string path_;
    bool hung_up_ = false;
    std::optional<serial_icounter_struct> counted_; ///< nothing where the driver does not count
};

void Real_SComm::open_device(const Line_Settings& line) {
    numbers_.look(); // an adapter that was plugged in again may have another path
    const std::optional<Port> found = numbers_.port(port());
    if (!found) throw Error(Failure::not_found, subject(), "no such port");
    path_ = found->path;
    device_ = open_device_alone(path_);
    hung_up_ = false;
    try {
        put_settings(line);
        put_lines(TIOCM_DTR | TIOCM_RTS, false); // which opening has switched on
        answer_at_once();
        discard(TCIOFLUSH);
        serial_icounter_struct counts{};
        counted_.reset();
        if (::ioctl(device_.number(), TIOCGICOUNT, &counts) == 0) counted_ = counts;
    } catch (...) {
        close_device();
        throw;
    }
}

/// Closing waits until everything has been sent, up to half a minute where nobody takes it.
void Real_SComm::close_device() noexcept {
    ::tcflush(device_.number(), TCIOFLUSH);
    // Whoever has it open as well keeps the terminal, and with it the exclusion.
    ::ioctl(device_.number(), TIOCNXCL);
    device_ = Handle();
}

/// Bytes that came with an error are dropped by the driver: taken for an answer they would be a
/// wrong one, while a missing one is asked for again.
void Real_SComm::put_settings(const Line_Settings& line) {
    constexpr tcflag_t sizes[] = {CS5, CS6, CS7, CS8};
    const tcflag_t size = sizes[line.data_bits - 5];
    const speed_t speed = std::ranges::find(speeds, line.baud, &Speed::baud)->code;
    termios wanted{};
    wanted.c_iflag = IGNBRK | IGNPAR | INPCK;
    wanted.c_cflag = size | CREAD | CLOCAL | HUPCL;
    if (line.stop_bits == 2) wanted.c_cflag |= CSTOPB;
    if (line.parity != Line_Settings::Parity::none) wanted.c_cflag |= PARENB;
    if (line.parity == Line_Settings::Parity::odd) wanted.c_cflag |= PARODD;
    wanted.c_cc[VMIN] = 1; // so that a read of nothing means the end, not patience
    ::cfsetspeed(&wanted, speed);
    termios taken{};
    if (::tcsetattr(device_.number(), TCSANOW, &wanted) < 0 ||
        ::tcgetattr(device_.number(), &taken) < 0) {
        const int number = errno;
        if (number == EIO || number == ENXIO || number == ENODEV) vanish(number);
        throw Error(Failure::settings, path_, std::generic_category().message(number));
    }
    if (::cfgetospeed(&taken) != speed) { // it reports success when it took anything at all
        throw Error(Failure::settings, path_, std::to_string(line.baud));
    }
}

bool Real_SComm::put_lines(int lines, bool on) {
    if (::ioctl(device_.number(), on ? TIOCMBIS : TIOCMBIC, &lines) == 0) return true;
    if (errno == ENOTTY || errno == EINVAL) return false;
    doubt(errno);
    return true;
}

/// Some adapters gather what they receive for 16 ms, which eight answers of one bit each make 128.
void Real_SComm::answer_at_once() noexcept {
    serial_struct driver{};
    if (::ioctl(device_.number(), TIOCGSERIAL, &driver) < 0) return;
    driver.flags |= static_cast<int>(ASYNC_LOW_LATENCY);
    ::ioctl(device_.number(), TIOCSSERIAL, &driver); // refused by many, and only slower then
}

void Real_SComm::send(std::span<const Byte> bytes) {
    const auto give_up = steady_clock::now() + patience_of_writer;
    while (!bytes.empty()) {
        const ssize_t count = ::write(device_.number(), bytes.data(), bytes.size());
        if (count >= 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(count));
            continue;
        }
        if (errno == EINTR) continue;
        if (errno != EAGAIN) vanish(errno);
        const timespec left = as_timespec(give_up - steady_clock::now());
        pollfd waited{device_.number(), POLLOUT, 0};
        if (::ppoll(&waited, 1, &left, nullptr) == 0) return happened(Event::transmit_full);
    }
}

void Real_SComm::fetch() {
    std::array<Byte, 4096> chunk{};
    bool any = false;
    for (int i = 0; i < 8; ++i) { // no more than is kept: it may come faster than it is read
        const ssize_t count = ::read(device_.number(), chunk.data(), chunk.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0 && errno == EAGAIN) break;
        if (count <= 0) { // what came before is told first
            if (!any) vanish(count < 0 ? errno : EIO);
            break;
        }
        arrived({chunk.data(), static_cast<std::size_t>(count)});
        any = true;
    }
    if (hung_up_ && !any) vanish(EIO);
    look_at_counters();
}

void Real_SComm::look_at_counters() {
    serial_icounter_struct now{};
    if (!counted_ || ::ioctl(device_.number(), TIOCGICOUNT, &now) < 0) return;
    for (const Counter& counter : counters) {
        if (now.*counter.count != (*counted_).*counter.count) happened(counter.event);
    }
    counted_ = now;
}

bool Real_SComm::sleep_until(Milliseconds moment, timing::Interruption& by) {
    const timing::Interruption::Listener listener(
        by, [this] { static_cast<void>(::eventfd_write(wake_.number(), 1)); });
    for (;;) {
        const timespec left = as_timespec(steady_clock::time_point(moment) - steady_clock::now());
        pollfd waited[] = {{wake_.number(), POLLIN, 0}, {device_.number(), POLLIN, 0}};
        const int ready = ::ppoll(waited, std::size(waited), &left, nullptr);
        if (ready < 0 && errno != EINTR) {
            throw std::system_error(errno, std::generic_category(), "ppoll");
        }
        if (ready > 0 && waited[0].revents != 0) { // perhaps by one of the wait before
            eventfd_t ignored = 0;
            static_cast<void>(::eventfd_read(wake_.number(), &ignored));
            if (by.raised()) return false;
        }
        if (ready > 0 && waited[1].revents != 0) {
            hung_up_ = (waited[1].revents & (POLLHUP | POLLERR | POLLNVAL)) != 0;
            return false;
        }
        if (ready == 0) return true;
    }
}

} // namespace

std::unique_ptr<SComm> real_scomm(Port_Numbers& numbers) {
    return std::make_unique<Real_SComm>(numbers);
}

} // namespace serial
