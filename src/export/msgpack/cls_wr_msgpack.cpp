#include "export/msgpack/cls_wr_msgpack.h"

#include "export/msgpack/error.h"

#include <algorithm>
#include <limits>
#include <string>

namespace msgpack {
namespace {

// Type bytes of the MessagePack format; the fix forms carry their count in the low bits.
constexpr std::uint8_t fixmap = 0x80;
constexpr std::uint8_t fixarray = 0x90;
constexpr std::uint8_t fixstr = 0xA0;
constexpr std::uint8_t bin_8 = 0xC4;
constexpr std::uint8_t bin_16 = 0xC5;
constexpr std::uint8_t uint_16 = 0xCD;
constexpr std::uint8_t uint_32 = 0xCE;
constexpr std::uint8_t str_8 = 0xD9;
constexpr std::uint8_t array_16 = 0xDC;
constexpr std::uint8_t map_16 = 0xDE;

constexpr std::size_t fix_counts = 16;
constexpr std::size_t fix_lengths = 32;
constexpr std::size_t byte_lengths = 256;
constexpr std::size_t ident_size = 4;
constexpr std::size_t longest_array = 32767;

template <typename Number>
std::uint8_t byte_of(Number value, unsigned shift = 0) {
    return static_cast<std::uint8_t>(value >> shift & 0xFF);
}

} // namespace

void cls_wr_msgpack::put_uint16(std::uint8_t type, std::size_t value) {
    if (value > std::numeric_limits<std::uint16_t>::max())
        throw Error(Failure::overflow, std::to_string(value), "more than 16 bits can hold");
    put({type, byte_of(value, 8), byte_of(value)});
}

void cls_wr_msgpack::Add_Int(std::int32_t value) {
    if (value < 0) throw Error(Failure::negative, std::to_string(value), "no encoding below 0");
    const auto number = static_cast<std::uint32_t>(value);
    if (number < 0x80)
        put({byte_of(number)});
    else if (number < 0x100)
        Add_uInt8(byte_of(number));
    else if (number < 0x10000)
        put_uint16(uint_16, number);
    else
        Add_uInt32(number);
}

void cls_wr_msgpack::Add_uInt32(std::uint32_t value) {
    put({uint_32, byte_of(value, 24), byte_of(value, 16), byte_of(value, 8), byte_of(value)});
}

std::int32_t cls_wr_msgpack::Add_uInt32_Addr() {
    slots_.push_back(bytes_.size());
    Add_uInt32(0);
    return static_cast<std::int32_t>(slots_.size() - 1);
}

void cls_wr_msgpack::Add_Ident_uInt32(std::string_view text) {
    text = text.substr(text.size() - std::min(text.size(), ident_size));
    put({uint_32});
    bytes_.insert(bytes_.end(), ident_size - text.size(), 0);
    bytes_.insert(bytes_.end(), text.begin(), text.end());
}

void cls_wr_msgpack::Add_String(std::string_view text) {
    if (text.size() >= byte_lengths) return;
    const auto length = byte_of(text.size());
    if (text.size() < fix_lengths)
        put({byte_of(fixstr + length)});
    else
        put({str_8, length});
    bytes_.insert(bytes_.end(), text.begin(), text.end());
}

void cls_wr_msgpack::Add_Map(std::size_t count) {
    if (count < fix_counts)
        put({byte_of(fixmap + count)});
    else
        put_uint16(map_16, count);
}

void cls_wr_msgpack::Add_ItemArray(std::size_t count) {
    if (count < fix_counts)
        put({byte_of(fixarray + count)});
    else
        put_uint16(array_16, count);
}

void cls_wr_msgpack::Add_ByteArray(std::size_t length) {
    if (length < byte_lengths)
        put({bin_8, byte_of(length)});
    else
        put_uint16(bin_16, length);
}

void cls_wr_msgpack::Add_Bytes_to_Array(std::span<const std::uint8_t> values) {
    make_room(values.size());
    bytes_.insert(bytes_.end(), values.begin(), values.end());
}

void cls_wr_msgpack::Set_uInt32_Addr(std::int32_t slot, std::size_t address) {
    if (slot < 0 || static_cast<std::size_t>(slot) >= slots_.size())
        throw Error(Failure::outside, "address slot " + std::to_string(slot), "never reserved");
    if (address < base_)
        throw Error(Failure::negative, std::to_string(address), "lies before the stream");
    const auto distance = address - base_;
    if (distance > std::numeric_limits<std::uint32_t>::max())
        throw Error(Failure::overflow, std::to_string(address), "too far behind the stream");
    auto* place = &bytes_[slots_[static_cast<std::size_t>(slot)] + 1];
    for (const unsigned shift : {24U, 16U, 8U, 0U}) *place++ = byte_of(distance, shift);
}

std::int16_t cls_wr_msgpack::Get_Len() const {
    if (bytes_.size() > longest_array)
        throw Error(Failure::overflow, std::to_string(bytes_.size()) + " bytes",
                    "more than a 16-bit count can hold");
    return static_cast<std::int16_t>(bytes_.size());
}

Bytes cls_wr_msgpack::Get_Array() const {
    return Bytes(bytes_.begin(), bytes_.begin() + Get_Len());
}

void cls_wr_msgpack::Get_Array_Add(Bytes& target, std::size_t& position) const {
    target.resize(std::max(target.size(), position + bytes_.size()));
    std::ranges::copy(bytes_, target.begin() + static_cast<std::ptrdiff_t>(position));
    position += bytes_.size();
}

void cls_wr_msgpack::Skip_Array(std::size_t& position) {
    base_ = position;
    position += bytes_.size();
}

void cls_wr_msgpack::Array_Override(Bytes& target) const {
    if (target.size() < base_ + bytes_.size())
        throw Error(Failure::outside, std::to_string(target.size()) + " bytes",
                    "end before the room reserved at " + std::to_string(base_));
    std::ranges::copy(bytes_, target.begin() + static_cast<std::ptrdiff_t>(base_));
}

void cls_wr_msgpack::Clear() {
    bytes_.clear();
    slots_.clear();
}

} // namespace msgpack
