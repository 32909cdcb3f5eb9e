#include "app/text_table.h"

#include "app/mod_main.h"

#include <gmock/gmock.h>

namespace {

using app::Text_Table;

TEST(Text_Table, chooses_by_number_and_language) {
    Text_Table table;
    EXPECT_TRUE(table.text(531, 0).isEmpty()) << "before the start fills it";
    table.fill();
    const struct {
        int number, language;
        QString text;
    } cases[] = {
        {12, 0, QStringLiteral("Samples")},
        {531, 0, QStringLiteral("State löschen?")},
        {531, 1, QStringLiteral("Delete state?")},
        {531, 2, QStringLiteral("Supprimer l'état ?")},
        {536, 2, QStringLiteral("Timer valeur")},
        {531, 3, {}}, // values of 3 or more select no text
        {531, 2000, {}},
        {531, -1, {}},
        {541, 0, {}}, // not the first text of the next language
        {553, 0, {}},
        {-10, 1, {}},
        {540, 2, {}}, // a number without a text
    };
    for (const auto& c : cases)
        EXPECT_EQ(table.text(c.number, c.language), c.text) << c.number << " in " << c.language;
}

TEST(Text_Table, follows_the_language_of_the_program) {
    app::TextTable.fill();
    app::reset_globals();
    EXPECT_EQ(app::TextTable.text(402), QStringLiteral("Name"));
    app::globals.LanguageIndex = 2;
    EXPECT_EQ(app::TextTable.text(402), QStringLiteral("Nom"));
    app::globals.LanguageIndex = 3;
    EXPECT_EQ(app::TextTable.text(402), QString());
    app::reset_globals();
}

TEST(Text_Table, has_a_text_in_all_languages_or_in_none) {
    Text_Table table;
    table.fill();
    int filled = 0;
    for (int number = 0; number < Text_Table::texts_per_language; ++number) {
        const bool german = !table.text(number, 0).isEmpty();
        filled += german ? 1 : 0;
        for (int language = 1; language < Text_Table::languages; ++language)
            EXPECT_EQ(!table.text(number, language).isEmpty(), german) << number;
    }
    EXPECT_EQ(filled, 38) << "a row lost or given twice";
}

} // namespace
