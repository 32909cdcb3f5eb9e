#include "platform/jet/check/key.h"

namespace jet::check {

namespace {

constexpr std::uint32_t general_order = 0x00000409;

enum class Coding { none, unsigned_byte, integer, floating, boolean, decimal, guid, binary, text };

struct Type_Coding {
    std::uint32_t type;
    Coding coding;
};

constexpr Type_Coding codings[] = {
    {column_type::boolean, Coding::boolean},
    {column_type::byte, Coding::unsigned_byte},
    {column_type::integer, Coding::integer},
    {column_type::long_integer, Coding::integer},
    {column_type::currency, Coding::integer},
    {column_type::complex, Coding::integer},
    {column_type::single_float, Coding::floating},
    {column_type::double_float, Coding::floating},
    {column_type::date, Coding::floating},
    {column_type::decimal, Coding::decimal},
    {column_type::guid, Coding::guid},
    {column_type::binary, Coding::binary},
    {column_type::text, Coding::text},
    {column_type::memo, Coding::text},
};

Coding coding_of(std::uint32_t type) {
    const auto* found = std::ranges::find(codings, type, &Type_Coding::type);
    return found == std::end(codings) ? Coding::none : found->coding;
}

void invert(Key& key, std::size_t from) {
    for (std::size_t i = from; i < key.size(); ++i) key[i] = static_cast<std::uint8_t>(~key[i]);
}

std::uint8_t byte_at(Bytes bytes, std::size_t at) {
    return static_cast<std::uint8_t>(bytes.u8(at));
}

void append_big_endian(Key& key, Bytes bytes) {
    for (std::size_t i = bytes.size(); i-- > 0;) key.push_back(byte_at(bytes, i));
}

void append_integer(Key& key, Bytes bytes) {
    const std::size_t from = key.size();
    append_big_endian(key, bytes);
    if (key.size() > from) key[from] ^= 0x80;
}

void append_floating(Key& key, Bytes bytes) {
    const std::size_t from = key.size();
    append_big_endian(key, bytes);
    if (key.size() == from) return;
    if ((key[from] & 0x80) != 0)
        invert(key, from);
    else
        key[from] ^= 0x80;
}

// Sign and magnitude, most significant word first; the words are little-endian. Descending keys
// invert the positive numbers and not the negative ones, wrong as that is.
void append_decimal(Key& key, Bytes bytes, bool ascending) {
    const std::size_t from = key.size();
    const bool negative = bytes.u8(0) == 0x80;
    key.push_back(byte_at(bytes, 0));
    for (std::size_t word = 0; word < 4; ++word)
        append_big_endian(key, bytes.part(1 + 4 * word, 4));
    if (negative == ascending) invert(key, from);
    key[from] = negative ? 0x00 : 0xFF;
}

// Chunks of eight bytes, each followed by 9 or, the last one, by the number of its bytes.
void append_binary(Key& key, Bytes bytes, bool ascending) {
    constexpr std::size_t chunk = 8;
    constexpr std::uint8_t more = 9;
    for (std::size_t at = 0; at < bytes.size(); at += chunk) {
        const std::size_t from = key.size();
        const std::size_t valid = std::min(chunk, bytes.size() - at);
        for (std::size_t i = 0; i < chunk; ++i)
            key.push_back(i < valid ? byte_at(bytes, at + i) : std::uint8_t{0});
        const bool last = at + chunk >= bytes.size();
        if (last) key.push_back(static_cast<std::uint8_t>(valid));
        if (!ascending) invert(key, from);
        if (!last) key.push_back(more);
    }
}

// In the order of the text form: the first three numbers big-endian.
void append_guid(Key& key, Bytes bytes, bool ascending) {
    constexpr std::size_t order[] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
    std::array<std::byte, 16> turned{};
    for (std::size_t i = 0; i < turned.size(); ++i) turned[i] = std::byte{byte_at(bytes, order[i])};
    append_binary(key, Bytes(turned), ascending);
}

} // namespace

bool has_known_keys(const Format& format, const Column& column) {
    const Coding coding = coding_of(column.type);
    if (coding == Coding::text) return format.jet4 && column.collation == general_order;
    return coding != Coding::none;
}

void append_key(Key& key, const Column& column, const Value& value, std::u16string_view text,
                bool ascending) {
    if (value.null) {
        key.push_back(ascending ? 0x00 : 0xFF);
        return;
    }
    key.push_back(ascending ? 0x7F : 0x80);
    const std::size_t from = key.size();
    switch (coding_of(column.type)) {
    case Coding::decimal:
        return append_decimal(key, value.bytes, ascending);
    case Coding::guid:
        return append_guid(key, value.bytes, ascending);
    case Coding::binary:
        return append_binary(key, value.bytes, ascending);
    case Coding::text:
        return append_text_key(key, text, ascending);
    case Coding::unsigned_byte:
        append_big_endian(key, value.bytes);
        break;
    case Coding::integer:
        append_integer(key, value.bytes);
        break;
    case Coding::floating:
        append_floating(key, value.bytes);
        break;
    case Coding::boolean:
        key.push_back(value.truth ? 0x00 : 0xFF);
        break;
    case Coding::none:
        break;
    }
    if (!ascending) invert(key, from);
}

} // namespace jet::check
