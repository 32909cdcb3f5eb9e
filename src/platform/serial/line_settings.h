#pragma once

#include <QString>
#include <optional>

namespace serial {

/// "38400,N,8,2" taken apart: speed, parity, data bits, stop bits.
struct Line_Settings {
    enum class Parity : char { none = 'N', even = 'E', odd = 'O' };
    int baud = 9600; ///< one of those that POSIX and Linux have a name for
    Parity parity = Parity::none;
    int data_bits = 8; ///< 5..8
    int stop_bits = 1; ///< 1 or 2
    bool operator==(const Line_Settings&) const = default;
};

/// @return nothing for a text that is none.
std::optional<Line_Settings> line_settings(const QString& text);

} // namespace serial
