#include "part_reader.h"
#include "parts.h"

#include <algorithm>

namespace vqx_dump {

namespace {

constexpr std::uint8_t uint_32 = 0xCE;

bool is_known(std::uint32_t value, std::span<const Expected_Entry> expected) {
    return std::any_of(expected.begin(), expected.end(),
                       [&](const auto& entry) { return identifier(entry.name) == value; });
}

/// Entries are read as long as identifiers follow, whatever count the map announces: no other part
/// begins with one, so a wrong count does not hide what comes after it.
void read_entries(Part_Reader& reader, Address_Map& map, std::string_view name, std::size_t count) {
    while (reader.peek() == uint_32 || map.entries.size() < count) {
        if (reader.peek() >= 0x80 && reader.peek() < 0x90) break; // the next part
        const auto key = reader.number_as(uint_32, sentence("an identifier of the ", name));
        const auto offset = reader.last_offset();
        const auto value = reader.number_as(uint_32, sentence("an address of the ", name));
        if (!reader.ok()) return;
        map.entries.push_back({key, offset, {reader.last_offset(), value}});
    }
}

void judge_names(const Address_Map& map, std::string_view name,
                 std::span<const Expected_Entry> expected, Findings& findings) {
    std::size_t place = 0;
    for (const auto& entry : map.entries) {
        const auto text = identifier_text(entry.identifier);
        if (!is_known(entry.identifier, expected)) {
            findings.inconsistency(entry.offset,
                                   sentence("the ", name, " has an unknown entry ", text, "."));
            continue;
        }
        const auto own = std::find_if(expected.begin(), expected.end(), [&](const auto& known) {
            return identifier(known.name) == entry.identifier;
        });
        const auto own_place = static_cast<std::size_t>(own - expected.begin());
        if (map.find(entry.identifier)->written_at != entry.address.written_at)
            findings.inconsistency(entry.offset,
                                   sentence("the ", name, " names ", text, " twice."));
        else if (own_place < place)
            findings.inconsistency(entry.offset,
                                   sentence("the ", name, " names ", text, " too late."));
        place = std::max(place, own_place);
    }
    for (const auto& entry : expected)
        if (entry.required && !map.find(identifier(entry.name)))
            findings.inconsistency(map.start,
                                   sentence("the ", name, " does not name \"", entry.name, "\"."));
}

} // namespace

std::optional<Address> Address_Map::find(std::uint32_t wanted) const {
    for (const auto& entry : entries)
        if (entry.identifier == wanted) return entry.address;
    return {};
}

std::string identifier_text(std::uint32_t value) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const auto byte = static_cast<std::uint8_t>(value >> shift);
        if (byte == 0 && text.empty()) continue;
        if (byte < 0x20 || byte > 0x7E) return hex(value, 8);
        text += static_cast<char>(byte);
    }
    return '"' + text + '"';
}

Address_Map read_address_map(Bytes file, std::size_t start, std::string_view name,
                             std::span<const Expected_Entry> expected, Findings& findings) {
    Part_Reader reader(file, start, findings);
    Address_Map map;
    map.start = start;
    const auto count = reader.map(sentence("the ", name));
    if (reader.ok()) {
        read_entries(reader, map, name, count);
        if (reader.ok() && map.entries.size() != count)
            findings.inconsistency(start, sentence("the ", name, " announces ", count,
                                                   " entries, but has ", map.entries.size(), "."));
        judge_names(map, name, expected, findings);
    }
    map.complete = reader.ok();
    map.end = reader.position();
    return map;
}

} // namespace vqx_dump
