#pragma once

#include <QString>

namespace scripts_catalogue {

/// Languages of the catalogue's texts; any number above 1 shows English.
enum Language { german = 0, english = 1 };

/// A text in the languages of the catalogue. Without English it is the same in all.
struct Text {
    const char16_t* german = u"";
    const char16_t* english = nullptr;
    const char16_t* third = nullptr; ///< where it differs from English

    QString in(int language) const;
};

} // namespace scripts_catalogue
