#include "platform/jet/rows/cell.h"

#include "platform/jet/format/text.h"
#include "platform/jet/rows/long_value.h"

#include <algorithm>
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

Value fitted_integer(const Column_Record& column, const Value& value) {
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

Value fitted_decimal(const Column_Record& column, const Value& value) {
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

Value decode_cell(Pager& pager, const Layout& layout, const Column_Record& column,
                  const View& cell) {
    switch (column.type) {
    case Column_Type::boolean:
        return true;
    case Column_Type::byte:
    case Column_Type::integer:
    case Column_Type::long_integer:
        return decode_integer(column, cell);
    case Column_Type::currency:
        return Currency{static_cast<std::int64_t>(cell.number(0, 8))};
    case Column_Type::single_float:
        return static_cast<double>(std::bit_cast<float>(cell.u32(0)));
    case Column_Type::double_float:
        return std::bit_cast<double>(cell.number(0, 8));
    case Column_Type::date:
        return Date{std::bit_cast<double>(cell.number(0, 8))};
    case Column_Type::decimal:
        return decode_decimal(column, cell);
    case Column_Type::guid:
        return decode_guid(cell);
    case Column_Type::ole:
        return read_long_value(pager, layout, cell);
    case Column_Type::text:
    case Column_Type::memo: {
        std::u16string text;
        decode_text_cell(pager, layout, column, cell, text);
        return text;
    }
    default:
        return Bytes(cell.bytes().begin(), cell.bytes().end());
    }
}

Value fitted(const Column_Record& column, const Value& value, Origin origin) {
    if (is_null(value)) return column.boolean() ? Value(false) : value;
    switch (column.type) {
    case Column_Type::boolean:
        return fitted_as<bool>(column, value, "takes true and false");
    case Column_Type::byte:
    case Column_Type::integer:
    case Column_Type::long_integer:
        return fitted_integer(column, value);
    case Column_Type::single_float:
    case Column_Type::double_float:
        return fitted_floating(column, value, origin);
    case Column_Type::currency:
        return fitted_as<Currency>(column, value, "takes amounts");
    case Column_Type::date:
        return fitted_date(column, value, origin);
    case Column_Type::decimal:
        return fitted_decimal(column, value);
    case Column_Type::guid:
        return fitted_as<Guid>(column, value, "takes GUIDs");
    case Column_Type::text:
    case Column_Type::memo:
        return fitted_text(column, value, origin);
    case Column_Type::binary:
    case Column_Type::ole:
        return fitted_bytes(column, value, origin);
    default: // read as they are, and so put back
        if (origin == Origin::restored && std::holds_alternative<Bytes>(value)) return value;
        refuse(column, "has a type that is not written");
    }
}

Bytes encode_cell(const Column_Record& column, const Value& value) {
    switch (column.type) {
    case Column_Type::boolean:
        return {};
    case Column_Type::byte:
        return number_bytes(static_cast<std::uint32_t>(std::get<std::int32_t>(value)), 1);
    case Column_Type::integer:
        return number_bytes(static_cast<std::uint32_t>(std::get<std::int32_t>(value)), 2);
    case Column_Type::long_integer:
        return number_bytes(static_cast<std::uint32_t>(std::get<std::int32_t>(value)), 4);
    case Column_Type::currency:
        return number_bytes(static_cast<std::uint64_t>(std::get<Currency>(value).ten_thousandths),
                            8);
    case Column_Type::single_float:
        return number_bytes(
            std::bit_cast<std::uint32_t>(static_cast<float>(std::get<double>(value))), 4);
    case Column_Type::double_float:
        return number_bytes(std::bit_cast<std::uint64_t>(std::get<double>(value)), 8);
    case Column_Type::date:
        return number_bytes(std::bit_cast<std::uint64_t>(std::get<Date>(value).days), 8);
    case Column_Type::decimal:
        return encode_decimal(std::get<Decimal>(value));
    case Column_Type::guid: {
        const auto& guid = std::get<Guid>(value).bytes;
        return {guid.begin(), guid.end()};
    }
    case Column_Type::text:
    case Column_Type::memo:
        return encode_text_cell(column, std::get<std::u16string>(value));
    default:
        return std::get<Bytes>(value);
    }
}

} // namespace jet
