#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// The bytes between host, interface and decoder. Written for the simulator alone, from the protocol
// and not from the program that speaks it: a mistake on either side then shows.

namespace decoder_sim {

using Byte = std::uint8_t;
using Bytes = std::vector<Byte>;

constexpr Byte yes = 0x1C; ///< the decoder's answer to "is this bit set" and "did you take that"
constexpr Byte one_bit = 0xEF, zero_bit = 0xBF; ///< of calibration and preamble
constexpr Byte bit_clock = 0xFF;                ///< asks for the next bit of a read
constexpr Byte susi_yes = 0x06;

constexpr int calibration_pairs = 20; ///< one_bit, zero_bit; one measurement
constexpr int preamble_groups = 10;   ///< zero_bit, one_bit, one_bit
constexpr int recovery_bytes = 8;     ///< zeros after an answer that did not come
constexpr int last_cv = 1024;

/// CRC-8 of the 1-Wire kind, lowest bit first.
Byte crc8(std::span<const Byte> bytes, Byte initial);

/// What goes over the programming track.
enum class Packet_Kind {
    read,
    type_code,
    protocol_version,
    write_plain,
    write_checked,
    set_start,
    set_write,
    set_end,
    capacity,
    unknown ///< the length is that of a packet, the rest is not
};

struct Packet {
    Packet_Kind kind = Packet_Kind::unknown;
    int cv = 0; ///< from 1
    int value = 0;
    bool checksum_good = true;
};

/// 0: no packet begins with this byte.
std::size_t packet_length(Byte first);
Packet decoded_packet(std::span<const Byte> bytes);
/// The answer is a byte, bit by bit; else one byte that says whether it was taken.
bool is_answered_in_bits(Packet_Kind kind);
/// "CV 29", "write CV 3 = 40", "CV-set start".
std::string described(const Packet& packet);

/// What goes over SUSI.
enum class Frame_Kind { read, write, leave, unknown };

struct Frame {
    Frame_Kind kind = Frame_Kind::unknown;
    int cv = 0;
    int value = 0;
    bool checksum_good = true;
};

/// Whether some frame begins with these bytes.
bool begins_frame(std::span<const Byte> bytes);
/// Whether these bytes are a frame from its first to its last.
bool is_whole_frame(std::span<const Byte> bytes);
Frame decoded_frame(std::span<const Byte> bytes);

/// What the interface itself understands, whatever mode it is in.
enum class Command { lone_return, basu_on, basu_off, susi_on };

/// Finds commands in a stream of bytes.
class Command_Reader {
public:
    enum class Step { partial, complete, broken };
    static bool begins(Byte byte);
    bool active() const { return !read_.empty(); }
    Step read(Byte byte);
    Command command() const { return command_; } ///< after `complete`
    /// What was read, after `complete` and `broken`; the next byte begins anew.
    Bytes forget();

private:
    Bytes read_;
    Command command_ = Command::lone_return;
};

/// "EF BF BF"; of many bytes the first sixteen.
std::string hex(std::span<const Byte> bytes);

} // namespace decoder_sim
