#include "platform/jet/check/value.h"

namespace jet::check {

namespace {

constexpr std::uint32_t compressed_mark = 0xFEFF;

// After the mark one byte a character; a byte 0 changes to two bytes a character and back.
Text decode_compressed(Bytes stored, std::size_t most) {
    Text text;
    bool narrow = true;
    for (std::size_t at = 2; at < stored.size() && text.units.size() < most;) {
        if (stored.u8(at) == 0) {
            narrow = !narrow;
            ++at;
        } else if (narrow) {
            text.units += static_cast<char16_t>(stored.u8(at++));
        } else if (stored.has(at, 2)) {
            text.units += static_cast<char16_t>(stored.u16(at));
            at += 2;
        } else {
            text.whole = false;
            break;
        }
    }
    return text;
}

} // namespace

Text decode_text(const Format& format, Bytes stored, std::size_t most) {
    if (format.jet4 && stored.size() >= 2 && stored.u16(0) == compressed_mark)
        return decode_compressed(stored, most);
    Text text;
    const std::size_t width = format.jet4 ? 2 : 1;
    const std::size_t units = std::min(stored.size() / width, most);
    for (std::size_t i = 0; i < units; ++i)
        text.units += static_cast<char16_t>(format.jet4 ? stored.u16(2 * i) : stored.u8(i));
    text.whole = stored.size() % width == 0;
    return text;
}

std::optional<Problem> value_problem(const Format& format, const Column& column,
                                     const Value& value) {
    const std::size_t size = value.bytes.size();
    switch (column.type) {
    case column_type::boolean:
    case column_type::ole:
    case column_type::memo:
    case column_type::internal:
        return {};
    case column_type::text:
        if (decode_text(format, value.bytes).whole) return {};
        return Problem{What::text_form, words("ends in half a character")};
    case column_type::binary:
        return {};
    case column_type::decimal:
        if (size == column.length && value.bytes.u8(0) != 0 && value.bytes.u8(0) != 0x80)
            return Problem{What::decimal_sign, words("has the sign ", value.bytes.u8(0))};
        break;
    default:
        break;
    }
    if (size == column.length) return {};
    return Problem{What::value_length, words("has ", size, " bytes instead of ", column.length)};
}

std::optional<Problem> length_problem(const Format& format, const Column& column,
                                      const Value& value) {
    if (column.type != column_type::text && column.type != column_type::binary) return {};
    const bool wide = column.type == column_type::text && format.jet4;
    const std::size_t most = wide ? column.length / 2 : column.length;
    const std::size_t bytes = value.bytes.size();
    if (bytes <= most) return {};
    const std::size_t size = wide ? decode_text(format, value.bytes).units.size() : bytes;
    if (size <= most) return {};
    return Problem{What::text_long, words("has a length of ", size, ", its column of ", most)};
}

} // namespace jet::check
