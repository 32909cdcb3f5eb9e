#include "msgpack_reader.h"

#include <algorithm>
#include <iterator>

namespace vqx_dump {

namespace {

struct Type {
    std::uint8_t last; ///< the range goes from the row before to here
    Kind kind;
    const char* name;
    std::size_t argument; ///< bytes of the number behind the type byte
    std::uint8_t mask;    ///< of the number inside the type byte, if it has one
};

constexpr Type types[] = {
    {0x7F, Kind::number, "positive fixint", 0, 0x7F},
    {0x8F, Kind::map, "fixmap", 0, 0x0F},
    {0x9F, Kind::array, "fixarray", 0, 0x0F},
    {0xBF, Kind::other, "fixstr", 0, 0x1F},
    {0xC0, Kind::other, "nil", 0, 0},
    {0xC1, Kind::other, "byte 0xc1, which MessagePack never uses", 0, 0},
    {0xC3, Kind::other, "boolean", 0, 0},
    {0xC4, Kind::bin, "bin 8", 1, 0},
    {0xC5, Kind::bin, "bin 16", 2, 0},
    {0xC6, Kind::bin, "bin 32", 4, 0},
    {0xC9, Kind::other, "extension", 0, 0},
    {0xCB, Kind::other, "floating-point number", 0, 0},
    {0xCC, Kind::number, "uint 8", 1, 0},
    {0xCD, Kind::number, "uint 16", 2, 0},
    {0xCE, Kind::number, "uint 32", 4, 0},
    {0xCF, Kind::number, "uint 64", 8, 0},
    {0xD3, Kind::other, "signed number", 0, 0},
    {0xD8, Kind::other, "extension", 0, 0},
    {0xDB, Kind::other, "string", 0, 0},
    {0xDC, Kind::array, "array 16", 2, 0},
    {0xDD, Kind::array, "array 32", 4, 0},
    {0xDE, Kind::map, "map 16", 2, 0},
    {0xDF, Kind::map, "map 32", 4, 0},
    {0xFF, Kind::other, "negative fixint", 0, 0},
};

} // namespace

Item Msgpack_Reader::next() {
    if (left() == 0) return {Kind::ended, "", 0, 0, position_};
    const std::uint8_t byte = bytes_[position_];
    const auto by_last = [](const Type& row, std::uint8_t wanted) { return row.last < wanted; };
    const Type& type = *std::lower_bound(std::begin(types), std::end(types), byte, by_last);
    if (left() < 1 + type.argument) return {Kind::ended, type.name, byte, 0, position_};
    Item item{type.kind, type.name, byte, static_cast<std::uint64_t>(byte & type.mask), position_};
    for (const auto part : bytes_.subspan(position_ + 1, type.argument))
        item.number = item.number << 8 | part;
    position_ += 1 + type.argument;
    return item;
}

} // namespace vqx_dump
