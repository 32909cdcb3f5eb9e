#pragma once

#include "msgpack_reader.h"

#include <string_view>

namespace vqx_dump {

/// Reads items of one part of a project file and holds each against the form in which the writer
/// puts it. A wrong form is reported and read all the same; a wrong kind of item ends the reading,
/// because nothing tells where the next one starts: from then on `ok()` is false and everything
/// reads as 0.
class Part_Reader {
public:
    Part_Reader(Bytes file, std::size_t start, Findings& findings)
        : reader_(file, start), findings_(findings) {}

    bool ok() const { return ok_; }
    std::size_t position() const { return reader_.position(); }
    int peek() const { return reader_.peek(); }
    std::size_t last_offset() const { return last_offset_; } ///< of the item read last

    /// Number in the shortest form: fixint, uint 8, uint 16, uint 32.
    std::uint32_t number(std::string_view what);
    /// Number in exactly the form with this type byte.
    std::uint32_t number_as(std::uint8_t type, std::string_view what);
    /// Count of a map (fixmap below 16, else map 16).
    std::size_t map(std::string_view what);
    /// An array that must have two items.
    void pair(std::string_view what);
    /// Length of a bin (bin 8 below 256, else bin 16), whose bytes all lie in the file.
    std::size_t bin(std::string_view what);
    void skip(std::size_t count) { reader_.skip(count); }

private:
    Item expect(Kind kind, std::string_view kind_name, std::string_view what);
    void hold_against(const Item& item, std::uint8_t type, std::string_view what);

    Msgpack_Reader reader_;
    Findings& findings_;
    std::size_t last_offset_ = 0;
    bool ok_ = true;
};

} // namespace vqx_dump
