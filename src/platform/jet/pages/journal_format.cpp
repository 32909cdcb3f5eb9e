#include "platform/jet/pages/journal_format.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <string_view>

namespace jet {
namespace {

constexpr std::string_view magic = "CVSETJ01";
constexpr std::size_t entries_at = 12;
constexpr std::size_t salt_at = 16;
constexpr std::size_t counter_at = 24;
constexpr std::size_t head_checksum_at = journal_state_at - 8;
constexpr std::size_t entry_head = 16;

/// Puts numbers one after another.
class Number_Writer {
public:
    explicit Number_Writer(std::vector<std::byte>& into, std::size_t at = 0)
        : into_(into), at_(at) {}
    template <class Number>
    void put(Number number) {
        for (std::size_t i = 0; i < sizeof number; ++i)
            into_[at_++] = static_cast<std::byte>(number >> (8 * i) & 0xFF);
    }

private:
    std::vector<std::byte>& into_;
    std::size_t at_;
};

class Number_Reader {
public:
    explicit Number_Reader(std::span<const std::byte> from, std::size_t at = 0)
        : from_(from), at_(at) {}
    template <class Number>
    Number get() {
        Number number = 0;
        for (std::size_t i = 0; i < sizeof number; ++i)
            number |= static_cast<Number>(std::to_integer<Number>(from_[at_++]) << (8 * i));
        return number;
    }

private:
    std::span<const std::byte> from_;
    std::size_t at_;
};

bool are_zeros(std::span<const std::byte> bytes) {
    return std::ranges::all_of(bytes, [](std::byte byte) { return byte == std::byte{}; });
}

std::uint64_t first_word(std::span<const std::byte> bytes) {
    if constexpr (std::endian::native != std::endian::little)
        return Number_Reader(bytes).get<std::uint64_t>();
    std::uint64_t word = 0;
    std::memcpy(&word, bytes.data(), sizeof word);
    return word;
}

std::uint64_t mixed(std::uint64_t sum, std::uint64_t word) {
    sum = (sum ^ word) * 0x9E3779B97F4A7C15;
    return sum ^ sum >> 32;
}

} // namespace

std::uint64_t journal_checksum(std::span<const std::byte> bytes) {
    std::uint64_t sum = mixed(0x4A4F55524E414C31, bytes.size());
    for (; bytes.size() >= 8; bytes = bytes.subspan(8)) sum = mixed(sum, first_word(bytes));
    for (const std::byte byte : bytes) sum = mixed(sum, std::to_integer<std::uint64_t>(byte));
    return sum;
}

std::vector<std::uint64_t> sector_checksums(std::span<const std::byte> page) {
    std::vector<std::uint64_t> sums;
    for (; !page.empty(); page = page.subspan(journal_sector))
        sums.push_back(journal_checksum(page.first(journal_sector)));
    return sums;
}

std::size_t journal_entry_size(std::size_t page_size) {
    return entry_head + 8 * (page_size / journal_sector);
}

std::uint64_t journal_pages_at(std::size_t entries, std::size_t page_size) {
    const std::uint64_t end = journal_sector + entries * journal_entry_size(page_size);
    return (end + journal_sector - 1) / journal_sector * journal_sector;
}

std::vector<std::byte> encode(const Journal_Head& head) {
    std::vector<std::byte> sector(journal_sector);
    std::ranges::transform(magic, sector.begin(), [](char letter) { return std::byte(letter); });
    Number_Writer out(sector, magic.size());
    out.put(head.page_size);
    out.put(head.entries);
    for (const std::uint64_t number :
         {head.salt, head.counter, head.database.device, head.database.inode, head.size_before,
          head.size_after, head.page_0, head.table})
        out.put(number);
    Number_Writer(sector, head_checksum_at)
        .put(journal_checksum(std::span(sector).first(head_checksum_at)));
    sector[journal_state_at] = static_cast<std::byte>(head.state);
    return sector;
}

bool begins_like_head(std::span<const std::byte> start) {
    const auto same = [](std::byte byte, char letter) { return byte == std::byte(letter); };
    const std::size_t length = std::min(start.size(), magic.size());
    return length > 0 && std::ranges::equal(start.first(length), magic.substr(0, length), same);
}

bool is_beginning_of_first_head(std::span<const std::byte> start) {
    if (are_zeros(start)) return true;
    return start.size() < journal_sector && start.size() >= salt_at && begins_like_head(start) &&
           are_zeros(start.subspan(entries_at, salt_at - entries_at)) &&
           are_zeros(start.subspan(std::min(start.size(), counter_at)));
}

std::optional<Journal_Head> decode_head(std::span<const std::byte> sector) {
    if (sector.size() < journal_sector || !begins_like_head(sector) ||
        Number_Reader(sector, head_checksum_at).get<std::uint64_t>() !=
            journal_checksum(sector.first(head_checksum_at)))
        return std::nullopt;
    Journal_Head head;
    head.state = static_cast<Journal_State>(sector[journal_state_at]);
    if (head.state != Journal_State::empty && head.state != Journal_State::operation &&
        head.state != Journal_State::take_back)
        return std::nullopt;
    Number_Reader in(sector, magic.size());
    head.page_size = in.get<std::uint32_t>();
    head.entries = in.get<std::uint32_t>();
    for (std::uint64_t* number :
         {&head.salt, &head.counter, &head.database.device, &head.database.inode, &head.size_before,
          &head.size_after, &head.page_0, &head.table})
        *number = in.get<std::uint64_t>();
    return head;
}

std::vector<std::byte> encode(std::span<const Journal_Entry> table, std::size_t page_size) {
    std::vector<std::byte> bytes(table.size() * journal_entry_size(page_size));
    Number_Writer out(bytes);
    for (const Journal_Entry& entry : table) {
        out.put(std::uint64_t{entry.number});
        out.put(entry.before);
        for (const std::uint64_t sum : entry.after) out.put(sum);
    }
    return bytes;
}

std::vector<Journal_Entry> decode_table(std::span<const std::byte> bytes, std::size_t page_size) {
    std::vector<Journal_Entry> table(bytes.size() / journal_entry_size(page_size));
    Number_Reader in(bytes);
    for (Journal_Entry& entry : table) {
        constexpr std::uint64_t highest = std::numeric_limits<Page_Number>::max();
        entry.number = static_cast<Page_Number>(std::min(in.get<std::uint64_t>(), highest));
        entry.before = in.get<std::uint64_t>();
        entry.after.resize(page_size / journal_sector);
        for (std::uint64_t& sum : entry.after) sum = in.get<std::uint64_t>();
    }
    return table;
}

} // namespace jet
