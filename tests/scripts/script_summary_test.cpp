#include "scripts/script_summary.h"

#include "scripts/line_forms.h"

#include <gtest/gtest.h>

using namespace scripts;

TEST(Script_Summary, names_keys_outputs_and_cvs_in_order_and_once) {
    struct Line {
        int command;
        line_tables::Parameters parameters; ///< in decoder form
    };
    const struct {
        std::vector<Line> lines;
        const char *keys, *outputs, *cvs;
    } scripts[] = {
        {{}, "", "", ""},
        {{{4, {9}}, {4, {29}}, {4, {28}}, {4, {0}}, {4, {9}}}, "F0,F1,F10,MAN", "", ""},
        {{{4, {40}}, {4, {71}}, {4, {73}}, {4, {1}}}, "F2,CV#988,CV#1019,CV#1021", "", "988,1019"},
        {{{15, {14, 31}}, {15, {0}}, {15, {22}}, {15, {1, 40}}, {15, {14}}, {15, {23}}},
         "",
         "FA0v,FA0r,FA13,FA21",
         ""},
        {{{15, {5, 3, 1}}, {15, {5, 3, 2}}, {15, {0, 39, 3}}},
         "",
         "FA4,CV#980,CV#985",
         "980,983,985,1019"},
        {{{29, {7, 200, 3}}, {1, {0, 2, 8, 1}}, {7, {1, 90, 0, 1}}}, "", "", "982"},
        {{{32, {0, 3, 211, 0}}, {20, {3, 1}}, {28, {0, 1, 3}}}, "", "", ""},
    };
    for (const auto& each : scripts) {
        cls_script script;
        for (const Line& line : each.lines) {
            cls_Scriptstate& made = script.GetState(script.StateCount++);
            made.SetCommand(line.command);
            for (int i = 0; i < 5; ++i)
                made.SetPar(i, line.parameters[static_cast<std::size_t>(i)]);
        }
        script.GetState(script.StateCount).SetCommand(4); // behind the end
        const Script_Summary says = summary(script);
        EXPECT_EQ(says.keys.toStdString(), each.keys) << &each - scripts;
        EXPECT_EQ(says.outputs.toStdString(), each.outputs) << &each - scripts;
        EXPECT_EQ(says.cvs.toStdString(), each.cvs) << &each - scripts;
    }
}
