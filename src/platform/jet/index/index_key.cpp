#include "platform/jet/index/index_key.h"

#include "platform/jet/format/error.h"

#include <algorithm>
#include <bit>

namespace jet {
namespace {

constexpr std::byte null_ascending{0x00};
constexpr std::byte null_descending{0xFF};
constexpr std::byte value_ascending{0x7F};
constexpr std::byte value_descending{0x80};

void invert(std::span<std::byte> bytes) {
    for (std::byte& byte : bytes) byte = ~byte;
}

template <typename Kind>
const Kind& expect(const Value& value) {
    if (const Kind* held = std::get_if<Kind>(&value)) return *held;
    throw Error(Failure::refused, "index key", "a value of another type than its column");
}

/// Coded values are appended to `key` ascending and turned round afterwards, except where the
/// format has a rule of its own for descending columns.
void append_big_endian(Bytes& key, std::uint64_t bits, std::size_t size) {
    for (std::size_t i = size; i-- > 0;) key.push_back(static_cast<std::byte>(bits >> (8 * i)));
}

/// The top bit turns round so that negative numbers come first.
void append_signed(Bytes& key, std::int64_t number, std::size_t size) {
    const std::uint64_t top = std::uint64_t{1} << (8 * size - 1);
    append_big_endian(key, static_cast<std::uint64_t>(number) ^ top, size);
}

void append_float_bits(Bytes& key, std::uint64_t bits, std::size_t size) {
    const std::uint64_t top = std::uint64_t{1} << (8 * size - 1);
    append_big_endian(key, (bits & top) != 0 ? ~bits : bits ^ top, size);
}

void append_double(Bytes& key, double number) {
    append_float_bits(key, std::bit_cast<std::uint64_t>(number), 8);
}

/// The first byte stays FF for positive and 00 for negative numbers in both directions, so a
/// descending index does not sort decimals by value. It is what the format does.
void append_decimal(Bytes& key, const Decimal& number, bool ascending) {
    key.push_back(number.negative ? std::byte{0x00} : std::byte{0xFF});
    const std::size_t start = key.size();
    for (const std::uint32_t word : number.magnitude) append_big_endian(key, word, 4);
    if (number.negative == ascending) invert(std::span(key).subspan(start));
}

/// Chunks of eight bytes, each followed by 9 if more follow, else by the number of its valid bytes.
void append_binary(Bytes& key, std::span<const std::byte> bytes, bool ascending) {
    constexpr std::size_t chunk = 8;
    for (std::size_t at = 0; at < bytes.size(); at += chunk) {
        const std::size_t valid = std::min(chunk, bytes.size() - at);
        const bool last = at + valid == bytes.size();
        const std::size_t start = key.size();
        key.resize(start + chunk);
        std::copy_n(bytes.data() + at, valid, key.data() + start);
        key.push_back(static_cast<std::byte>(last ? valid : chunk + 1));
        // the 9 between chunks stays as it is in both directions
        if (!ascending) invert(std::span(key).subspan(start, last ? chunk + 1 : chunk));
    }
}

/// The printed form begins with three numbers, most significant byte first.
void append_guid(Bytes& key, const Guid& guid, bool ascending) {
    constexpr std::array<std::uint8_t, 16> printed{3, 2, 1,  0,  5,  4,  7,  6,
                                                   8, 9, 10, 11, 12, 13, 14, 15};
    std::array<std::byte, 16> bytes{};
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = guid.bytes[printed[i]];
    append_binary(key, bytes, ascending);
}

/// Types whose descending coding is the ascending one inverted. @return false for the others.
bool append_number(Bytes& key, Column_Type type, const Value& value) {
    switch (type) {
    case Column_Type::boolean:
        key.push_back(expect<bool>(value) ? std::byte{0x00} : std::byte{0xFF});
        return true;
    case Column_Type::byte:
        key.push_back(static_cast<std::byte>(expect<std::int32_t>(value)));
        return true;
    case Column_Type::integer:
        append_signed(key, expect<std::int32_t>(value), 2);
        return true;
    case Column_Type::long_integer:
        append_signed(key, expect<std::int32_t>(value), 4);
        return true;
    case Column_Type::currency:
        append_signed(key, expect<Currency>(value).ten_thousandths, 8);
        return true;
    case Column_Type::single_float: {
        const auto number = static_cast<float>(expect<double>(value));
        append_float_bits(key, std::bit_cast<std::uint32_t>(number), 4);
        return true;
    }
    case Column_Type::double_float:
        append_double(key, expect<double>(value));
        return true;
    case Column_Type::date:
        append_double(key, expect<Date>(value).days);
        return true;
    default:
        return false;
    }
}

void append_other(Bytes& key, const Key_Column& column, const Value& value) {
    switch (column.type) {
    case Column_Type::text:
    case Column_Type::memo:
        append_text_key(key, expect<std::u16string>(value), column.ascending);
        break;
    case Column_Type::binary:
    case Column_Type::ole:
        append_binary(key, expect<Bytes>(value), column.ascending);
        break;
    case Column_Type::guid:
        append_guid(key, expect<Guid>(value), column.ascending);
        break;
    case Column_Type::decimal:
        append_decimal(key, expect<Decimal>(value), column.ascending);
        break;
    default:
        throw Error(Failure::unsupported, "index key", "a column type without known keys");
    }
}

} // namespace

bool can_compute(const Key_Column& column) noexcept {
    switch (column.type) {
    case Column_Type::boolean:
    case Column_Type::byte:
    case Column_Type::integer:
    case Column_Type::long_integer:
    case Column_Type::currency:
    case Column_Type::single_float:
    case Column_Type::double_float:
    case Column_Type::date:
    case Column_Type::binary:
    case Column_Type::ole:
    case Column_Type::guid:
    case Column_Type::decimal:
        return true;
    case Column_Type::text:
    case Column_Type::memo:
        return column.collation == general_collation;
    }
    return false;
}

bool can_compute(const Key_Shape& shape) noexcept {
    return std::ranges::all_of(shape.columns, [](const Key_Column& c) { return can_compute(c); });
}

Null_Rule null_rule(const Key_Shape& shape, std::span<const Value> values) noexcept {
    const auto nulls = static_cast<std::size_t>(std::ranges::count_if(values, is_null));
    if (nulls > 0 && shape.required) return Null_Rule::refused;
    if (nulls < values.size()) return Null_Rule::entry;
    return shape.ignore_nulls ? Null_Rule::left_out : Null_Rule::entry_repeats;
}

void append_key(Bytes& key, const Key_Column& column, const Value& value) {
    if (is_null(value)) {
        key.push_back(column.ascending ? null_ascending : null_descending);
        return;
    }
    key.push_back(column.ascending ? value_ascending : value_descending);
    const std::size_t start = key.size();
    if (!append_number(key, column.type, value))
        append_other(key, column, value);
    else if (!column.ascending)
        invert(std::span(key).subspan(start));
}

Bytes key_of(std::span<const Key_Column> columns, std::span<const Value> values) {
    Bytes key;
    key.reserve(16);
    const std::size_t count = std::min(columns.size(), values.size());
    for (std::size_t i = 0; i < count; ++i) append_key(key, columns[i], values[i]);
    return key;
}

} // namespace jet
