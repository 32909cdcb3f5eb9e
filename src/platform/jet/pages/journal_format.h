#pragma once

#include "platform/jet/pages/pager.h"

namespace jet {

/// The bytes of a journal; docs/formats/journal.md shows them. All numbers are little-endian.
constexpr std::size_t journal_sector = 512; ///< what a disk writes whole or not at all

/// One byte in the head, the only one that changes alone: a write of one byte cannot be cut in two.
enum class Journal_State : std::uint8_t {
    empty = 0,        ///< nothing behind the head counts
    operation = 0x5A, ///< an operation was begun and is not known to be complete
    take_back = 0xA5  ///< it failed and must not count, even where all its pages are written
};
constexpr std::size_t journal_state_at = 504;

struct Journal_Head {
    Journal_State state = Journal_State::empty;
    std::uint32_t page_size = 0;
    std::uint64_t salt = 0;    ///< drawn when the journal is made, so that no two are mixed up
    std::uint64_t counter = 0; ///< moves with every operation
    files::Identity database;
    std::uint64_t size_before = 0; ///< of the database, in bytes
    std::uint64_t size_after = 0;
    std::uint64_t page_0 = 0; ///< checksum of page 0 before the operation
    std::uint32_t entries = 0;
    std::uint64_t table = 0; ///< checksum of the table of entries
};

/// What the table says of one page of the operation.
struct Journal_Entry {
    Page_Number number = 0;
    std::uint64_t before = 0;         ///< checksum of the whole page; 0 for an appended one
    std::vector<std::uint64_t> after; ///< checksum of each sector
};

/// 64 bits over any bytes; any change inside one 8-byte word is certain to show.
std::uint64_t journal_checksum(std::span<const std::byte> bytes);

std::vector<std::uint64_t> sector_checksums(std::span<const std::byte> page);

std::size_t journal_entry_size(std::size_t page_size);

/// Where the old pages begin: the first sector behind head and table.
std::uint64_t journal_pages_at(std::size_t entries, std::size_t page_size);

/// One sector.
std::vector<std::byte> encode(const Journal_Head& head);
/// @return nothing when the bytes are no head of ours or its checksum does not hold.
std::optional<Journal_Head> decode_head(std::span<const std::byte> sector);

/// Whether these first bytes of a file, at most a sector, are meant to be a head of ours.
bool begins_like_head(std::span<const std::byte> start);
/// Whether the file can be one whose first head did not get there: zeros, or the beginning of a
/// head that names no operation yet. What was cut off behind one that does is not told from it when
/// nothing is left.
bool is_beginning_of_first_head(std::span<const std::byte> start);

std::vector<std::byte> encode(std::span<const Journal_Entry> table, std::size_t page_size);
/// A page number beyond all possible ones is given back as such, whatever its upper half says.
std::vector<Journal_Entry> decode_table(std::span<const std::byte> bytes, std::size_t page_size);

} // namespace jet
