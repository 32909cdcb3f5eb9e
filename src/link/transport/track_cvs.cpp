// Reading and writing CVs and CV sets on the track.

#include "link/transport/cls_QD_Schiene_Soundload.h"
#include "link/transport/crc8.h"

#include <utility>

namespace link_transport {
namespace {

using link_types::no_value;

constexpr std::uint8_t acknowledged = 0x1C;
constexpr int ticks_for_answer = 50;
constexpr int attempts = 5;

/// What the packets of a CV set mean.
constexpr std::uint8_t set_initial = 0xAA;
constexpr std::uint8_t set_packet_mark = 0x09;
constexpr std::uint8_t set_write = 0x04;
constexpr std::uint8_t set_start = 0x08;
constexpr std::uint8_t set_end = 0x0C;
constexpr std::uint8_t set_capacity = 0x10;

} // namespace

int cls_QD_Schiene_Soundload::ReadCV(int cv) {
    if (!connected_) return 0;
    std::optional<std::uint8_t> value;
    ignoring_errors([&] {
        settle();
        host_.SComm1.clear_input();
        for (int left = attempts; left > 0 && !value && may_go_on(); --left) {
            value = read_attempt(cv);
            if (!value) recover();
        }
    });
    if (value) {
        log(QStringLiteral("CV%1=%2").arg(cv).arg(*value));
        return *value;
    }
    log(QStringLiteral("Read CV Timeout"));
    return no_value;
}

std::optional<std::uint8_t> cls_QD_Schiene_Soundload::read_attempt(int cv) {
    const timing::Milliseconds start = host_.time().now();
    log(QStringLiteral("Read CV%1").arg(cv));
    send_read_request(cv, start);
    return read_bits(u"  Read CV Bit %1 - %2", start);
}

void cls_QD_Schiene_Soundload::send_read_request(int cv, timing::Milliseconds start) {
    switch (cv) {
    case type_code_number:
        log(QStringLiteral("Startbyte lesen"));
        SendBytes({0x04});
        return;
    case protocol_version_number:
        log(QStringLiteral("Protokoll-Version lesen"));
        SendBytes({0x07});
        return;
    default:
        SendBytes({0x01, high_byte(cv), low_byte(cv)});
        log(QStringLiteral("  Read CV Bit 0 - %1").arg(milliseconds_since(start)));
    }
}

void cls_QD_Schiene_Soundload::wait_for_answer() {
    const bool before = std::exchange(was_silent_, true); // also where waiting throws
    WaitReceive(ticks_for_answer);
    was_silent_ = before || !host_.RxFlag;
}

// What comes after all has another answer behind it, and so on: each would count for the packet that
// follows its own, from one operation to the next.
void cls_QD_Schiene_Soundload::settle() {
    if (!was_silent_) return;
    Pause(1);
    host_.SComm1.clear_input();
}

/// Least significant bit first; nothing where an answer failed to come.
std::optional<std::uint8_t> cls_QD_Schiene_Soundload::read_bits(const char16_t* line,
                                                                timing::Milliseconds start) {
    unsigned value = 0;
    for (unsigned bit = 0; bit < 8; ++bit) {
        if (bit > 0) {
            if (aborted()) return std::nullopt;
            log(QString::fromUtf16(line).arg(bit).arg(milliseconds_since(start)));
            SendBytes({0xFF});
        }
        wait_for_answer();
        if (!host_.RxFlag) {
            log(QStringLiteral("Timeout Buffer=%1").arg(host_.SComm1.input_count()));
            return std::nullopt;
        }
        if (received(acknowledged)) value |= 1U << bit;
    }
    return static_cast<std::uint8_t>(value);
}

// After a cancel no further packet leaves.
void cls_QD_Schiene_Soundload::recover() {
    if (aborted()) return;
    SendBytes({0, 0, 0, 0, 0, 0, 0, 0});
    Pause(1);
}

bool cls_QD_Schiene_Soundload::out_of_step() {
    if (!connected_) return false;
    bool surplus = false;
    ignoring_errors([&] {
        host_.RxFlag = false;
        Pause(1);
        surplus = host_.RxFlag || host_.SComm1.input_count() > 0;
    });
    return surplus;
}

bool cls_QD_Schiene_Soundload::WriteCV(int cv, std::uint8_t value) {
    if (!connected_) return false;
    if (cv == 7 || cv == 8) return true;
    const std::uint8_t hi = high_byte(cv);
    const std::uint8_t lo = low_byte(cv);
    const std::array<std::uint8_t, 3> checked{hi, lo, value};
    bool written = false;
    ignoring_errors([&] {
        settle();
        for (int left = attempts; left > 0 && !written && may_go_on(); --left) {
            log(QStringLiteral("Write CV%1=%2").arg(cv).arg(value));
            host_.SComm1.clear_input();
            if (crc_mode_)
                SendBytes({0x06, 0xAA, hi, lo, PacketChecksum(checked, 0), value});
            else
                SendBytes({0x02, 0xAA, hi, lo, value});
            wait_for_answer();
            written = received(acknowledged);
        }
    });
    return written;
}

cls_QD_Schiene_Soundload::Set_Packet
cls_QD_Schiene_Soundload::set_packet(std::uint8_t command, std::uint8_t low, std::uint8_t value) {
    crc_mode_ = true;
    Set_Packet packet{set_packet_mark, command, low, value, 0};
    packet.back() = PacketChecksum(std::span(packet).first<4>(), set_initial);
    return packet;
}

bool cls_QD_Schiene_Soundload::SendAcked(const Set_Packet& packet) {
    bool taken = false;
    ignoring_errors([&] {
        settle();
        for (int left = attempts; left > 0 && !taken && may_go_on(); --left) {
            SendBytes(packet);
            wait_for_answer();
            taken = received(acknowledged);
        }
    });
    return taken;
}

bool cls_QD_Schiene_Soundload::SetCVStart() {
    return connected_ && SendAcked(set_packet(set_start, 0, 0));
}

bool cls_QD_Schiene_Soundload::WriteSetCV(int cv, std::uint8_t value) {
    if (!connected_) return false;
    const auto command = static_cast<std::uint8_t>(set_write + (high_byte(cv) & 3));
    return SendAcked(set_packet(command, low_byte(cv), value));
}

bool cls_QD_Schiene_Soundload::SetCVEnd() {
    return connected_ && SendAcked(set_packet(set_end, 0, 0));
}

int cls_QD_Schiene_Soundload::GetSetCVCapacity() {
    if (!connected_) return 0;
    std::optional<std::uint8_t> value;
    ignoring_errors([&] {
        if (aborted()) return;
        const timing::Milliseconds start = host_.time().now();
        SendBytes(set_packet(set_capacity, 0, 0));
        value = read_bits(u"  Read Bit %1 - %2", start);
    });
    return value ? *value : no_value;
}

} // namespace link_transport
