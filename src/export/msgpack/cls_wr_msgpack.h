#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>
#include <vector>

namespace msgpack {

using Bytes = std::vector<std::uint8_t>;

/// Writes a stream of MessagePack values, all multi-byte numbers high byte first.
///
/// Containers are written as a header with their count and then their content through further
/// calls; the counts are the caller's business. Streams that end up in one file refer to each other
/// by 32-bit addresses: reserved while writing (Add_uInt32_Addr), filled in (Set_uInt32_Addr) when
/// all streams have their place (Get_Array_Add, Skip_Array), relative to the start of their own
/// stream.
///
/// Text is handed in as the bytes that are to stand in the file (the ANSI code page); what takes a
/// character takes a byte.
class cls_wr_msgpack {
public:
    /// Shortest form: fixint, uint 8, uint 16 or uint 32. @throws Error (negative)
    void Add_Int(std::int32_t value);
    /// Always two bytes, also below 128.
    void Add_uInt8(std::uint8_t value) { put({0xCC, value}); }
    void Add_uInt32(std::uint32_t value);
    /// Reserves a uint 32 with the value 0. @return the handle for Set_uInt32_Addr, from 0
    [[nodiscard]] std::int32_t Add_uInt32_Addr();
    /// A uint 32 made of the last four characters, right-aligned; a shorter text has zero bytes in
    /// front.
    void Add_Ident_uInt32(std::string_view text);
    /// fixstr or str 8. A text of 256 bytes or more is not written at all, and the container around
    /// it is then one item short.
    void Add_String(std::string_view text);
    void Add_Map(std::size_t count); ///< fixmap or map 16. @throws Error (overflow) over 65535
    void Add_ItemArray(std::size_t count); ///< fixarray or array 16. @throws Error (overflow)
    /// Only the header, bin 8 or bin 16; the payload follows byte by byte. @throws Error (overflow)
    void Add_ByteArray(std::size_t length);
    void Add_Byte_to_Array(std::uint8_t value) {
        make_room(1);
        bytes_.push_back(value);
    }
    /// The same for many bytes at once.
    void Add_Bytes_to_Array(std::span<const std::uint8_t> values);

    /// Fills in the reserved address `slot`: `address`, a position in the final array, less the
    /// position of this stream there.
    /// @throws Error for an unknown slot (outside), an address before the stream (negative) or 4
    /// GiB and more behind its start (overflow)
    void Set_uInt32_Addr(std::int32_t slot, std::size_t address);

    /// Length for users of 16-bit counts. @throws Error (overflow) above 32767 bytes
    std::int16_t Get_Len() const;
    /// The stream as it is. @throws Error (overflow) above 32767 bytes, as it is sized with Get_Len
    Bytes Get_Array() const;
    std::size_t size() const { return bytes_.size(); } ///< length without a limit
    std::span<const std::uint8_t> bytes() const { return bytes_; }

    /// Copies the stream to target[position..], growing the target where it is too short, and moves
    /// the position behind it.
    void Get_Array_Add(Bytes& target, std::size_t& position) const;
    /// Reserves room for the stream at `position` and moves the position behind it.
    void Skip_Array(std::size_t& position);
    /// Copies the stream into the room that Skip_Array reserved.
    /// @throws Error (outside) when the target ends before it
    void Array_Override(Bytes& target) const;

    void Clear();

private:
    void put(std::initializer_list<std::uint8_t> values) {
        make_room(values.size());
        bytes_.insert(bytes_.end(), values);
    }
    /// Grows in few large steps: every step costs fresh pages of memory, which are most of the time.
    void make_room(std::size_t more) {
        if (bytes_.capacity() - bytes_.size() < more) bytes_.reserve(4 * (bytes_.size() + more));
    }
    void put_uint16(std::uint8_t type, std::size_t value);

    Bytes bytes_;
    std::vector<std::size_t> slots_; // positions of the type bytes of the reserved addresses
    std::size_t base_ = 0;           // place of this stream in the final array
};

} // namespace msgpack
