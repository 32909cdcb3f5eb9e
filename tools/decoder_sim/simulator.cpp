#include "simulator.h"

#include "devices.h"
#include "judge.h"
#include "lateness.h"
#include "terminal.h"

#include <array>
#include <condition_variable>
#include <fcntl.h>
#include <mutex>
#include <poll.h>
#include <thread>
#include <unistd.h>

namespace decoder_sim {

namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

constexpr milliseconds look_at_closed_port{2}; ///< nothing wakes us when somebody opens it
constexpr milliseconds between_noise{7};

Duration time_of_byte(int stop_bits) {
    constexpr int start_and_data_bits = 9;
    return microseconds(1'000'000LL * (start_and_data_bits + stop_bits) / 38400);
}

} // namespace

struct Simulator::Inside {
    explicit Inside(Settings wanted);
    ~Inside();
    Inside(const Inside&) = delete;
    Inside& operator=(const Inside&) = delete;

    void run();
    void wake() const;
    Time work(const Seen& now);
    void sleep_until(Time moment, int descriptor);
    void follow_plug();
    void plug_in(Time now);
    void take_input(const Seen& now);
    void close_port(const char* note, Time now);
    void give_output(Time now);
    void make_noise(Time now);

    mutable std::mutex mutex; // holds everything below but the descriptors and the thread
    std::condition_variable plug_moved;
    Settings settings;
    Journal journal;
    Troubles troubles;
    Wire wire{troubles};
    Decoder decoder;
    Interface interface;
    Judge judge;
    std::unique_ptr<Terminal> terminal;
    std::unique_ptr<Port_Link> link;
    bool port_open = false;
    bool plugged = true; ///< as it shall be
    bool stopping = false;
    Time next_noise{};
    unsigned noise = 1;
    std::array<int, 2> wake_pipe{};
    Lateness lateness; // the thread's own
    std::thread thread;
};

Simulator::Inside::Inside(Settings wanted)
    : settings(std::move(wanted)), decoder(settings.decoder),
      interface({decoder, wire, troubles, journal, settings.answer_delay}, settings.knows_basu,
                settings.knows_susi, settings.ok_delay),
      judge(journal, settings.tick), terminal(std::make_unique<Terminal>()),
      link(std::make_unique<Port_Link>(settings.link, settings.name, terminal->port())) {
    if (::pipe(wake_pipe.data()) != 0)
        throw std::system_error(errno, std::generic_category(), "pipe");
    for (const int end : wake_pipe) {
        ::fcntl(end, F_SETFL, O_NONBLOCK);
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
    }
    thread = std::thread([this] { run(); });
}

Simulator::Inside::~Inside() {
    {
        const std::lock_guard lock(mutex);
        stopping = true;
    }
    wake();
    thread.join();
    for (const int end : wake_pipe) ::close(end);
}

void Simulator::Inside::wake() const {
    [[maybe_unused]] const ssize_t count = ::write(wake_pipe[1], "", 1);
}

void Simulator::Inside::run() {
    for (;;) {
        Time until;
        int descriptor = -1;
        bool last = false;
        std::vector<Entry> fresh;
        {
            const std::lock_guard lock(mutex);
            last = stopping; // after one more look at what has come
            until = work(lateness.looked());
            if (terminal && port_open) descriptor = terminal->descriptor();
            fresh = journal.take_fresh();
        }
        if (settings.listener)
            for (const Entry& entry : fresh) settings.listener(entry);
        if (last) return;
        sleep_until(until, descriptor);
    }
}

/// @return when there is something to do again, if nothing comes before
Time Simulator::Inside::work(const Seen& now) {
    follow_plug();
    if (!terminal) return now.at + milliseconds(1000);
    take_input(now);
    make_noise(now);
    give_output(now);
    Time until = now.at + (port_open ? milliseconds(1000) : look_at_closed_port);
    if (const auto next = wire.next(time_of_byte(terminal->line().stop_bits)))
        until = std::min(until, *next);
    if (troubles.noise_always() && port_open) until = std::min(until, next_noise);
    return until;
}

void Simulator::Inside::sleep_until(Time moment, int descriptor) {
    const auto left = std::max(Duration{}, moment - Clock::now());
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
    const timespec timeout{seconds.count(), (left - seconds).count()};
    std::array<pollfd, 2> watched{{{wake_pipe[0], POLLIN, 0}, {descriptor, POLLIN, 0}}};
    lateness.begin_sleep();
    ::ppoll(watched.data(), watched.size(), &timeout, nullptr);
    lateness.end_sleep();
    std::array<char, 64> woken{};
    while (::read(wake_pipe[0], woken.data(), woken.size()) > 0) {
    }
}

void Simulator::Inside::follow_plug() {
    if (plugged == (terminal != nullptr)) return;
    const Time now = Clock::now();
    if (!plugged) {
        close_port("unplugged", now);
        interface.restart();
        link.reset();
        terminal.reset();
    } else {
        plug_in(now);
    }
    plug_moved.notify_all();
}

void Simulator::Inside::plug_in(Time now) {
    try {
        auto fresh = std::make_unique<Terminal>();
        link = std::make_unique<Port_Link>(settings.link, settings.name, fresh->port());
        terminal = std::move(fresh);
        journal.note("plugged in", now);
    } catch (const std::exception& error) {
        plugged = false;
        journal.note(std::string("cannot be plugged in: ") + error.what(), now);
    }
}

void Simulator::Inside::take_input(const Seen& now) {
    const Terminal::Read read = terminal->read();
    if (!port_open && (!read.bytes.empty() || !read.closed)) {
        port_open = true;
        journal.note("port opened", now);
    }
    if (!read.bytes.empty()) {
        const Line_Settings line = terminal->line();
        journal.from_host(read.bytes, now);
        judge.sent(read.bytes, now, line);
        for (const Byte byte : read.bytes) {
            const Time heard = wire.arrival(now, time_of_byte(line.stop_bits));
            for (const Byte each : wire.arriving(byte)) interface.hear(each, heard);
        }
    }
    if (!read.closed || !port_open) return;
    close_port("port closed", now);
    terminal->drop_unread();
}

void Simulator::Inside::close_port(const char* note, Time now) {
    port_open = false;
    wire.clear();
    judge.port_closed();
    interface.lose_port();
    journal.note(note, now);
}

void Simulator::Inside::make_noise(Time now) {
    if (!troubles.noise_always() || !port_open || now < next_noise) return;
    noise = noise * 1103515245U + 12345U;
    const auto byte = static_cast<Byte>(noise >> 16);
    wire.send({&byte, 1}, now, Wire::From::noise);
    next_noise = now + between_noise;
}

void Simulator::Inside::give_output(Time now) {
    const Duration byte_time = time_of_byte(terminal->line().stop_bits);
    while (const auto byte = wire.left(now, byte_time)) {
        terminal->write(*byte);
        journal.to_host(*byte, now);
        judge.delivered(*byte, now);
    }
}

Simulator::Simulator(Settings settings) : inside_(std::make_unique<Inside>(std::move(settings))) {}
Simulator::~Simulator() = default;

std::string Simulator::port() const {
    const std::lock_guard lock(inside_->mutex);
    return inside_->terminal ? inside_->terminal->port() : std::string();
}

void Simulator::trouble(Trouble trouble, int number) {
    std::unique_lock lock(inside_->mutex);
    switch (trouble) {
    case Trouble::unplug:
    case Trouble::plug:
        inside_->plugged = trouble == Trouble::plug;
        inside_->wake();
        inside_->plug_moved.wait(
            lock, [this] { return inside_->plugged == (inside_->terminal != nullptr); });
        return;
    case Trouble::decoder_off:
    case Trouble::decoder_on:
        return inside_->interface.take_decoder(trouble == Trouble::decoder_off, Clock::now());
    default:
        inside_->troubles.order(trouble, number);
        inside_->wake();
    }
}

std::vector<Fault> Simulator::faults() const {
    const std::lock_guard lock(inside_->mutex);
    return inside_->journal.faults();
}

std::vector<Entry> Simulator::log() const {
    const std::lock_guard lock(inside_->mutex);
    return inside_->journal.entries();
}

Bytes Simulator::sent_since(Time moment) const {
    const std::lock_guard lock(inside_->mutex);
    Bytes bytes;
    for (const Entry& entry : inside_->journal.entries())
        if (entry.kind == Entry::Kind::from_host && entry.at >= moment)
            bytes.insert(bytes.end(), entry.bytes.begin(), entry.bytes.end());
    return bytes;
}

int Simulator::cv(int number) const {
    const std::lock_guard lock(inside_->mutex);
    return inside_->decoder.cv(number);
}

void Simulator::put_cv(int number, int value) {
    const std::lock_guard lock(inside_->mutex);
    inside_->decoder.put_cv(number, static_cast<Byte>(value));
}

std::vector<Set_Cv> Simulator::loaded_set() const {
    const std::lock_guard lock(inside_->mutex);
    return inside_->decoder.set();
}

bool Simulator::set_open() const {
    const std::lock_guard lock(inside_->mutex);
    return inside_->decoder.set_open();
}

} // namespace decoder_sim
