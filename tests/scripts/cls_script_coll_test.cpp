#include "scripts/cls_Script_Sets.h"
#include "scripts/cls_script_coll.h"
#include "scripts/error.h"

#include <gmock/gmock.h>

#include <functional>

namespace {

using namespace scripts;
using testing::ElementsAre;
using testing::ElementsAreArray;

using Bytes = std::vector<std::uint8_t>;

const Error& refused(const std::function<void()>& action) {
    static Error last(Failure::not_found, "", "");
    try {
        action();
    } catch (const Error& error) {
        last = error;
        return last;
    }
    throw std::logic_error("nothing was refused");
}

TEST(Script_Block, is_one_zero_byte_without_scripts) {
    cls_script_coll scripts;
    scripts.Write_Scripts();
    EXPECT_EQ(scripts.Data, Bytes{0});
}

TEST(Script_Block, has_a_table_of_offsets_then_header_and_lines_of_each_script) {
    cls_script_coll scripts;
    auto& first = scripts.AddScript();
    first.HeaderFlag = true;
    first.StateCount = 3;
    for (int line = 0; line < 3; ++line) {
        first.GetState(line).SetCommand(30 + line);
        for (int i = 0; i < 7; ++i) first.GetState(line).SetPar(i, 100 * line + i);
    }
    first.GetState(3).SetCommand(9); // behind the end: not part of the script
    scripts.AddScript();
    scripts.Write_Scripts();
    EXPECT_EQ(scripts.Datalen(), 45U);
    const Bytes expected{2,  0,   5,   0,   0x25,                // two scripts at 5 and 37
                         3,  0,   0,   0,   0,    0,   0,   1,   // three lines, made as new
                         30, 0,   1,   2,   3,    4,   5,   6,   //
                         31, 100, 101, 102, 103,  104, 105, 106, //
                         32, 200, 201, 202, 203,  204, 205, 206, //
                         0,  0,   0,   0,   0,    0,   0,   0};  // no lines
    EXPECT_EQ(scripts.Data, expected);
}

TEST(Script_Block, has_room_for_16_scripts_of_256_lines) {
    cls_script_coll scripts;
    for (int i = 0; i < 16; ++i) scripts.AddScript().StateCount = 256;
    scripts.Item(16)->GetState(255).SetCommand(33);
    scripts.Item(16)->GetState(255).SetPar(6, 255);
    scripts.Write_Scripts();
    EXPECT_EQ(scripts.Datalen(), 1U + 16 * 2 + 16 * (8 + 256 * 8));
    const auto offset = std::size_t{scripts.Data[31]} << 8 | scripts.Data[32]; // of the 16th
    EXPECT_EQ(offset, 33U + 15 * 2056);
    EXPECT_THAT(std::vector(scripts.Data.begin() + static_cast<std::ptrdiff_t>(offset),
                            scripts.Data.begin() + static_cast<std::ptrdiff_t>(offset) + 8),
                ElementsAre(0, 1, 0, 0, 0, 0, 0, 0)); // 256: low byte first
    EXPECT_THAT(std::vector(scripts.Data.end() - 8, scripts.Data.end()),
                ElementsAre(33, 0, 0, 0, 0, 0, 0, 255));
}

TEST(Script_Block, is_refused_where_a_number_does_not_fit) {
    const struct {
        std::string what;
        std::function<void(cls_script_coll&)> spoil;
        Failure kind;
        std::string subject;
    } cases[] = {
        {"sample 256", [](auto& s) { s.Item(2)->GetState(4).SetPar(0, 256); }, Failure::unfit,
         "script 2, line 4"},
        {"par below 0", [](auto& s) { s.Item(1)->GetState(0).SetPar(6, -1); }, Failure::unfit,
         "script 1, line 0"},
        {"command", [](auto& s) { s.Item(1)->GetState(1).SetCommand(300); }, Failure::unfit,
         "script 1, line 1"},
        {"257 lines", [](auto& s) { s.Item(2)->StateCount = 257; }, Failure::unfit, "script 2"},
        {"-1 lines", [](auto& s) { s.Item(2)->StateCount = -1; }, Failure::unfit, "script 2"},
        {"17 scripts",
         [](auto& s) {
             for (int i = 0; i < 15; ++i) s.AddScript();
         },
         Failure::full, "set 12"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        cls_script_coll scripts;
        scripts.Nummer = 12;
        scripts.AddScript().StateCount = 5;
        scripts.AddScript().StateCount = 5;
        scripts.Write_Scripts();
        c.spoil(scripts);
        const auto& error = refused([&] { scripts.Write_Scripts(); });
        EXPECT_EQ(error.kind, c.kind);
        EXPECT_EQ(error.subject, c.subject);
        EXPECT_EQ(scripts.Datalen(), 0U) << "a block of before must not be taken for this one";
    }
}

TEST(Script_Block, is_appended_and_moves_the_position) {
    cls_script_coll scripts;
    scripts.AddScript();
    scripts.Write_Scripts();
    Bytes target{7};
    std::size_t position = 3;
    scripts.Get_Array_Add(target, position);
    EXPECT_EQ(position, 14U);
    EXPECT_THAT(target, ElementsAreArray({7, 0, 0, 1, 0, 3, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(Scripts_Of_A_Set, are_counted_from_1_and_outlive_their_removal) {
    cls_script_coll scripts;
    EXPECT_FALSE(scripts.Changed);
    scripts.AddScript().ScriptID = 10;
    EXPECT_TRUE(scripts.Changed);
    scripts.AddScript().ScriptID = 20;
    scripts.AddScript().ScriptID = 30;
    const auto held = scripts.Item(2);
    scripts.Remove(2);
    EXPECT_EQ(held->ScriptID, 20);
    std::vector<int> ids;
    for (const auto& script : scripts) ids.push_back(script->ScriptID);
    EXPECT_THAT(ids, ElementsAre(10, 30));
    for (const int missing : {-1, 0, 3}) {
        EXPECT_FALSE(scripts.exists(missing));
        EXPECT_EQ(refused([&] { (void)scripts.Item(missing); }).kind, Failure::not_found);
        EXPECT_EQ(refused([&] { scripts.Remove(missing); }).kind, Failure::not_found);
    }
    EXPECT_TRUE(scripts.exists(1) && scripts.exists(2));
    scripts.Clear();
    EXPECT_EQ(scripts.Count(), 0);
}

TEST(Scripts_Of_A_Set, are_at_most_16_when_made_one_by_one) {
    cls_script_coll scripts;
    scripts.AddScript(); // as read from the database: no name, not new
    const auto second = scripts.add_named_script();
    ASSERT_TRUE(second);
    EXPECT_EQ(second->ScriptName, QStringLiteral("Script2"));
    EXPECT_TRUE(second->HeaderFlag);
    while (scripts.Count() < 16) ASSERT_TRUE(scripts.add_named_script());
    scripts.Changed = false;
    EXPECT_FALSE(scripts.add_named_script());
    EXPECT_EQ(scripts.Count(), 16);
    EXPECT_FALSE(scripts.Changed);
}

TEST(Script_Sets, are_found_by_position_and_key) {
    cls_Script_Sets sets;
    const auto add = [&](const QString& key) {
        sets.Add(std::make_shared<cls_script_coll>(), key);
    };
    for (const auto* key : {u"7", u"-3", u"40"}) add(QString::fromUtf16(key));
    EXPECT_EQ(sets.Item(2), sets.Item(QStringLiteral("-3")));
    EXPECT_EQ(sets.Item(2)->SetID, -3);
    EXPECT_EQ(refused([&] { add(QStringLiteral("7")); }).kind, Failure::exists);
    EXPECT_EQ(sets.Count(), 3);
    sets.Remove(2);
    sets.Remove(QStringLiteral("40"));
    EXPECT_EQ(sets.Count(), 1);
    EXPECT_EQ(refused([&] { (void)sets.Item(QStringLiteral("-3")); }).kind, Failure::not_found);
    EXPECT_EQ(refused([&] { sets.Remove(QStringLiteral("40")); }).kind, Failure::not_found);
    EXPECT_EQ(refused([&] { (void)sets.Item(2); }).kind, Failure::not_found);
    add(QStringLiteral("40"));
    EXPECT_EQ(sets.Item(2)->SetID, 40);
    sets.Clear();
    add(QStringLiteral("7"));
    EXPECT_EQ(sets.Count(), 1);
}

} // namespace
