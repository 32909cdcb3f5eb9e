#include "app/code_page.h"

#include <QList>
#include <algorithm>
#include <array>

namespace app {

namespace {

/// 0x80 to 0x9F; everything else is Latin-1.
constexpr std::array<char16_t, 32> middle = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
constexpr unsigned middle_begin = 0x80;
constexpr unsigned middle_end = 0xA0;

} // namespace

QString from_code_page(const QByteArray& bytes) {
    QString text;
    text.reserve(bytes.size());
    for (const char byte : bytes) {
        const unsigned code = static_cast<unsigned char>(byte);
        const bool is_middle = code >= middle_begin && code < middle_end;
        text += QChar(is_middle ? middle[code - middle_begin] : static_cast<char16_t>(code));
    }
    return text;
}

QByteArray to_code_page(const QString& text, int& replaced) {
    QByteArray bytes;
    bytes.reserve(text.size());
    for (const char32_t character : text.toUcs4()) {
        const auto place = std::find(middle.begin(), middle.end(), character);
        if (place != middle.end()) {
            bytes +=
                static_cast<char>(middle_begin + static_cast<unsigned>(place - middle.begin()));
        } else if (character < middle_begin || (character >= middle_end && character <= 0xFF)) {
            bytes += static_cast<char>(character);
        } else {
            bytes += '?';
            ++replaced;
        }
    }
    return bytes;
}

} // namespace app
