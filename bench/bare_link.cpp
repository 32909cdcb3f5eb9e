// bench_bare_link PORT read|load: does over a programming interface what the least program could, with
// blocking calls and the pauses that interface and decoder need, and prints the milliseconds it took.
// It reads all 1024 CVs, or loads the CVs of a set that bench_library has made.

#include "link/transport/crc8.h"

#include <array>
#include <chrono>
#include <fcntl.h>
#include <iostream>
#include <span>
#include <stdexcept>
#include <string_view>
#include <termios.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Bytes = std::vector<std::uint8_t>;

constexpr std::uint8_t acknowledged = 0x1C;

class Port {
public:
    explicit Port(const char* path) : file_(open(path, O_RDWR | O_NOCTTY)) {
        termios line{};
        if (file_ < 0 || tcgetattr(file_, &line) != 0) throw std::runtime_error("no such port");
        cfmakeraw(&line);
        cfsetspeed(&line, B38400);
        line.c_cflag |= CSTOPB | CLOCAL;
        tcsetattr(file_, TCSANOW, &line);
    }
    ~Port() { close(file_); }
    Port(const Port&) = delete;
    Port& operator=(const Port&) = delete;

    void send(std::span<const std::uint8_t> bytes) {
        if (write(file_, bytes.data(), bytes.size()) < 0) throw std::runtime_error("not written");
    }
    void send(std::string_view text) { send(Bytes(text.begin(), text.end())); }
    std::uint8_t answer() {
        std::uint8_t byte = 0;
        if (read(file_, &byte, 1) != 1) throw std::runtime_error("not answered");
        return byte;
    }
    void forget() { tcflush(file_, TCIFLUSH); }

private:
    int file_;
};

void wait(std::chrono::microseconds time) { std::this_thread::sleep_for(time); }

/// A byte for each bit of the answer.
int read_bits(Port& port, const Bytes& request) {
    int value = 0;
    for (int bit = 0; bit < 8; ++bit) {
        port.send(bit == 0 ? request : Bytes{0xFF});
        if (port.answer() == acknowledged) value |= 1 << bit;
    }
    return value;
}

/// On the line CVs count from 0.
int read_cv(Port& port, int cv) {
    const int there = cv - 1;
    return read_bits(
        port, {0x01, static_cast<std::uint8_t>(there >> 8), static_cast<std::uint8_t>(there)});
}

/// Bits as long as a decoder needs them, sent one after the other.
void send_bits(Port& port, std::initializer_list<std::uint8_t> bits, int times) {
    for (int i = 0; i < times; ++i)
        for (const std::uint8_t bit : bits) {
            port.send(std::array{bit});
            wait(1250us);
        }
}

void connect(Port& port) {
    wait(500ms);
    port.send("\r");
    wait(100ms);
    port.send("BASU_EIN\r");
    wait(500ms);
    port.forget();
    wait(200ms);
    send_bits(port, {0xEF, 0xBF}, 20);
    wait(15ms);
    send_bits(port, {0xBF, 0xEF, 0xEF}, 10);
    wait(100ms);
    port.forget();
    read_cv(port, 8);
    read_bits(port, {0x04});
    read_bits(port, {0x07});
}

void send_set_packet(Port& port, std::uint8_t command, std::uint8_t low, std::uint8_t value) {
    Bytes packet{0x09, command, low, value};
    packet.push_back(link_transport::PacketChecksum(packet, 0xAA));
    port.send(packet);
    if (command != 0x10 && port.answer() != acknowledged) throw std::runtime_error("refused");
}

void load(Port& port) {
    Bytes capacity{0x09, 0x10, 0, 0};
    capacity.push_back(link_transport::PacketChecksum(capacity, 0xAA));
    read_bits(port, capacity);
    send_set_packet(port, 0x08, 0, 0);
    for (int cv = 1; cv <= 250; ++cv) {
        if (cv == 7 || cv == 8 || cv == 65 || cv == 250) continue; // those of the decoder itself
        send_set_packet(port, static_cast<std::uint8_t>(0x04 + ((cv - 1) >> 8)),
                        static_cast<std::uint8_t>(cv - 1), 1);
    }
    send_set_packet(port, 0x0C, 0, 0);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    try {
        const auto start = Clock::now();
        Port port(argv[1]);
        connect(port);
        if (std::string_view(argv[2]) == "load")
            load(port);
        else
            for (int cv = 1; cv <= 1024; ++cv) read_cv(port, cv);
        std::cout << std::chrono::duration<double, std::milli>(Clock::now() - start).count()
                  << '\n';
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
