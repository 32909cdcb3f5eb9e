#include "platform/jet/default_value.h"

#include "platform/jet/format/error.h"
#include "platform/jet/format/text.h"
#include "platform/jet/rows/cell.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <string>

namespace jet {
namespace {

std::u16string_view trimmed(std::u16string_view text) {
    while (!text.empty() && text.front() == u' ') text.remove_prefix(1);
    while (!text.empty() && text.back() == u' ') text.remove_suffix(1);
    return text;
}

/// The inner text of "..." or '...'; a doubled quote stands for one.
std::optional<std::u16string> quoted(std::u16string_view text) {
    if (text.size() < 2 || (text.front() != u'"' && text.front() != u'\'')) return std::nullopt;
    const char16_t quote = text.front();
    if (text.back() != quote) return std::nullopt;
    std::u16string inner;
    for (std::size_t i = 1; i + 1 < text.size(); ++i) {
        if (text[i] == quote && (i + 2 == text.size() || text[++i] != quote)) return std::nullopt;
        inner.push_back(text[i]);
    }
    return inner;
}

std::optional<double> number(std::u16string_view text) {
    const std::string ascii = to_utf8(text);
    double value = 0;
    const auto [end, error] = std::from_chars(ascii.data(), ascii.data() + ascii.size(), value);
    if (error != std::errc() || end != ascii.data() + ascii.size() || !std::isfinite(value))
        return std::nullopt;
    return value;
}

Value of_number(const Column_Record& column, double value, std::u16string_view written) {
    switch (column.type) {
    case Column_Type::boolean:
        return value != 0;
    case Column_Type::byte:
    case Column_Type::integer:
    case Column_Type::long_integer:
        if (std::abs(value) > double{std::numeric_limits<std::int32_t>::max()}) return Null{};
        return static_cast<std::int32_t>(std::nearbyint(value));
    case Column_Type::single_float:
    case Column_Type::double_float:
        return value;
    case Column_Type::date:
        return Date{value};
    case Column_Type::currency:
        if (std::abs(value) > 1e14) return Null{};
        return Currency{std::llround(value * 10000)};
    case Column_Type::text:
    case Column_Type::memo:
        return std::u16string(written);
    default:
        return Null{};
    }
}

} // namespace

Value default_value(const Column_Record& column, std::u16string_view expression) {
    auto text = trimmed(expression);
    if (!text.empty() && text.front() == u'=') text = trimmed(text.substr(1));
    Value value;
    if (const auto inner = quoted(text))
        value = *inner;
    else if (const auto plain = number(text))
        value = of_number(column, *plain, text);
    try {
        return fitted(column, value);
    } catch (const Error&) {
        return Null{}; // it would have been refused by whoever made the table, too
    }
}

} // namespace jet
