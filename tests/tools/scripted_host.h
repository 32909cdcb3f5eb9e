#pragma once

#include "decoder_sim/simulator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fcntl.h>
#include <functional>
#include <map>
#include <poll.h>
#include <sstream>
#include <termios.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace decoder_sim {

using namespace std::chrono_literals;

/// The other side, as bare as can be: literal bytes on an open descriptor.
class Host {
public:
    explicit Host(const std::string& port) : port_(::open(port.c_str(), O_RDWR | O_NOCTTY)) {
        put_line(CSTOPB);
    }
    ~Host() { ::close(port_); }
    void reopen(const std::string& port) { // with time for what is under way
        std::this_thread::sleep_for(20ms);
        ::close(port_);
        std::this_thread::sleep_for(20ms);
        port_ = ::open(port.c_str(), O_RDWR | O_NOCTTY);
        put_line(CSTOPB);
    }

    void put_line(tcflag_t stop_bits) const {
        termios line{};
        ::tcgetattr(port_, &line);
        ::cfmakeraw(&line);
        ::cfsetspeed(&line, B38400);
        line.c_cflag = (line.c_cflag & ~tcflag_t{CSTOPB}) | stop_bits;
        ::tcsetattr(port_, TCSANOW, &line);
    }
    ssize_t send(const Bytes& bytes) const { return ::write(port_, bytes.data(), bytes.size()); }
    /// @param text ~ is CR
    void text(std::string text) const {
        std::ranges::replace(text, '~', '\r');
        send({text.begin(), text.end()});
    }
    /// @param times_and_microseconds "10@1300"; from byte to byte, 0: all at once
    void spaced(const Bytes& group, const std::string& times_and_microseconds) const {
        std::istringstream in(times_and_microseconds);
        int times = 0, apart = 0;
        in >> times, in.ignore(), in >> apart;
        Bytes all;
        while (times-- > 0) all.insert(all.end(), group.begin(), group.end());
        if (apart == 0) send(std::exchange(all, {}));
        for (const auto byte : all) {
            send({byte});
            std::this_thread::sleep_for(apart * 1us);
        }
    }
    /// Until it takes what it shall, as it does only in peace.
    void calibrate() const {
        for (auto took = 0ms; took < 50ms || took > 75ms;) {
            const auto start = Clock::now();
            spaced({0xEF, 0xBF}, "20@1450");
            took = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
        }
    }
    Bytes receive(std::size_t count, std::chrono::milliseconds patience = 2000ms) const {
        Bytes bytes;
        Byte byte = 0;
        for (pollfd watched{port_, POLLIN, 0};
             bytes.size() < count && ::poll(&watched, 1, static_cast<int>(patience.count())) == 1 &&
             ::read(port_, &byte, 1) == 1;)
            bytes.push_back(byte);
        return bytes;
    }
    static constexpr auto no_answer = 60ms; ///< is so long in coming
    unsigned bits(const Bytes& request, std::chrono::milliseconds patience) const {
        unsigned value = 0;
        for (unsigned bit = 0; bit < 8; ++bit) {
            send(bit == 0 ? request : Bytes{0xFF});
            const Bytes answer = receive(1, patience);
            if (answer.empty()) return 256;
            if (answer[0] == 0x1C) value += 1U << bit;
        }
        return value;
    }
    bool mode(const std::string& request) const {
        if (request[0] == 'B') text("~");
        std::this_thread::sleep_for(30ms);
        text(request + "~");
        const bool ok = receive(3) == Bytes{'O', 'K', '\r'};
        std::this_thread::sleep_for(50ms);
        return ok;
    }

private:
    int port_;
};

/// A simulator with a host at it that plays scripts.
struct Rig {
    explicit Rig(int type_code = 201, std::chrono::milliseconds tick = 1ms)
        : simulator({.decoder = usual_traits(type_code), .tick = tick}), host(simulator.port()) {}
    void play(const std::string& script);
    void act(const std::string& word);
    static Byte byte_of(const std::string& hex) {
        return static_cast<Byte>(std::stoi(hex, nullptr, 16));
    }
    std::string faults() const {
        std::string all;
        for (const Fault& fault : simulator.faults())
            all += std::string(sentence(fault.rule)) + " (" + fault.state + ")\n";
        return all;
    }
    Simulator simulator;
    Host host;
    Bytes gathered;
};

inline const std::map<std::string, std::string> packets{
    {"read29", "01 00 1C"},
    {"write3", "02 AA 00 02 28"},
    {"capacity", "09 10 00 00 6B"},
    {"set-start", "09 08 00 00 04"},
    {"set3", "09 04 02 28 CF"},
    {"set-end", "09 0C 00 00 9A"},
    {"zeros7", "00 00 00 00 00 00 00"},
    {"zeros", "zeros7 00"},
    {"give-up", "read29 bits=256 zeros"},
    {"write-in-vain", "write3 gets="},
    {"susi29", "00 00 00 02 01 01 00 00 00 00 1C"},
    {"susi3", "00 00 00 00 01 02 00 00 00 00 02 28 0A"},
    {"susi-in-vain", "susi29 09 gets="},
    {"leave", "00 00 00 00 00 07 55 AA 00 C1"}};

/// Plays a script. Two hex digits are a byte; bytes are written at once when a word comes:
///   bits=6  eight bits are read      gets=06  so it is answered, or not at all      wait  anyhow
///   basu, susi, link  a mode, with all pauses      text:A~  bytes as text, ~ is CR
///   pairs20@1500, groups10@1300  calibration and preamble, microseconds apart
/// and what troubles and packets are called; susi29 is without its checksum.
inline void Rig::play(const std::string& script) {
    std::istringstream words(script);
    for (std::string word; words >> word;)
        if (word.size() == 2 && word.find_first_not_of("0123456789ABCDEF") == std::string::npos)
            gathered.push_back(byte_of(word));
        else if (const auto packet = packets.find(word); packet != packets.end())
            play(packet->second);
        else
            act(word);
}

inline void Rig::act(const std::string& word) {
    const std::size_t cut = std::min(word.size(), word.find_first_of("=:0123456789"));
    const std::string name = word.substr(0, cut);
    const std::string rest = word.substr(cut + (word.find_first_of("=:") == cut ? 1 : 0));
    const Bytes bytes = std::exchange(gathered, {});
    const auto patience = rest.empty() || rest == "256" ? Host::no_answer : 5000ms;
    const Bytes wanted = name == "gets" && !rest.empty() ? Bytes{byte_of(rest)} : Bytes{};
    if (name != "bits") host.send(bytes);
    const std::map<std::string, std::function<void()>> acts{
        {"bits", [&] { EXPECT_EQ(std::to_string(host.bits(bytes, patience)), rest) << word; }},
        {"gets", [&] { EXPECT_EQ(host.receive(1, patience), wanted) << word; }},
        {"wait", [&] { host.receive(1, 5000ms); }},
        {"pause", [&] { std::this_thread::sleep_for(Host::no_answer); }},
        {"text", [&] { host.text(rest); }},
        {"basu", [&] { EXPECT_TRUE(host.mode("BASU_EIN")); }},
        {"susi", [&] { EXPECT_TRUE(host.mode("SUSIV2")); }},
        {"link", [&] { play("basu groups10@1300 pause"); }},
        {"pairs",
         [&] {
             host.spaced({0xEF, 0xBF}, rest);
         }},
        {"groups",
         [&] {
             host.spaced({0xBF, 0xEF, 0xEF}, rest);
         }},
        {"calibration", [&] { host.calibrate(); }},
        {"one-stop-bit", [&] { host.put_line(0); }},
        {"reopen", [&] { host.reopen(simulator.port()); }},
        {"end", [] {}},
    };
    const auto order = parsed_trouble(name + " " + rest);
    if (const auto act = acts.find(name); act != acts.end())
        act->second();
    else if (order)
        simulator.trouble(order->trouble, order->number);
    else
        ADD_FAILURE() << word << " means nothing";
}

} // namespace decoder_sim
