#include "platform/serial/line_settings.h"

#include <QStringList>
#include <algorithm>

namespace serial {
namespace {

constexpr int known_speeds[] = {50,   75,   110,  134,   150,   200,   300,    600,    1200,  1800,
                                2400, 4800, 9600, 19200, 38400, 57600, 115200, 230400, 460800};

} // namespace

std::optional<Line_Settings> line_settings(const QString& text) {
    const QStringList parts = text.split(u',');
    if (parts.size() != 4 || parts[1].size() != 1 || parts[2].size() != 1 || parts[3].size() != 1) {
        return std::nullopt;
    }
    Line_Settings line;
    line.baud = parts[0].toInt(); // 0 where it is no number
    line.data_bits = parts[2].toInt();
    line.stop_bits = parts[3].toInt();
    if (std::ranges::find(known_speeds, line.baud) == std::end(known_speeds)) return std::nullopt;
    if (line.data_bits < 5 || line.data_bits > 8) return std::nullopt;
    if (line.stop_bits < 1 || line.stop_bits > 2) return std::nullopt;
    switch (parts[1][0].toUpper().unicode()) {
    case u'N':
        line.parity = Line_Settings::Parity::none;
        break;
    case u'E':
        line.parity = Line_Settings::Parity::even;
        break;
    case u'O':
        line.parity = Line_Settings::Parity::odd;
        break;
    default:
        return std::nullopt;
    }
    return line;
}

} // namespace serial
