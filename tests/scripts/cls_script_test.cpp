#include "scripts/cls_script.h"

#include "scripts/error.h"

#include <gmock/gmock.h>

#include <map>
#include <utility>
#include <vector>

namespace {

using namespace scripts;
using enum Failure;
using testing::ElementsAre;

auto is_refused(Failure kind) { return testing::Throws<Error>(testing::Field(&Error::kind, kind)); }

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

/// "comment:target" per line
std::vector<std::string> lines_of(const cls_script& script) {
    std::vector<std::string> lines;
    for (int i = 0; i < script.StateCount; ++i)
        lines.push_back(script.GetState(i).Info.toStdString() + ":" +
                        std::to_string(script.GetState(i).GetPar(0)));
    return lines;
}

TEST(Script, yields_a_state_at_every_index_from_0_to_255_only) {
    cls_script script;
    auto& first = script.GetState(0);
    first.SetPar(6, -1); // kept, though no byte could hold it
    EXPECT_EQ(script.GetState(255), cls_Scriptstate{});
    EXPECT_EQ(first.GetPar(6), -1) << "a reference must outlive the growing of the script";
    EXPECT_EQ(std::as_const(script).GetState(17), cls_Scriptstate{});
    EXPECT_EQ(script.StateCount, 0);
    for (const int outside : {-1, 256}) {
        SCOPED_TRACE(outside);
        EXPECT_THAT([&] { script.GetState(outside); }, is_refused(not_found));
        EXPECT_THAT([&] { script.Insert_ScriptState(outside); }, is_refused(not_found));
        EXPECT_THAT([&] { script.Delete_ScriptState(outside); }, is_refused(not_found));
        EXPECT_THAT([&] { script.Copy_ScriptState(outside, 0); }, is_refused(not_found));
        EXPECT_THAT([&] { script.Copy_ScriptState(0, outside); }, is_refused(not_found));
    }
    EXPECT_THAT([&] { first.SetPar(7, 0); }, is_refused(not_found));
    EXPECT_THAT([&] { (void)first.GetPar(-1); }, is_refused(not_found));
}

TEST(Script, takes_over_the_four_fields_of_a_header) {
    cls_script from;
    from.StateCount = 3;
    from.ScriptName = QStringLiteral("Pfiff");
    from.HeaderFlag = from.EditActive = true;
    from.ScriptID = 9;
    cls_script to;
    to.CopyHeader(from);
    EXPECT_EQ(to.StateCount, 3);
    EXPECT_EQ(to.ScriptName, from.ScriptName);
    EXPECT_TRUE(to.HeaderFlag && to.EditActive && to.ScriptID == 0);
}

TEST(Script, inserting_moves_the_jump_target_of_every_command_and_nothing_else) {
    const std::map<int, int> jumps = {{4, 2}, {5, 3}, {6, 0}, {21, 2}, {22, 3}, {23, 3}};
    for (int command = -1; command <= 34; ++command) {
        cls_script script;
        script.StateCount = 5;
        script.GetState(0).SetCommand(command);
        for (int i = 0; i < 7; ++i) script.GetState(0).SetPar(i, 3);
        script.Insert_ScriptState(2);
        const auto jump = jumps.find(command);
        for (int i = 0; i < 7; ++i)
            EXPECT_EQ(script.GetState(0).GetPar(i),
                      jump != jumps.end() && jump->second == i ? 4 : 3)
                << command << ' ' << i;
    }
}

TEST(Script, inserting_and_deleting_move_the_jumps_with_their_lines) {
    constexpr auto insert = &cls_script::Insert_ScriptState;
    constexpr auto erase = &cls_script::Delete_ScriptState;
    const struct {
        void (cls_script::*edit)(int);
        std::vector<int> targets;
        int index;
        std::vector<std::string> expected;
    } cases[] = {
        {insert, {3, 1, 5, 2, 0}, 2, {"0:4", "1:1", ":0", "2:5", "3:3", "4:0"}},
        {insert, {0, 4, 200, 1, 4}, 0, {":0", "0:1", "1:5", "2:200", "3:2", "4:5"}},
        {insert, {1, 2}, 2, {"0:1", "1:2", ":0"}}, // behind the last line: stays
        {insert, {}, 0, {":0"}},
        {erase, {3, 4, 9, 2, 1}, 2, {"0:2", "1:3", "3:2", "4:1"}},
        {erase, {0, 1, 2}, 0, {"1:0", "2:1"}},
        {erase, {0, 1, 2}, 2, {"0:0", "1:1"}},
        {erase, {7}, 0, {}},
    };
    for (const auto& c : cases) {
        auto script = jumps_to(c.targets);
        (script.*c.edit)(c.index);
        EXPECT_EQ(lines_of(script), c.expected) << c.index;
        EXPECT_EQ(script.GetState(script.StateCount), cls_Scriptstate{}) << "a row that is free";
    }
    auto script = jumps_to({1, 0});
    EXPECT_THAT([&] { script.Delete_ScriptState(2); }, is_refused(not_found));
    EXPECT_THAT(lines_of(script), ElementsAre("0:1", "1:0"));
}

TEST(Script, has_256_lines_and_refuses_the_next) {
    auto script = jumps_to(std::vector<int>(255, 254));
    script.Insert_ScriptState(0);
    EXPECT_EQ(script.StateCount, 256);
    const auto before = lines_of(script);
    EXPECT_EQ(before.back(), "254:255");
    EXPECT_THAT([&] { script.Insert_ScriptState(0); }, refuses(full));
    EXPECT_EQ(lines_of(script), before);
    script.Delete_ScriptState(255);
    EXPECT_EQ(lines_of(script).back(), "253:255") << "the target itself was deleted";
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
        {250, 0, 5, 255},   //
        {250, 0, 6, 250},   // 256 is no line
        {251, 5, 255, 251}, //
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.target << " from " << c.source << " to " << c.to);
        cls_script script;
        script.StateCount = 20;
        auto& source = script.GetState(c.source);
        source.SetCommand(6);
        source.Info = QStringLiteral("Licht");
        source.SetPar(0, c.target);
        for (int i = 1; i < 7; ++i) source.SetPar(i, 10 + i);
        script.Copy_ScriptState(c.source, c.to);
        const auto& copy = script.GetState(c.to);
        EXPECT_EQ(copy.GetCommand(), 6);
        EXPECT_EQ(copy.Info, QStringLiteral("Licht"));
        const std::vector<int> expected{c.expected, 11, 12, 13, 14, 0, 0}; // the last two stay
        for (int i = 0; i < 7; ++i) EXPECT_EQ(copy.GetPar(i), expected[std::size_t(i)]) << i;
        EXPECT_EQ(script.StateCount, 20);
    }
}

} // namespace
