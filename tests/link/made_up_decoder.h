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

/// An interface on COM1 with a decoder on the track behind it. It believes every packet whose bytes
/// are complete, and answers after 2 ms.
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
    void take(Byte byte) {
        if (packet_.empty() && (byte == 0xEF || byte == 0xBF)) return;
        packet_.push_back(byte);
        if (packet_.front() == '\r' || packet_.front() == 'B') {
            if (byte == '\r' && packet_.size() > 1)
                control.answer({'O', 'K', '\r'}, Milliseconds(2));
            if (byte == '\r') packet_.clear();
            return;
        }
        const std::map<Byte, std::size_t> lengths{{0x01, 3}, {0x02, 5}, {0x04, 1}, {0x06, 6},
                                                  {0x07, 1}, {0x09, 5}, {0xFF, 1}, {0x00, 1}};
        if (packet_.size() < lengths.at(packet_.front())) return;
        packets.push_back(packet_);
        answer(std::exchange(packet_, {}));
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
            cvs[number(2)] = packet.back();
            return say(0x1C);
        case 0x09:
            if (packet[1] == 0x10) return begin_bits(capacity);
            say(packet[1] < 8 && refused.contains(packet[1] % 4 * 256 + packet[2] + 1) ? 0 : 0x1C);
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
    int value_ = 0;
};

} // namespace made_up
