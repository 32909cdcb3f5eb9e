#include "app/mod_main.h"
#include "app/text_table.h"

#include <gtest/gtest.h>

TEST(Key_Names, follow_the_decoders_numbering) {
    const std::tuple<int, const char*, const char*> cases[] = {
        {-1, "", ""},     {0, "F0", "FA0v"},   {1, "F1", "FA0r"},
        {2, "F2", "FA1"}, {22, "F22", "FA21"}, {23, "F23", ""},
        {28, "F28", ""},  {29, "MAN", ""},     {30, "", ""}};
    for (const auto& [number, key, output] : cases) {
        EXPECT_EQ(app::FKey_Name(number).toStdString(), key) << number;
        EXPECT_EQ(app::FA_Name(number).toStdString(), output) << number;
    }
}

TEST(Text_Table, chooses_by_number_and_language) {
    app::Text_Table table;
    EXPECT_TRUE(table.text(531).isEmpty()) << "before the start fills it";
    table.fill();
    for (const auto& [language, text] : {std::pair(0, "State löschen?"),
                                         {1, "Delete state?"},
                                         {2, "Supprimer l'état ?"},
                                         {3, ""}}) {
        app::globals.LanguageIndex = language;
        EXPECT_EQ(table.text(531).toStdString(), text);
    }
    app::reset_globals();
    // 541 and 553 are not texts of the next language
    for (const auto& [number, language] : {std::pair(541, 0), {553, 0}, {12, -1}, {-10, 1}})
        EXPECT_TRUE(table.text(number, language).isEmpty()) << number;
    int filled = 0;
    for (int number = 0; number < app::Text_Table::texts_per_language; ++number)
        for (const int language : {0, 1, 2})
            filled += table.text(number, language).isEmpty() ? 0 : 1;
    EXPECT_EQ(filled, 3 * 38) << "a text lost or given twice";
}
