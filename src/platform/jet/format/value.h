#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace jet {

/// Types of columns, with the codes that stand in the file.
enum class Column_Type : std::uint8_t {
    boolean = 0x01, ///< never null: what is not there is false
    byte = 0x02,    ///< 0..255
    integer = 0x03, ///< 16 bits, signed
    long_integer = 0x04,
    currency = 0x05,
    single_float = 0x06,
    double_float = 0x07,
    date = 0x08,
    binary = 0x09, ///< up to 510 bytes
    text = 0x0A,   ///< up to 255 characters
    ole = 0x0B,    ///< bytes of any length
    memo = 0x0C,   ///< text of any length
    guid = 0x0F,
    decimal = 0x10
    // Other codes occur in columns of other programs: their values are read as bytes and never set.
};

/// Bytes of Binary and OLE columns, and of columns whose type we do not know.
using Bytes = std::vector<std::byte>;

/// An amount in ten-thousandths.
struct Currency {
    std::int64_t ten_thousandths = 0;
    bool operator==(const Currency&) const = default;
};

/// Days since 30 December 1899; the fraction is the time of day and counts forward before that
/// day too: -1.25 is 6 o'clock on 29 December.
struct Date {
    double days = 0;
    bool operator==(const Date&) const = default;
};

/// magnitude / 10^scale, with the sign apart. The most significant word comes first.
struct Decimal {
    bool negative = false;
    std::array<std::uint32_t, 4> magnitude{};
    std::uint8_t scale = 0;
    bool operator==(const Decimal&) const = default;
};

/// The 16 bytes as they are stored: the first three groups of the printed form are little-endian.
struct Guid {
    std::array<std::byte, 16> bytes{};
    bool operator==(const Guid&) const = default;
};

struct Null {
    bool operator==(const Null&) const = default;
};

/// What a cell holds. Byte, Integer and Long are std::int32_t; Single and Double are double; Text
/// and Memo are std::u16string; Binary, OLE and unknown types are Bytes.
using Value = std::variant<Null, bool, std::int32_t, double, Currency, Date, Decimal, Guid,
                           std::u16string, Bytes>;

inline bool is_null(const Value& value) { return std::holds_alternative<Null>(value); }

/// Equal, or both no number: NaN differs from itself, but the row that holds it does not.
inline bool same_value(const Value& one, const Value& other) {
    const auto no_number = [](const Value& value) {
        const auto* const number = std::get_if<double>(&value);
        const auto* const date = std::get_if<Date>(&value);
        return number != nullptr ? std::isnan(*number) : date != nullptr && std::isnan(date->days);
    };
    return one == other || (one.index() == other.index() && no_number(one) && no_number(other));
}

/// Where the values of a row come from.
enum class Origin {
    typed,    ///< somebody wants them stored: they are made to fit, or refused
    restored, ///< they were in the file: other programs store what we refuse, and what comes back
              ///< must not differ
    orphan    ///< the same, and it had no partner in a relation
};

} // namespace jet
