#include "app/one_line.h"

namespace app {

QString in_one_line(QString text) {
    for (QChar& unit : text)
        if (unit.category() == QChar::Other_Control || unit == QChar::LineSeparator ||
            unit == QChar::ParagraphSeparator)
            unit = u' ';
    return text;
}

} // namespace app
