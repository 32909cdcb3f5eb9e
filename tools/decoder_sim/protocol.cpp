#include "protocol.h"

#include <algorithm>
#include <array>
#include <utility>

namespace decoder_sim {

namespace {

struct Packet_Row {
    Byte first;
    std::size_t length;
};

constexpr Packet_Row packet_rows[] = {{0x01, 3}, {0x02, 5}, {0x04, 1},
                                      {0x06, 6}, {0x07, 1}, {0x09, 5}};
constexpr Byte write_key = 0xAA;
constexpr Byte set_crc_start = 0xAA;

/// Of 0x09: the second byte. Writes carry the upper two bits of the CV in theirs.
struct Set_Row {
    Byte code;
    Packet_Kind kind;
};
constexpr Set_Row set_rows[] = {
    {0x08, Packet_Kind::set_start}, {0x0C, Packet_Kind::set_end}, {0x10, Packet_Kind::capacity}};

constexpr std::size_t frame_head = 9;
struct Frame_Row {
    Frame_Kind kind;
    std::array<Byte, frame_head> head;
    std::size_t length;
};
constexpr Frame_Row frame_rows[] = {
    {Frame_Kind::read, {0, 0, 0, 2, 1, 1, 0, 0, 0}, 12},
    {Frame_Kind::write, {0, 0, 0, 0, 1, 2, 0, 0, 0}, 13},
    {Frame_Kind::leave, {0, 0, 0, 0, 0, 7, 0x55, 0xAA, 0}, 10},
};
constexpr std::size_t frame_checksum_from = 5;

struct Command_Row {
    Command command;
    std::string_view text;
};
constexpr Command_Row command_rows[] = {{Command::lone_return, "\r"},
                                        {Command::basu_on, "BASU_EIN\r"},
                                        {Command::basu_off, "BASU_AUS\r"},
                                        {Command::susi_on, "SUSIV2\r"}};

int cv_of(Byte high, Byte low) { return high * 256 + low + 1; }

Packet decoded_set_packet(std::span<const Byte> bytes) {
    Packet packet;
    packet.checksum_good = crc8(bytes.first(4), set_crc_start) == bytes[4];
    if ((bytes[1] & 0xFC) == 0x04) {
        packet.kind = Packet_Kind::set_write;
        packet.cv = cv_of(bytes[1] & 0x03, bytes[2]);
        packet.value = bytes[3];
        return packet;
    }
    const auto* row = std::ranges::find(set_rows, bytes[1], &Set_Row::code);
    if (row != std::end(set_rows) && bytes[2] == 0 && bytes[3] == 0) packet.kind = row->kind;
    return packet;
}

Packet decoded_write(std::span<const Byte> bytes) {
    if (bytes[1] != write_key) return {};
    const int cv = cv_of(bytes[2], bytes[3]);
    if (bytes[0] == 0x02) return {Packet_Kind::write_plain, cv, bytes[4], true};
    const std::array covered{bytes[2], bytes[3], bytes[5]};
    return {Packet_Kind::write_checked, cv, bytes[5], crc8(covered, 0) == bytes[4]};
}

bool starts_like(std::span<const Byte> bytes, const Frame_Row& row) {
    return std::ranges::equal(bytes.first(std::min(bytes.size(), frame_head)),
                              std::span(row.head).first(std::min(bytes.size(), frame_head)));
}

const Frame_Row* whole_frame(std::span<const Byte> bytes) {
    for (const Frame_Row& row : frame_rows)
        if (bytes.size() == row.length && starts_like(bytes, row)) return &row;
    return nullptr;
}

} // namespace

Byte crc8(std::span<const Byte> bytes, Byte initial) {
    unsigned crc = initial;
    for (const Byte byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit) crc = (crc & 1) != 0 ? (crc >> 1) ^ 0x8CU : crc >> 1;
    }
    return static_cast<Byte>(crc);
}

std::size_t packet_length(Byte first) {
    const auto* row = std::ranges::find(packet_rows, first, &Packet_Row::first);
    return row != std::end(packet_rows) ? row->length : 0;
}

Packet decoded_packet(std::span<const Byte> bytes) {
    switch (bytes[0]) {
    case 0x01:
        return {Packet_Kind::read, cv_of(bytes[1], bytes[2]), 0, true};
    case 0x04:
        return {Packet_Kind::type_code, 0, 0, true};
    case 0x07:
        return {Packet_Kind::protocol_version, 0, 0, true};
    case 0x09:
        return decoded_set_packet(bytes);
    default:
        return decoded_write(bytes);
    }
}

bool is_answered_in_bits(Packet_Kind kind) {
    return kind == Packet_Kind::read || kind == Packet_Kind::type_code ||
           kind == Packet_Kind::protocol_version || kind == Packet_Kind::capacity;
}

std::string described(const Packet& packet) {
    std::string cv = "CV " + std::to_string(packet.cv);
    const std::string assignment = cv + " = " + std::to_string(packet.value);
    switch (packet.kind) {
    case Packet_Kind::read:
        return cv;
    case Packet_Kind::type_code:
        return "the type code";
    case Packet_Kind::protocol_version:
        return "the protocol version";
    case Packet_Kind::write_plain:
    case Packet_Kind::write_checked:
        return "write " + assignment;
    case Packet_Kind::set_start:
        return "CV-set start";
    case Packet_Kind::set_write:
        return "set: " + assignment;
    case Packet_Kind::set_end:
        return "CV-set end";
    case Packet_Kind::capacity:
        return "the CV-set capacity";
    case Packet_Kind::unknown:
        break;
    }
    return "an unknown packet";
}

bool begins_frame(std::span<const Byte> bytes) {
    return std::ranges::any_of(frame_rows, [&](const Frame_Row& row) {
        return bytes.size() <= row.length && starts_like(bytes, row);
    });
}

bool is_whole_frame(std::span<const Byte> bytes) { return whole_frame(bytes) != nullptr; }

Frame decoded_frame(std::span<const Byte> bytes) {
    const Frame_Row* row = whole_frame(bytes);
    if (row == nullptr) return {};
    const auto covered = bytes.subspan(frame_checksum_from, row->length - 1 - frame_checksum_from);
    Frame frame{row->kind, 0, 0, crc8(covered, 0) == bytes.back()};
    if (row->kind != Frame_Kind::leave) frame.cv = cv_of(bytes[9], bytes[10]);
    if (row->kind == Frame_Kind::write) frame.value = bytes[11];
    return frame;
}

bool Command_Reader::begins(Byte byte) {
    return std::ranges::any_of(command_rows, [&](const Command_Row& row) {
        return static_cast<Byte>(row.text.front()) == byte;
    });
}

Command_Reader::Step Command_Reader::read(Byte byte) {
    read_.push_back(byte);
    const auto same = [](char sign, Byte read) { return static_cast<Byte>(sign) == read; };
    for (const Command_Row& row : command_rows) {
        if (read_.size() > row.text.size()) continue;
        if (!std::ranges::equal(row.text.substr(0, read_.size()), read_, same)) continue;
        command_ = row.command;
        return read_.size() == row.text.size() ? Step::complete : Step::partial;
    }
    return Step::broken;
}

Bytes Command_Reader::forget() { return std::exchange(read_, {}); }

std::string hex(std::span<const Byte> bytes) {
    static constexpr std::string_view signs = "0123456789ABCDEF";
    constexpr std::size_t most = 16;
    std::string text;
    for (const Byte byte : bytes.first(std::min(bytes.size(), most))) {
        if (!text.empty()) text += ' ';
        text += signs[byte >> 4];
        text += signs[byte & 15];
    }
    if (bytes.size() > most) text += " ... (" + std::to_string(bytes.size()) + " bytes)";
    return text;
}

} // namespace decoder_sim
