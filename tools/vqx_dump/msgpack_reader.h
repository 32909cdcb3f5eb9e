#pragma once

#include "findings.h"

#include <cstdint>

namespace vqx_dump {

enum class Kind { number, map, array, bin, other, ended };

/// The head of one MessagePack item: its type byte and the number that belongs to it.
struct Item {
    Kind kind = Kind::ended;
    const char* name = "";    ///< the type in the words of the MessagePack description
    std::uint8_t type = 0;    ///< the type byte
    std::uint64_t number = 0; ///< value of a number; count of a map or array; length of a bin
    std::size_t offset = 0;   ///< of the type byte
};

/// Reads heads of items one after the other. Never reads outside the bytes it was given: an item
/// that they do not hold completely is `Kind::ended`, and nothing is consumed. What follows the
/// head of a bin is left to the caller, as are the items of maps and arrays.
class Msgpack_Reader {
public:
    explicit Msgpack_Reader(Bytes bytes, std::size_t position = 0)
        : bytes_(bytes), position_(position) {}

    Item next();
    std::size_t position() const { return position_; }
    std::size_t left() const { return position_ < bytes_.size() ? bytes_.size() - position_ : 0; }
    /// Type byte of the next item, or -1 at the end.
    int peek() const { return left() > 0 ? bytes_[position_] : -1; }
    void skip(std::size_t count) { position_ += count < left() ? count : left(); }

private:
    Bytes bytes_;
    std::size_t position_;
};

} // namespace vqx_dump
