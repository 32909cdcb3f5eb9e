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

constexpr Byte yes = 0x1C;
constexpr Byte no = 0x5C; ///< one bit away

inline Byte crc8(const Bytes& bytes, Byte crc = 0) {
    for (Byte byte : bytes)
        for (int bit = 0; bit < 8; ++bit, byte >>= 1)
            crc = static_cast<Byte>(crc >> 1 ^ ((crc ^ byte) % 2 != 0 ? 0x8C : 0));
    return crc;
}

/// A port on COM1 and whatever a job needs besides.
struct Bench {
    timing::Virtual_Time time;
    serial::Fake_SComm control{time};
    timing::Interruption abort;
    Log log;
    link_types::Link_Values values;
    Loop loop{time};
    std::map<int, int> cvs{{8, 13}};
    int type_code = 201;
    int last_cv = 0;            ///< asking for one above it cancels; 0: none does
    std::vector<Bytes> packets; ///< since the preamble
    Bytes said;
    virtual ~Bench() = default;

    Bench() { plug_in(); }
    void plug_in() {
        control.ports[1].description = QStringLiteral("USB");
        control.ports[1].on_byte = [this](Byte byte) {
            // whoever takes too long for a packet begins a new one
            if (time.now() > last_byte_ + Milliseconds(20)) packet_.clear();
            last_byte_ = time.now();
            packet_.push_back(byte);
            take(byte);
        };
    }

protected:
    virtual void take(Byte byte) = 0;
    int read(int cv) {
        if (last_cv > 0 && cv != 8 && cv > last_cv) abort.raise();
        return cvs[cv];
    }
    void say(const Bytes& bytes) {
        said.insert(said.end(), bytes.begin(), bytes.end());
        control.answer(bytes, Milliseconds(2));
    }
    bool is_text(const std::string& text) const {
        return std::string(packet_.begin(), packet_.end()) == text + '\r';
    }
    Bytes packet_;

private:
    Milliseconds last_byte_{0};
};

/// An interface with a decoder on the track behind it, which answers after 2 ms.
struct Track : Bench {
    int protocol = 1;
    int capacity = 1;
    int silent_from = 0; ///< answers from this one on do not come; 0: all come
    int answers = 0;
    std::set<int> refused;       ///< CVs of a set
    bool basu = false;           ///< bytes go to the track
    bool loading = false;        ///< a set
    std::map<int, int> of_a_set; ///< taken since SetCVStart

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
    void take(Byte byte) override {
        if (!basu || packet_.front() == '\r' || packet_.front() == 'B') {
            if (byte != '\r') return;
            basu = basu || is_text("BASU_EIN");
            if (is_text("BASU_EIN")) say({'O', 'K', '\r'});
            packet_.clear();
            return;
        }
        static const std::map<Byte, std::size_t> lengths{
            {0x01, 3}, {0x02, 5}, {0x04, 1}, {0x06, 6}, {0x07, 1}, {0x09, 5}, {0xFF, 1}, {0x00, 1}};
        const auto length = lengths.find(packet_.front());
        if (length == lengths.end()) return packet_.clear(); // 0xEF and 0xBF, or noise
        if (packet_.size() < length->second) return;
        packets.push_back(packet_);
        answer(std::exchange(packet_, {}));
    }
    void answer(const Bytes& packet) {
        const auto number = [&](std::size_t hi) { return packet[hi] * 256 + packet[hi + 1] + 1; };
        switch (packet[0]) {
        case 0x00:
            bits_ = 0;
            return;
        case 0x01:
            return begin_bits(read(number(1)));
        case 0x04:
            return begin_bits(type_code);
        case 0x07:
            return begin_bits(protocol);
        case 0xFF:
            return next_bit();
        case 0x02:
            return acknowledge(packet[1] == 0xAA && write(cvs, number(2), packet[4]));
        case 0x06:
            return acknowledge(packet[1] == 0xAA &&
                               packet[4] == crc8({packet[2], packet[3], packet[5]}) &&
                               write(cvs, number(2), packet[5]));
        case 0x09:
            if (packet[4] != crc8({packet.begin(), packet.end() - 1}, 0xAA))
                return acknowledge(false);
            if (packet[1] == 0x10) return begin_bits(capacity);
            return acknowledge(load(packet[1], packet[1] % 4 * 256 + packet[2] + 1, packet[3]));
        }
    }
    static bool write(std::map<int, int>& to, int number, int value) {
        to[number] = value;
        return true;
    }
    bool load(Byte command, int number, int value) {
        const bool was_loading = loading;
        if (command == 0x08) of_a_set.clear();
        if (command == 0x0C && loading) // the answer to the end may have been lost
            for (const auto& [cv, taken] : of_a_set) cvs[cv] = taken;
        loading = command == 0x08 || was_loading;
        if (command >= 8) return loading;
        return loading && !refused.contains(number) && write(of_a_set, number, value);
    }
    void begin_bits(int value) {
        value_ = value;
        bits_ = 8;
        next_bit();
    }
    void next_bit() {
        if (bits_ == 0) return;
        --bits_;
        acknowledge(value_ % 2 == 1);
        value_ /= 2;
    }
    void acknowledge(bool good) {
        if (silent_from == 0 || ++answers < silent_from) say({good ? yes : no});
    }

    int value_ = 0;
    int bits_ = 0; ///< still to be asked for
};

/// An interface that speaks SUSI, with a decoder.
struct Susi final : Bench {
    Susi() {
        cvs[250] = type_code;
        cvs[251] = 1;
    }
    bool programming = false;

private:
    void take(Byte byte) override {
        if (packet_.front() != 0) {
            if (byte != '\r') return;
            programming = programming || is_text("SUSIV2");
            if (is_text("SUSIV2")) say({'O', 'K', '\r'});
            return packet_.clear();
        }
        if (packet_.size() < 6) return;
        const std::size_t length = packet_[5] == 2 ? 13 : packet_[5] == 7 ? 10 : 12;
        if (packet_.size() < length) return;
        packets.push_back(packet_);
        answer(std::exchange(packet_, {}));
    }
    void answer(const Bytes& frame) {
        const auto begins = [&](const Bytes& head) {
            return std::equal(head.begin(), head.end(), frame.begin());
        };
        if (!programming || frame.back() != crc8({frame.begin() + 5, frame.end() - 1})) return;
        const int number = frame[9] * 256 + (frame.size() > 11 ? frame[10] : 0) + 1;
        if (begins({0, 0, 0, 2, 1, 1, 0, 0, 0})) {
            const auto value = static_cast<Byte>(read(number));
            say({0x06, value, crc8({value})});
        } else if (begins({0, 0, 0, 0, 1, 2, 0, 0, 0})) {
            cvs[number] = frame[11];
            say({0x06});
        } else if (begins({0, 0, 0, 0, 0, 7, 0x55, 0xAA, 0})) {
            programming = false;
            say({0x06});
        }
    }
};

} // namespace made_up
