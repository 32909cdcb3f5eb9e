#include "platform/jet/rows/cell.h"

#include "platform/jet/format/text.h"
#include "platform/jet/rows/long_value.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>

namespace jet {
namespace {

Decimal decode_decimal(const Column_Record& column, const View& cell) {
    Decimal decimal;
    decimal.negative = (cell.u8(0) & 0x80U) != 0;
    for (std::size_t i = 0; i < 4; ++i) decimal.magnitude[i] = cell.u32(1 + 4 * i);
    decimal.scale = static_cast<std::uint8_t>(column.extra >> 8U);
    return decimal;
}

Guid decode_guid(const View& cell) {
    Guid guid;
    const auto bytes = cell.part(0, guid.bytes.size()).bytes();
    std::copy(bytes.begin(), bytes.end(), guid.bytes.begin());
    return guid;
}

[[noreturn]] void refuse(const Column_Record& column, const std::string& reason) {
    throw Error(Failure::refused, to_utf8(column.name), reason);
}

/// Smallest and largest number of the whole-number types.
std::pair<std::int64_t, std::int64_t> range(Column_Type type) {
    if (type == Column_Type::byte) return {0, 255};
    if (type == Column_Type::integer) return {-32768, 32767};
    return {std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()};
}

Value fitted_integer(const Column_Record& column, const Value& value, Origin /*origin*/) {
    const auto* number = std::get_if<std::int32_t>(&value);
    if (number == nullptr) refuse(column, "takes whole numbers");
    const auto [low, high] = range(column.type);
    if (*number < low || *number > high)
        refuse(column, std::to_string(*number) + " is out of range");
    return value;
}

Value fitted_floating(const Column_Record& column, const Value& value, Origin origin) {
    double number = 0;
    if (const auto* whole = std::get_if<std::int32_t>(&value))
        number = *whole;
    else if (const auto* floating = std::get_if<double>(&value))
        number = *floating;
    else
        refuse(column, "takes numbers");
    const bool in_range =
        std::isfinite(number) &&
        (column.type != Column_Type::single_float ||
         std::abs(number) <= static_cast<double>(std::numeric_limits<float>::max()));
    if (!in_range && origin == Origin::typed) refuse(column, "the number is out of range");
    return column.type == Column_Type::single_float
               ? static_cast<double>(static_cast<float>(number))
               : number;
}

Value fitted_text(const Column_Record& column, const Value& value, Origin origin) {
    const auto* text = std::get_if<std::u16string>(&value);
    if (text == nullptr) refuse(column, "takes text");
    check_length(column, 2 * text->size());
    if (origin == Origin::restored) return value;
    if (column.type == Column_Type::text && text->size() > column.length / 2U)
        refuse(column,
               "the text has more than " + std::to_string(column.length / 2U) + " characters");
    return without_lone_surrogates(*text);
}

Value fitted_bytes(const Column_Record& column, const Value& value, Origin origin) {
    const auto* bytes = std::get_if<Bytes>(&value);
    if (bytes == nullptr) refuse(column, "takes bytes");
    check_length(column, bytes->size());
    if (column.type == Column_Type::binary && bytes->size() > column.length &&
        origin == Origin::typed)
        refuse(column, "more than " + std::to_string(column.length) + " bytes");
    return value;
}

/// Types that are stored as they come.
template <typename Type>
Value fitted_as(const Column_Record& column, const Value& value, const char* what) {
    if (!std::holds_alternative<Type>(value)) refuse(column, what);
    return value;
}

Value fitted_decimal(const Column_Record& column, const Value& value, Origin /*origin*/) {
    const auto* decimal = std::get_if<Decimal>(&value);
    if (decimal == nullptr) refuse(column, "takes decimal numbers");
    if (decimal->scale != static_cast<std::uint8_t>(column.extra >> 8U))
        refuse(column, "the number has another scale than the column");
    return value;
}

Value fitted_date(const Column_Record& column, const Value& value, Origin origin) {
    const auto* date = std::get_if<Date>(&value);
    if (date == nullptr) refuse(column, "takes dates");
    if (!std::isfinite(date->days) && origin == Origin::typed)
        refuse(column, "the date is out of range");
    return value;
}

Bytes number_bytes(std::uint64_t number, std::size_t size) {
    Bytes bytes(size);
    store_number(bytes.data(), number, size);
    return bytes;
}

Bytes encode_decimal(const Decimal& decimal) {
    Bytes bytes(17);
    bytes[0] = static_cast<std::byte>(decimal.negative ? 0x80 : 0);
    for (std::size_t i = 0; i < 4; ++i) store_u32(bytes.data() + 1 + 4 * i, decimal.magnitude[i]);
    return bytes;
}

Bytes encode_text_cell(const Column_Record& column, const std::u16string& text) {
    auto bytes = encode_text(text, column.compressed() && !column.fixed());
    if (!column.fixed()) return bytes;
    const auto end = bytes.size();
    if (end > column.length) refuse(column, "the text is longer than its place");
    bytes.resize(column.length);                // always of full length, padded with blanks
    if (text.empty() || text.front() != 0xFEFF) // zeros are read over in runs
        for (auto i = end; i + 1 < bytes.size(); i += 2) store_u16(bytes.data() + i, u' ');
    return bytes;
}

} // namespace

void check_length(const Column_Record& column, std::size_t bytes) {
    if (bytes > Long_Header::longest) refuse(column, "the value is too long");
}

std::int32_t decode_integer(const Column_Record& column, const View& cell) {
    if (column.type == Column_Type::byte) return cell.u8(0);
    if (column.type == Column_Type::integer) return static_cast<std::int16_t>(cell.u16(0));
    return cell.i32(0);
}

void decode_text_cell(Pager& pager, const Layout& layout, const Column_Record& column,
                      const View& cell, std::u16string& into) {
    const auto decode = [&](std::span<const std::byte> stored) {
        if (layout.jet3)
            decode_ansi(stored, into);
        else
            decode_text(stored, into);
    };
    if (column.type == Column_Type::memo)
        decode(read_long_value(pager, layout, cell));
    else
        decode(cell.bytes());
}

namespace {

/// Where long values are read from.
struct Source {
    Pager& pager;
    const Layout& layout;
};

/// What a type of columns does with its cells.
struct Cell_Type {
    Column_Type type;
    Value (*decode)(const Source& from, const Column_Record& column, const View& cell);
    Value (*fit)(const Column_Record& column, const Value& value, Origin origin);
    Bytes (*encode)(const Value& value, const Column_Record& column);
};

using From = const Source&;
using Of = const Column_Record&;
using In = const View&;

Value decode_whole(From, Of column, In cell) { return decode_integer(column, cell); }

Value decode_any_text(From from, Of column, In cell) {
    std::u16string text;
    decode_text_cell(from.pager, from.layout, column, cell, text);
    return text;
}

Value decode_bytes(From, Of, In cell) { return Bytes(cell.bytes().begin(), cell.bytes().end()); }

template <std::size_t size>
Bytes encode_whole(const Value& value, Of) {
    return number_bytes(static_cast<std::uint32_t>(std::get<std::int32_t>(value)), size);
}

Bytes encode_any_text(const Value& value, Of column) {
    return encode_text_cell(column, std::get<std::u16string>(value));
}

Bytes encode_bytes(const Value& value, Of) { return std::get<Bytes>(value); }

constexpr Cell_Type cell_types[] = {
    {Column_Type::boolean, [](From, Of, In) { return Value(true); },
     [](Of column, const Value& value, Origin) {
         return fitted_as<bool>(column, value, "takes true and false");
     },
     [](const Value&, Of) { return Bytes(); }},
    {Column_Type::byte, decode_whole, fitted_integer, encode_whole<1>},
    {Column_Type::integer, decode_whole, fitted_integer, encode_whole<2>},
    {Column_Type::long_integer, decode_whole, fitted_integer, encode_whole<4>},
    {Column_Type::currency,
     [](From, Of, In cell) {
         return Value(Currency{static_cast<std::int64_t>(cell.number(0, 8))});
     },
     [](Of column, const Value& value, Origin) {
         return fitted_as<Currency>(column, value, "takes amounts");
     },
     [](const Value& value, Of) {
         return number_bytes(static_cast<std::uint64_t>(std::get<Currency>(value).ten_thousandths),
                             8);
     }},
    {Column_Type::single_float,
     [](From, Of, In cell) {
         return Value(static_cast<double>(std::bit_cast<float>(cell.u32(0))));
     },
     fitted_floating,
     [](const Value& value, Of) {
         const auto number = static_cast<float>(std::get<double>(value));
         return number_bytes(std::bit_cast<std::uint32_t>(number), 4);
     }},
    {Column_Type::double_float,
     [](From, Of, In cell) { return Value(std::bit_cast<double>(cell.number(0, 8))); },
     fitted_floating,
     [](const Value& value, Of) {
         return number_bytes(std::bit_cast<std::uint64_t>(std::get<double>(value)), 8);
     }},
    {Column_Type::date,
     [](From, Of, In cell) { return Value(Date{std::bit_cast<double>(cell.number(0, 8))}); },
     fitted_date,
     [](const Value& value, Of) {
         return number_bytes(std::bit_cast<std::uint64_t>(std::get<Date>(value).days), 8);
     }},
    {Column_Type::binary, decode_bytes, fitted_bytes, encode_bytes},
    {Column_Type::text, decode_any_text, fitted_text, encode_any_text},
    {Column_Type::ole,
     [](From from, Of, In cell) { return Value(read_long_value(from.pager, from.layout, cell)); },
     fitted_bytes, encode_bytes},
    {Column_Type::memo, decode_any_text, fitted_text, encode_any_text},
    {Column_Type::guid, [](From, Of, In cell) { return Value(decode_guid(cell)); },
     [](Of column, const Value& value, Origin) {
         return fitted_as<Guid>(column, value, "takes GUIDs");
     },
     [](const Value& value, Of) {
         const auto& guid = std::get<Guid>(value).bytes;
         return Bytes(guid.begin(), guid.end());
     }},
    {Column_Type::decimal,
     [](From, Of column, In cell) { return Value(decode_decimal(column, cell)); }, fitted_decimal,
     [](const Value& value, Of) { return encode_decimal(std::get<Decimal>(value)); }},
};

/// Of other programs: read as it is, and so put back.
constexpr Cell_Type unknown_type{{},
                                 decode_bytes,
                                 [](Of column, const Value& value, Origin origin) {
                                     if (origin == Origin::typed ||
                                         !std::holds_alternative<Bytes>(value))
                                         refuse(column, "has a type that is not written");
                                     return value;
                                 },
                                 encode_bytes};

const Cell_Type& cell_type(Column_Type type) {
    constexpr auto by_code = [] {
        std::array<const Cell_Type*, static_cast<std::size_t>(Column_Type::decimal) + 1> all{};
        all.fill(&unknown_type);
        for (const Cell_Type& each : cell_types) all[static_cast<std::size_t>(each.type)] = &each;
        return all;
    }();
    const auto code = static_cast<std::size_t>(type);
    return code < by_code.size() ? *by_code[code] : unknown_type;
}

} // namespace

Value decode_cell(Pager& pager, const Layout& layout, const Column_Record& column,
                  const View& cell) {
    return cell_type(column.type).decode({pager, layout}, column, cell);
}

Value fitted(const Column_Record& column, const Value& value, Origin origin) {
    if (is_null(value)) return column.boolean() ? Value(false) : value;
    return cell_type(column.type).fit(column, value, origin);
}

Bytes encode_cell(const Column_Record& column, const Value& value) {
    return cell_type(column.type).encode(value, column);
}

} // namespace jet
