#include "platform/serial/fake_scomm.h"
#include "platform/serial/open_device.h"
#include "platform/serial/real_scomm.h"
#include "support/temporary_folder.h"

#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <grp.h>
#include <pty.h>
#include <sys/stat.h>
#include <termios.h>
#include <thread>
#include <unistd.h>

namespace serial {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using timing::real_time;

using Way = Fake_SComm::Way;
using Fate = Fake_SComm::Fate;

Error refusal(const std::function<void()>& opening) {
    try {
        opening();
    } catch (const Error& error) {
        return error;
    }
    return {Failure::device, "", "opened"};
}

/// A device that sends every byte back after 3 ms, and a status byte 2 ms after RTS goes on.
struct Fake : testing::Test {
    Fake() {
        control.ports[1].on_byte = [this](Byte byte) { control.answer({byte}, 3ms); };
        control.ports[1].on_rts = [this](bool on) { control.answer(Bytes(on, 0x81), 2ms); };
    }
    timing::Virtual_Time time;
    timing::Interruption stop;
    Fake_SComm control{time};
};

TEST_F(Fake, answers_and_events_come_in_their_time) {
    std::vector<std::pair<Event, Milliseconds>> events;
    control.on_event = [&](Event event) { events.emplace_back(event, time.now()); };
    control.receive_threshold(1);
    control.open();
    control.rts(true);
    control.rts(true);
    control.happen(Event::framing_error, 1ms);
    time.at(50ms, [&] { stop.raise(); });
    while (control.wait_until(1h, stop) == Wait_End::event) {
    }
    EXPECT_THAT(events, ElementsAre(std::pair(Event::framing_error, 1ms),
                                    std::pair(Event::data_received, 2ms)));
    control.write_text(QStringLiteral("x"));
    control.close();
    EXPECT_THAT(control.sent(), ElementsAre(Fake_SComm::Sent{50ms, 'x'}));
    EXPECT_THAT(control.rts_changes(), ElementsAre(Fake_SComm::Rts_Change{0ms, true, 0},
                                                   Fake_SComm::Rts_Change{50ms, false, 1}));
}

TEST_F(Fake, the_chosen_byte_is_spoiled_and_no_other) {
    struct Case {
        Way way;
        Fate fate;
        Bytes come; ///< 5 ms after 1, 2, 3 were sent
        Bytes later;
    };
    const Case cases[] = {
        {Way::sent, Fate::lost, {1, 3}, {}},
        {Way::sent, Fate::doubled, {1, 2, 2, 3}, {}},
        {Way::sent, Fate::changed, {1, 9, 3}, {}},
        {Way::sent, Fate::late, {1, 3}, {2}},
        {Way::received, Fate::lost, {1, 3}, {}},
        {Way::received, Fate::doubled, {1, 2, 2, 3}, {}},
        {Way::received, Fate::changed, {1, 9, 3}, {}},
        {Way::received, Fate::late, {1}, {2, 3}}, // no byte overtakes another
    };
    control.open();
    for (const Case& each : cases) {
        control.faults = {{each.way, control.bytes(each.way) + 2, each.fate, 9, 4ms}};
        control.write_bytes(Bytes{1, 2, 3});
        time.advance(5ms);
        EXPECT_EQ(control.read_bytes(), each.come) << int(each.way) << int(each.fate);
        time.advance(5ms);
        EXPECT_EQ(control.read_bytes(), each.later) << int(each.way) << int(each.fate);
    }
    EXPECT_EQ(control.sent().size(), 24U);
    EXPECT_EQ(control.wait_until(time.now() + 1ms, stop), Wait_End::time); // all is read
}

TEST_F(Fake, unplugged_at_any_step_it_is_told_once_and_stays_closed) {
    const std::function<void()> calls[] = {
        [&] { control.open(); },        [&] { control.rts(true); },
        [&] { control.clear_input(); }, [&] { control.write_bytes(Bytes{1}); },
        [&] { control.read_bytes(); },  [&] { control.wait_until(time.now() + 10ms, stop); }};
    const auto times_told = [&] {
        std::vector<Failure> kinds;
        for (const auto& call : calls) kinds.push_back(refusal(call).kind);
        return std::ranges::count(kinds, Failure::vanished);
    };
    EXPECT_EQ(times_told(), 0);
    const int steps = control.steps();
    control.close();
    for (int n = 1; n <= steps; ++n) {
        control.ports[1] = {};
        control.gone_at = control.steps() + n;
        EXPECT_EQ(times_told(), 1) << n;
        EXPECT_TRUE(!control.is_open() && control.lost() && control.device_name(1).isEmpty());
    }
}

/// A control whose port 7 is a pseudo-terminal, and the other end of that.
struct Real : testing::Test {
    Real() {
        std::array<char, 100> name{};
        int slave = -1;
        EXPECT_EQ(openpty(&end, &slave, name.data(), nullptr, nullptr), 0);
        termios line{};
        tcgetattr(slave, &line);
        line.c_lflag &= ~tcflag_t{ECHO};
        tcsetattr(slave, TCSANOW, &line);
        close(slave);
        path = name.data();
        std::filesystem::create_directory(folder / "ports");
        std::filesystem::create_symlink(path, folder / "ports/com7");
        control->port(7);
        control->on_event = [this](Event event) { events.push_back(event); };
    }
    ~Real() override { hang_up(); }
    void hang_up() {
        if (end >= 0) close(std::exchange(end, -1));
    }
    void come(const Bytes& bytes) const {
        EXPECT_EQ(write(end, bytes.data(), bytes.size()), ssize_t(bytes.size()));
    }
    Wait_End wait(Milliseconds time) {
        return control->wait_until(real_time().now() + time, never);
    }
    /// How much of a second the processor works while the control waits.
    double work_in_a_second() {
        const std::clock_t before = std::clock();
        EXPECT_EQ(wait(1s), Wait_End::time);
        return double(std::clock() - before) / CLOCKS_PER_SEC;
    }

    support::Temporary_Folder folder;
    int end = -1;
    std::string path;
    Port_Numbers numbers{files::real_disk(), {{folder / "none", folder / "none"}, folder.path()}};
    std::unique_ptr<SComm> control = real_scomm(numbers);
    std::vector<Event> events;
    timing::Interruption never;
};

TEST_F(Real, bytes_pass_unchanged_both_ways_and_events_come_while_waiting) {
    const Bytes odd{0, 3, 4, 10, 13, 0x11, 0x13, 0x1A, 0x7F, 0x80, 0xFF};
    come({1, 2}); // before opening
    control->settings(QStringLiteral("38400,N,8,2"));
    control->open();
    control->write_bytes(odd);
    Bytes gone(odd.size());
    EXPECT_EQ(read(end, gone.data(), gone.size()), ssize_t(gone.size()));
    EXPECT_EQ(gone, odd);
    termios line{};
    tcgetattr(end, &line);
    EXPECT_EQ(cfgetospeed(&line), speed_t{B38400});
    EXPECT_NE(line.c_cflag & CSTOPB, 0U);

    come(odd);
    EXPECT_EQ(wait(1h), Wait_End::event); // without any being asked for
    control->receive_threshold(1);
    EXPECT_EQ(wait(20ms), Wait_End::time); // what is left unread
    control->read_length(1);
    EXPECT_EQ(control->read_bytes(), Bytes{0});
    come({'a'});
    EXPECT_EQ(wait(1h), Wait_End::event);
    control->read_length(0);
    EXPECT_TRUE(control->read_text().endsWith(QStringLiteral("\u0080\u00FFa")));
    control->rts(true);
    control->rts(false);
    EXPECT_EQ(wait(1h), Wait_End::event);
    EXPECT_EQ(wait(20ms), Wait_End::time);
    EXPECT_THAT(events, ElementsAre(Event::data_received, Event::no_modem_lines));
    for (const char* wrong : {"", "38400,N,8", "38401,N,8,2", "38400,X,8,2", "38400,N,9,2",
                              "38400,N,8,0", "38400,N,8,22", "N,38400,8,2", "38400,,8,2"}) {
        EXPECT_THROW(control->settings(QString::fromUtf8(wrong)), Error) << wrong;
    }
}

TEST_F(Real, a_stopped_device_and_a_chattering_one_hold_nobody_up) {
    control->open();
    const auto begin = real_time().now();
    control->write_bytes(Bytes(200'000)); // nobody reads
    control->clear_output();
    for (int i = 0; i < 10'000 && control->input_count() < 32760; ++i) come(Bytes(100));
    come(Bytes(100));
    while (wait(100ms) == Wait_End::event) {
    }
    EXPECT_EQ(control->input_count(), 32760);
    EXPECT_THAT(events, ElementsAre(Event::transmit_full, Event::receive_overflow));
    control->write_bytes(Bytes(200'000));
    control->close();
    EXPECT_LT(real_time().now() - begin, 5s);
}

/// Its lifetime is that of a program with the rights of nobody special.
struct As_Nobody {
    As_Nobody() { EXPECT_TRUE(geteuid() != 0 || (setgroups(0, nullptr) + seteuid(65534) == 0)); }
    ~As_Nobody() { EXPECT_TRUE(getuid() != 0 || seteuid(0) == 0); }
};

TEST_F(Real, a_port_that_may_not_be_opened_says_why) {
    const auto opening = [&] { control->open(); };
    const std::string lock = "LCK.." + std::filesystem::path(path).filename().string();
    std::ofstream(folder / lock) << "      " << getppid() << "\n";
    std::filesystem::create_symlink(folder / lock, folder / "ports/com1");
    std::filesystem::create_symlink("/nowhere", folder / "ports/com2");
    const auto other = real_scomm(numbers);
    other->port(7);
    other->open();
    for (const auto& [port, kind] :
         {std::pair(1, Failure::no_port), std::pair(2, Failure::not_found),
          std::pair(9, Failure::not_found), std::pair(7, Failure::locked_elsewhere)}) {
        control->port(port);
        EXPECT_EQ(refusal(opening).kind, kind) << port;
    }
    chmod(path.c_str(), 0666);
    const Error held = refusal([&] { open_device_alone(path, folder.path()); });
    EXPECT_EQ(held.kind, Failure::locked_elsewhere);
    EXPECT_THAT(held.holder, testing::HasSubstr("(" + std::to_string(getppid()) + ")"));
    {
        const As_Nobody nobody;
        EXPECT_EQ(::open(path.c_str(), O_RDWR | O_NOCTTY), -1); // who asks for no lock
        other->close();
        EXPECT_EQ(refusal(opening).detail, "opened");
        control->close();
    }
    if (getuid() != 0) return; // only the administrator can give a device to a group
    EXPECT_EQ(chown(path.c_str(), 0, getgrnam("dialout")->gr_gid), 0);
    for (const auto& [mode, group] : {std::pair(0660U, "dialout"), std::pair(0640U, "")}) {
        chmod(path.c_str(), mode);
        const As_Nobody nobody;
        const Error error = refusal(opening);
        EXPECT_EQ(error.kind, Failure::denied);
        EXPECT_EQ(error.rights.owner + error.rights.group, std::string("root") + group);
    }
}

TEST_F(Real, a_hang_up_is_told_once_and_waiting_costs_nothing_before_and_after) {
    control->open();
    come({1}); // and stays unread
    wait(1h);
    EXPECT_LT(work_in_a_second(), 0.05);
    hang_up();
    EXPECT_EQ(refusal([&] { wait(1h); }).kind, Failure::vanished);
    EXPECT_TRUE(!control->is_open() && control->lost());
    EXPECT_EQ(control->input_count(), 0);
    control->rts(false);
    EXPECT_LT(work_in_a_second(), 0.05);
}

TEST_F(Real, another_thread_ends_a_wait) {
    control->open();
    for (int i = 0; i < 20; ++i) {
        timing::Interruption stop;
        const std::jthread other([&] {
            std::this_thread::sleep_for(Milliseconds(i % 5));
            stop.raise();
        });
        const auto begin = real_time().now();
        EXPECT_EQ(control->wait_until(begin + 1h, stop), Wait_End::interruption);
        EXPECT_LT(real_time().now() - begin, 100ms);
        EXPECT_EQ(wait(2ms), Wait_End::time); // of which the other one knows nothing
    }
}

} // namespace
} // namespace serial
