#pragma once

#include <QString>

#include <array>

namespace app {

/// Texts of the script windows in German, English and French, known by their number 0..540. Numbers
/// that no window uses have no text.
class Text_Table {
public:
    static constexpr int languages = 3; ///< 0 German, 1 English, 2 French
    static constexpr int texts_per_language = 541;

    /// Until then all texts are empty.
    void fill();
    /// Text number k in the language of `LanguageIndex`; empty for a number or language that does
    /// not exist.
    QString text(int number) const;
    QString text(int number, int language) const;

private:
    std::array<QString, std::size_t{languages} * texts_per_language>
        texts_; ///< k of language L at L * 541 + k
};

inline Text_Table TextTable; ///< filled by the main window before anything else

} // namespace app
