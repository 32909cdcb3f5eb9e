#include "scripts/script_texts.h"

#include "app/mod_main.h"
#include "app/text_table.h"

#include <gmock/gmock.h>

using namespace scripts;

namespace {

/// Two scripts of a set; the first one is open in the editor.
class Script_Texts : public testing::Test {
protected:
    Script_Texts() {
        app::reset_globals();
        app::TextTable.fill();
        for (int i = 0; i < 2; ++i) of_set.AddScript();
    }
    ~Script_Texts() override { app::reset_globals(); }

    cls_Scriptstate& line(cls_script& script, int command, std::vector<int> parameters) {
        cls_Scriptstate& made = script.GetState(script.StateCount++);
        made.SetCommand(command);
        for (int i = 0; i < static_cast<int>(parameters.size()); ++i)
            made.SetPar(i, parameters[static_cast<std::size_t>(i)]);
        return made;
    }
    std::string column(int number, int state = 0) {
        return GetColumnText(*of_set.Item(1), state, number, context).toStdString();
    }

    cls_script_coll of_set;
    std::map<int, int> values;
    Text_Context context{of_set,
                         nullptr,
                         [this](int cv) { return values[cv]; },
                         {{QStringLiteral("Pfiff"), 7}, {QStringLiteral("Glocke"), 9}}};
};

TEST_F(Script_Texts, of_columns) {
    struct Expected {
        int command;
        std::vector<int> parameters; ///< in editor form
        std::array<const char*, 5> columns;
    };
    for (const Expected& expected :
         {Expected{1,
                   {7, 3, 2, 0},
                   {"Sample", "Vol = -9 dB", "Einmal abspielen", "Bei Ende alles abspielen", ""}},
          {1,
           {7, 0, 1, 0},
           {"Sample", "Vol = -0 dB", "Loop bis Sound Beenden", "Bei Ende vorspringen bis Loop-Ende",
            ""}},
          {1,
           {7, 0, 17, 0},
           {"Sample", "Vol = -0 dB", "Loop-Anzahl = 8", "Bei Ende vorspringen bis Loop-Ende", ""}},
          {4, {28, 0, 7}, {"Wenn F0", "ist Aus", "dann gehe zu State 7", "", ""}},
          {4, {29, 2, 0}, {"Wenn MAN", "ist Ein", "dann gehe zu State 0", "", ""}},
          {5,
           {30, 6, 5, 9},
           {"unknown", "ist größer als", "5", "in CV#985", "dann gehe zu State 9"}},
          {5,
           {22, 1, 5, 9},
           {"Aktueller Betriebsmodus (nur QR)", "ist ungleich", "5", "in CV#-",
            "dann gehe zu State 9"}},
          {9, {1, 1, 1}, {"", "", "", "", ""}}}) {
        SCOPED_TRACE(expected.command);
        of_set.Item(1)->StateCount = 0;
        line(*of_set.Item(1), expected.command, expected.parameters);
        for (int i = 0; i < 5; ++i)
            EXPECT_EQ(column(i), expected.columns[static_cast<std::size_t>(i)]) << i;
    }
    EXPECT_EQ(column(-1) + column(5), "");
}

TEST_F(Script_Texts, tell_where_else_a_cv_is_used) {
    cls_script& edited = *of_set.Item(1);
    line(edited, 4, {37, 0, 0});
    EXPECT_EQ(column(0), "Wenn Taste aus = CV#985 (Script1-Funktionstaste F0)") << "nobody edits";
    edited.EditActive = true;
    values[985] = 5;
    EXPECT_EQ(column(0), "Wenn Taste aus CV#985 (F5)") << "the edited line itself shows the value";
    EXPECT_TRUE(edited.ShowCVValues);
    line(edited, 9, {});
    EXPECT_EQ(column(0, 1), "");
    EXPECT_FALSE(edited.ShowCVValues);

    cls_script& later = *of_set.Item(2);
    edited.EditActive = false;
    later.EditActive = true;
    line(later, 4, {37, 0, 0});
    edited.SetState(0, {});
    line(edited, 1, {7, 5, 0, 1});
    EXPECT_EQ(GetColumnText(later, 0, 0, context).toStdString(),
              "Wenn Taste aus = CV#985 (Script1-Sound-Lautstärke)");
}

TEST_F(Script_Texts, of_uses) {
    struct Expected {
        int command;
        std::vector<int> parameters;
        int value;
        const char* text;
    };
    for (const Expected& expected : {Expected{1, {0, 4, 0, 1}, 0, "Script2-Sound-Lautstärke"},
                                     {4, {36}, 29, "Script2-Funktionstaste MAN"},
                                     {4, {36}, 30, "Script2-Funktionstaste -"},
                                     {5, {0, 5, 4}, 0, "Script2-Parameterwert"},
                                     {7, {0, 4, 0, 1}, 0, "Script2-Lok-Geschwindigkeit"},
                                     {12, {0, 5, 0}, 3, "Script2-Timer-Zeit = 0,3s"},
                                     {12, {0, 5, 2}, 3, "Script2-Timer-Zeit = 30ms"},
                                     {12, {0, 5, 6}, 3, "Script2-Timer-Zeit = 300s"},
                                     {12, {0, 5, 7}, 3, "Script2-Timer-Zeit = "},
                                     {15, {4, 0, 1}, 22, "Script2-Ausgang FA21 schalten"},
                                     {15, {1, 4, 2}, 0, "Script2-Ausgang FA0r PWM (0-31)"},
                                     {21, {4, 0, 0, 1}, 2, "Script2-Reed-Eingang IN3"},
                                     {22, {0, 4, 4}, 0, "Script2-Eventwert"},
                                     {23, {0, 4, 4}, 0, "Script2-Variablenwert"},
                                     {29, {4, 0, 1}, 0, "Script2-Ziellautstärke"},
                                     {29, {0, 4, 2}, 0, "Script2-Fade-Zeit"},
                                     {1, {0, 4, 0, 0}, 0, ""},
                                     {12, {0, 41}, 0, ""},
                                     {32, {3, 215}, 0, ""}}) {
        SCOPED_TRACE(expected.text);
        of_set.Item(2)->StateCount = 0;
        line(*of_set.Item(2), expected.command, expected.parameters);
        values[984] = expected.value;
        EXPECT_EQ(CVUsageText(984, true, context).toStdString(), expected.text);
    }
}

TEST_F(Script_Texts, of_choices_and_what_is_chosen) {
    cls_script& script = *of_set.Item(1);
    struct Expected {
        int command;
        std::vector<int> parameters;
        int column;
        const char* caption;
        int choices, current, chosen;
        std::vector<int> after;
    };
    for (const Expected& expected : {Expected{1, {9, 0, 2, 0}, 0, "Samples", 2, 1, 0, {7, 0, 2, 0}},
                                     {1, {9, 4, 2, 0}, 1, "Lautstärke", 50, 4, 12, {9, 2, 2, 1}},
                                     {1, {9, 2, 2, 3}, 1, "Lautstärke", 50, 12, 9, {9, 9, 2, 2}},
                                     {1, {9, 0, 1, 0}, 2, "Loop-Anzahl", 9, 8, 1, {9, 0, 11, 0}},
                                     {1, {9, 0, 3, 0}, 3, "Sound Ende", 2, 0, 1, {9, 0, 11, 0}},
                                     {4, {73, 0, 0}, 0, "Taste", 72, 71, 30, {32, 0, 0}},
                                     {4, {28, 0, 0}, 0, "Taste", 72, 0, 72, {28, 0, 0}},
                                     {4, {28, 1, 0}, 1, "Test", 2, 1, 0, {28, 0, 0}},
                                     {4, {28, 1, 6}, 2, "State", 1, 6, 8, {28, 1, 8}},
                                     {5, {22, 1}, 0, "Parameter", 23, 22, 3, {3, 1}},
                                     {8, {9, 1}, 0, "", 0, -1, 0, {7, 1}},
                                     {13, {1, 1}, 1, "", 0, -1, 4, {1, 4}}}) {
        SCOPED_TRACE(expected.command * 10 + expected.column);
        script.StateCount = 0;
        script.SetState(0, {});
        line(script, expected.command, expected.parameters);
        const Column_Choices found = GetColumnChoices(script, 0, expected.column, context);
        EXPECT_EQ(found.caption.toStdString(), expected.caption);
        EXPECT_EQ(found.choices.size(), expected.choices);
        EXPECT_EQ(found.current, expected.current);
        EXPECT_EQ(found.state, expected.command == 4 && expected.column == 2);
        EXPECT_EQ(found.samples, expected.command == 1 && expected.column == 0);
        SetColumnValue(script, 0, expected.column, expected.chosen, context);
        for (int i = 0; i < static_cast<int>(expected.after.size()); ++i)
            EXPECT_EQ(script.GetState(0).GetPar(i), expected.after[static_cast<std::size_t>(i)]);
    }
}

} // namespace
