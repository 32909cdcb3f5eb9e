#pragma once

#include "link/serial/frm_Soundload_cls.h"
#include "link/transport/bit_loop.h"
#include "platform/serial/fake_scomm.h"

#include <QStringList>
#include <map>
#include <set>
#include <string>

namespace made_up {

using serial::Byte;
using serial::Bytes;
using timing::Milliseconds;

struct Log final : link_types::Link_Log {
    QStringList lines;
    void line(const QString& text) override { lines.append(text); }
};

/// A loop that takes a hundredth of a microsecond for a round.
struct Loop final : link_transport::Bit_Loop {
    explicit Loop(timing::Virtual_Time& time_) : time(time_) {}
    void count_to(std::int32_t rounds) override {
        rest += rounds;
        time.advance(Milliseconds(rest / 100'000));
        rest %= 100'000;
    }
    timing::Virtual_Time& time;
    std::int64_t rest = 0;
};

/// An interface on COM1 with a decoder behind it, on the track or over SUSI. It answers after 2 ms,
/// forgets a packet that stops in the middle, and does not answer one whose checksum is wrong.
struct Track {
    timing::Virtual_Time time;
    serial::Fake_SComm control{time};
    timing::Interruption abort;
    Log log;
    link_types::Link_Values values;
    Loop loop{time};
    std::map<int, int> cvs{{8, 13}};
    int type_code = 201;
    int protocol = 1;
    int capacity = 1;
    int silent_from = 0; ///< answers from this one on do not come; 0: all come
    int answers = 0;
    std::set<int> refused; ///< CVs of a set
    std::vector<Bytes> packets;
    std::map<int, int> set; ///< the CV set in the decoder
    bool whole = false;     ///< and it was ended

    Track() {
        control.ports[1].description = QStringLiteral("USB");
        control.ports[1].on_byte = [this](Byte byte) { take(byte); };
    }

    /// What was sent since the preamble, as one text.
    std::string sent() const {
        std::string all;
        for (const Bytes& packet : packets) {
            for (const Byte byte : packet) {
                constexpr char digits[] = "0123456789ABCDEF";
                all += digits[byte / 16];
                all += digits[byte % 16];
            }
            all += ' ';
        }
        return all;
    }

private:
    /// Whether the byte at `sum` is the checksum of [first, end) and of what stands behind it.
    static bool checks(const Bytes& packet, std::size_t first, std::size_t end, int initial,
                       std::size_t sum) {
        int crc = initial;
        const auto step = [&](Byte byte) {
            crc ^= byte;
            for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ (crc % 2 == 1 ? 0x8C : 0);
        };
        for (std::size_t i = first; i < end; ++i) step(packet[i]);
        if (sum + 1 < packet.size()) step(packet.back()); // the value stands behind its sum
        return crc == packet[sum];
    }
    void take(Byte byte) {
        if (time.now() - last_ > Milliseconds(100)) packet_.clear();
        last_ = time.now();
        if (packet_.empty() && (byte == 0xEF || byte == 0xBF)) return;
        packet_.push_back(byte);
        if (std::string("\rBS").find(static_cast<char>(packet_.front())) != std::string::npos) {
            if (byte != '\r') return;
            std::string text(packet_.begin(), packet_.end());
            if (text.size() > 1 && text.front() == '\r') text.erase(0, 1);
            packet_.clear();
            if (text != "BASU_EIN\r" && text != "SUSIV2\r") return;
            susi_ = text.front() == 'S';
            return control.answer({'O', 'K', '\r'}, Milliseconds(2));
        }
        if (susi_) return take_frame();
        const std::map<Byte, std::size_t> lengths{{0x01, 3}, {0x02, 5}, {0x04, 1}, {0x06, 6},
                                                  {0x07, 1}, {0x09, 5}, {0xFF, 1}, {0x00, 1}};
        const auto length = lengths.find(packet_.front());
        if (length == lengths.end()) return packet_.clear();
        if (packet_.size() < length->second) return;
        packets.push_back(packet_);
        const Bytes packet = std::exchange(packet_, {});
        if (packet[0] == 0x09 && !checks(packet, 0, 4, 0xAA, 4)) return;
        if (packet[0] == 0x06 && !checks(packet, 2, 4, 0, 4)) return;
        answer(packet);
    }
    void take_frame() {
        const auto is = [&](std::size_t at, Byte byte) {
            return packet_.size() > at && packet_[at] == byte;
        };
        const std::size_t length = is(3, 2) ? 12 : is(5, 2) ? 13 : is(5, 7) ? 10 : 12;
        if (packet_.size() < length) return;
        const Bytes frame = std::exchange(packet_, {});
        packets.push_back(frame);
        if (!checks(frame, 5, length == 10 ? 9 : length - 1, 0, length - 1)) return;
        if (length == 10) {
            susi_ = false;
            return control.answer({0x06}, Milliseconds(2));
        }
        const int cv = frame[9] * 256 + frame[10] + 1;
        if (length == 13) {
            cvs[cv] = frame[11];
            return control.answer({0x06}, Milliseconds(2));
        }
        const auto value = static_cast<Byte>(cv == 250 ? type_code : cvs[cv]);
        Bytes reply{0x06, value, 0};
        while (!checks(reply, 1, 2, 0, 2)) ++reply[2];
        control.answer(reply, Milliseconds(2));
    }
    void answer(const Bytes& packet) {
        const auto number = [&](std::size_t hi) { return packet[hi] * 256 + packet[hi + 1] + 1; };
        switch (packet[0]) {
        case 0x01:
            return begin_bits(cvs[number(1)]);
        case 0x04:
            return begin_bits(type_code);
        case 0x07:
            return begin_bits(protocol);
        case 0xFF:
            return next_bit();
        case 0x02:
        case 0x06:
            if (packet[1] != 0xAA) return;
            cvs[number(2)] = packet.back();
            return say(0x1C);
        case 0x09:
            if (packet[1] == 0x10) return begin_bits(capacity);
            if (packet[1] / 4 != 1 && packet[1] != 0x08 && packet[1] != 0x0C) return;
            if (packet[1] == 0x08) set.clear();
            whole = packet[1] == 0x0C;
            const int cv = packet[1] % 4 * 256 + packet[2] + 1;
            if (packet[1] < 8 && refused.contains(cv)) return say(0);
            if (packet[1] < 8) set[cv] = packet[3];
            say(0x1C);
        }
    }
    void begin_bits(int value) {
        value_ = value;
        next_bit();
    }
    void next_bit() {
        say(value_ % 2 == 1 ? 0x1C : 0x02);
        value_ /= 2;
    }
    void say(Byte byte) {
        if (silent_from == 0 || ++answers < silent_from) control.answer({byte}, Milliseconds(2));
    }

    Bytes packet_;
    Milliseconds last_{0};
    bool susi_ = false;
    int value_ = 0;
};

} // namespace made_up
