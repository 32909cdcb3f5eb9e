#include "scripts/cls_script.h"

#include "scripts/error.h"
#include "scripts/catalogue/commands.h"

#include <gmock/gmock.h>

#include <functional>
#include <utility>
#include <vector>

namespace {

using namespace scripts;
using testing::ElementsAre;

Failure failure_of(const std::function<void()>& action) {
    try {
        action();
    } catch (const Error& error) {
        return error.kind;
    }
    throw std::logic_error("nothing was refused");
}

/// Lines "Gehe zu State" with these targets, each telling in its comment which line it was.
cls_script jumps_to(const std::vector<int>& targets) {
    cls_script script;
    for (const int target : targets) {
        auto& state = script.GetState(script.StateCount);
        state.SetCommand(6);
        state.SetPar(0, target);
        state.Info = QString::number(script.StateCount++);
    }
    return script;
}

/// "comment:target" per line; "-" for an empty one.
std::vector<std::string> lines_of(const cls_script& script) {
    std::vector<std::string> lines;
    for (int i = 0; i < script.StateCount; ++i) {
        const auto& state = script.GetState(i);
        lines.push_back(state == cls_Scriptstate{}
                            ? "-"
                            : state.Info.toStdString() + ":" + std::to_string(state.GetPar(0)));
    }
    return lines;
}

TEST(Script_State, keeps_what_no_byte_could_hold) {
    cls_Scriptstate state;
    state.SetPar(0, 257);
    state.SetPar(6, -1);
    EXPECT_EQ(state.GetPar(0), 257);
    EXPECT_EQ(state.GetPar(6), -1);
    EXPECT_EQ(failure_of([&] { state.SetPar(7, 0); }), Failure::not_found);
    EXPECT_EQ(failure_of([&] { (void)state.GetPar(-1); }), Failure::not_found);
}

TEST(Script_State, copies_command_comment_and_five_parameters) {
    cls_Scriptstate from;
    cls_Scriptstate to;
    from.SetCommand(30);
    from.Info = QStringLiteral("Licht");
    for (int i = 0; i < 7; ++i) {
        from.SetPar(i, 10 + i);
        to.SetPar(i, 20 + i);
    }
    to.CopyFrom(from);
    EXPECT_EQ(to.GetCommand(), 30);
    EXPECT_EQ(to.Info, QStringLiteral("Licht"));
    std::vector<int> pars;
    for (int i = 0; i < 7; ++i) pars.push_back(to.GetPar(i));
    EXPECT_THAT(pars, ElementsAre(10, 11, 12, 13, 14, 25, 26));
}

TEST(Script, yields_a_state_at_every_index_from_0_to_255_only) {
    cls_script script;
    auto& first = script.GetState(0);
    first.SetCommand(2);
    EXPECT_EQ(script.GetState(255), cls_Scriptstate{});
    EXPECT_EQ(first.GetCommand(), 2) << "a reference must outlive the growing of the script";
    EXPECT_EQ(std::as_const(script).GetState(17), cls_Scriptstate{});
    EXPECT_EQ(script.StateCount, 0);
    for (const int outside : {-1, 256}) {
        SCOPED_TRACE(outside);
        EXPECT_EQ(failure_of([&] { script.GetState(outside); }), Failure::not_found);
        EXPECT_EQ(failure_of([&] { script.SetState(outside, {}); }), Failure::not_found);
        EXPECT_EQ(failure_of([&] { script.Insert_ScriptState(outside); }), Failure::not_found);
        EXPECT_EQ(failure_of([&] { script.Delete_ScriptState(outside); }), Failure::not_found);
        EXPECT_EQ(failure_of([&] { script.Copy_ScriptState(outside, 0); }), Failure::not_found);
        EXPECT_EQ(failure_of([&] { script.Copy_ScriptState(0, outside); }), Failure::not_found);
    }
}

TEST(Script, takes_over_the_four_fields_of_a_header) {
    cls_script from;
    from.StateCount = 3;
    from.ScriptName = QStringLiteral("Pfiff");
    from.HeaderFlag = from.EditActive = from.ShowCVValues = true;
    from.ScriptID = 9;
    cls_script to;
    to.CopyHeader(from);
    EXPECT_EQ(to.StateCount, 3);
    EXPECT_EQ(to.ScriptName, QStringLiteral("Pfiff"));
    EXPECT_TRUE(to.HeaderFlag && to.EditActive);
    EXPECT_FALSE(to.ShowCVValues);
    EXPECT_EQ(to.ScriptID, 0);
}

TEST(Script, finds_the_jump_target_of_every_command) {
    const std::vector<std::pair<int, int>> jumps = {{4, 2},  {5, 3},  {6, 0},
                                                    {21, 2}, {22, 3}, {23, 3}};
    for (int command = -1; command <= 34; ++command) {
        SCOPED_TRACE(command);
        std::optional<int> expected;
        for (const auto& [jump, parameter] : jumps)
            if (jump == command) expected = parameter;
        EXPECT_EQ(scripts_catalogue::JumpParameter(command), expected);
        EXPECT_EQ(scripts_catalogue::IsJumpCommand(command), expected.has_value());
        // Inserting before the target moves it in that parameter and in no other.
        cls_script script;
        script.StateCount = 5;
        script.GetState(0).SetCommand(command);
        for (int i = 0; i < 7; ++i) script.GetState(0).SetPar(i, 3);
        script.Insert_ScriptState(2);
        for (int i = 0; i < 7; ++i)
            EXPECT_EQ(script.GetState(0).GetPar(i), expected == i ? 4 : 3) << i;
    }
}

TEST(Script, inserting_moves_the_jumps_with_their_lines) {
    const struct {
        std::vector<int> targets;
        int index;
        std::vector<std::string> expected;
    } cases[] = {
        {{3, 1, 5, 2, 0}, 2, {"0:4", "1:1", "-", "2:5", "3:3", "4:0"}},
        {{0, 4, 200, 1, 4}, 0, {"-", "0:1", "1:5", "2:200", "3:2", "4:5"}},
        {{1, 2}, 2, {"0:1", "1:2", "-"}}, // a jump to the line behind the last one stays
        {{}, 0, {"-"}},
    };
    for (const auto& c : cases) {
        auto script = jumps_to(c.targets);
        script.Insert_ScriptState(c.index);
        EXPECT_EQ(lines_of(script), c.expected) << c.index;
    }
}

TEST(Script, inserting_fills_256_lines_and_refuses_the_next) {
    auto script = jumps_to(std::vector<int>(255, 254));
    script.Insert_ScriptState(255);
    EXPECT_EQ(script.StateCount, 256);
    EXPECT_EQ(script.GetState(0).GetPar(0), 254);
    const auto before = lines_of(script);
    EXPECT_EQ(failure_of([&] { script.Insert_ScriptState(0); }), Failure::full);
    EXPECT_EQ(lines_of(script), before);

    auto shifted = jumps_to(std::vector<int>(255, 254));
    shifted.Insert_ScriptState(0);
    EXPECT_EQ(shifted.GetState(255).Info, QStringLiteral("254"));
    EXPECT_EQ(shifted.GetState(255).GetPar(0), 255);
}

TEST(Script, deleting_moves_the_jumps_with_their_lines) {
    const struct {
        std::vector<int> targets;
        int index;
        std::vector<std::string> expected;
    } cases[] = {
        {{3, 4, 9, 2, 1}, 2, {"0:2", "1:3", "3:2", "4:1"}},
        {{0, 1, 2}, 0, {"1:0", "2:1"}},
        {{0, 1, 2}, 2, {"0:0", "1:1"}},
        {{7}, 0, {}},
    };
    for (const auto& c : cases) {
        auto script = jumps_to(c.targets);
        script.Delete_ScriptState(c.index);
        EXPECT_EQ(lines_of(script), c.expected) << c.index;
        EXPECT_EQ(script.GetState(script.StateCount), cls_Scriptstate{})
            << "the row that became free";
    }
}

TEST(Script, deleting_a_line_that_is_not_there_costs_no_other) {
    auto script = jumps_to({1, 0});
    EXPECT_EQ(failure_of([&] { script.Delete_ScriptState(2); }), Failure::not_found);
    EXPECT_THAT(lines_of(script), ElementsAre("0:1", "1:0"));
}

TEST(Script, deleting_from_a_full_script_leaves_255_lines) {
    auto script = jumps_to(std::vector<int>(256, 255));
    script.Delete_ScriptState(255);
    EXPECT_EQ(script.StateCount, 255);
    EXPECT_EQ(script.GetState(0).GetPar(0), 255) << "the target itself was deleted";
    EXPECT_EQ(script.GetState(255), cls_Scriptstate{});
}

TEST(Script, copying_keeps_the_distance_of_a_jump_inside_the_script) {
    const struct {
        int target, source, to, expected;
    } cases[] = {
        {1, 3, 1, 1},       // -1 would lie before the first line
        {3, 3, 1, 1},       // 1 is the lowest that moves
        {2, 3, 1, 2},       // 0 does not
        {5, 3, 10, 12},     //
        {5, 3, 3, 5},       // onto itself
        {250, 0, 5, 255},   //
        {250, 0, 6, 250},   // 256 is no line
        {251, 5, 255, 251}, //
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.target << " from " << c.source << " to " << c.to);
        cls_script script;
        script.StateCount = 20;
        script.GetState(c.source).SetCommand(6);
        script.GetState(c.source).SetPar(0, c.target);
        script.Copy_ScriptState(c.source, c.to);
        EXPECT_EQ(script.GetState(c.to).GetPar(0), c.expected);
        EXPECT_EQ(script.StateCount, 20);
    }
}

TEST(Script, an_inserted_copy_of_a_later_line_jumps_right) {
    // The way of the editor: click on 3 inserts, click on 7 copies what was 6 into it.
    auto script = jumps_to({0, 0, 0, 0, 0, 0, 8, 0, 0});
    script.Insert_ScriptState(3);
    EXPECT_EQ(script.GetState(7).GetPar(0), 9);
    script.Copy_ScriptState(7, 3);
    EXPECT_EQ(script.GetState(3).Info, QStringLiteral("6"));
    EXPECT_EQ(script.GetState(3).GetPar(0), 5);
}

} // namespace
