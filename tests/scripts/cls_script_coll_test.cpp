#include "scripts/cls_Script_Sets.h"
#include "scripts/cls_script_coll.h"
#include "scripts/error.h"

#include <gmock/gmock.h>

#include <functional>

namespace {

using namespace scripts;
using enum Failure;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::Field;

using Bytes = std::vector<std::uint8_t>;

auto refuses(Failure kind, const testing::Matcher<std::string>& subject = testing::_) {
    return testing::Throws<Error>(
        testing::AllOf(Field(&Error::kind, kind), Field(&Error::subject, subject)));
}

TEST(Script_Block, has_a_table_of_offsets_then_header_and_lines_of_each_script) {
    cls_script_coll scripts;
    scripts.Write_Scripts();
    Bytes block{7};
    std::size_t position = 3;
    scripts.Get_Array_Add(block, position); // of a set without scripts
    auto& first = scripts.AddScript();
    first.HeaderFlag = true;
    first.StateCount = 2;
    for (int line = 0; line < 2; ++line) {
        first.GetState(line).SetCommand(30 + line);
        for (int i = 0; i < 7; ++i) first.GetState(line).SetPar(i, 100 * line + i);
    }
    first.GetState(2).SetCommand(9); // behind the end: not part of the script
    scripts.AddScript();
    scripts.Write_Scripts();
    scripts.Get_Array_Add(block, position);
    EXPECT_EQ(position, 4U + 37);
    EXPECT_THAT(block,
                ElementsAreArray({7,  0,   0,   0,                        // what stood before
                                  2,  0,   5,   0,   0x1D,                // two scripts at 5 and 29
                                  2,  0,   0,   0,   0,    0,   0,   1,   // two lines, made as new
                                  30, 0,   1,   2,   3,    4,   5,   6,   //
                                  31, 100, 101, 102, 103,  104, 105, 106, //
                                  0,  0,   0,   0,   0,    0,   0,   0})); // no lines
}

TEST(Script_Block, is_refused_where_a_number_does_not_fit) {
    const struct {
        std::function<void(cls_script_coll&)> spoil;
        Failure kind;
        std::string subject;
    } cases[] = {
        {[](auto& s) { s.Item(2)->GetState(4).SetPar(0, 256); }, unfit, "script 2, line 4"},
        {[](auto& s) { s.Item(1)->GetState(0).SetPar(6, -1); }, unfit, "script 1, line 0"},
        {[](auto& s) { s.Item(1)->GetState(1).SetCommand(300); }, unfit, "script 1, line 1"},
        {[](auto& s) { s.Item(2)->StateCount = 257; }, unfit, "script 2"},
        {[](auto& s) { s.Item(2)->StateCount = -1; }, unfit, "script 2"},
        {[](auto& s) { s.AddScript(); }, full, "set 12"},
    };
    for (const auto& c : cases) {
        cls_script_coll scripts;
        scripts.Nummer = 12;
        for (int i = 0; i < 16; ++i) scripts.AddScript().StateCount = 5;
        scripts.Write_Scripts();
        c.spoil(scripts);
        EXPECT_THAT([&] { scripts.Write_Scripts(); }, refuses(c.kind, c.subject));
        EXPECT_EQ(scripts.Datalen(), 0U) << "a block of before must not be taken for this one";
    }
}

TEST(Scripts_Of_A_Set, are_counted_from_1_and_outlive_their_removal) {
    cls_script_coll scripts;
    for (const int id : {10, 20, 30}) scripts.AddScript().ScriptID = id;
    const auto held = scripts.Item(2);
    held->States_Left_Out = 1;
    scripts.Remove(2);
    EXPECT_EQ(held->ScriptID, 20);
    std::vector<int> ids;
    for (const auto& script : scripts) {
        ids.push_back(script->ScriptID);
        script->States_Left_Out = 2;
    }
    EXPECT_THAT(ids, ElementsAre(10, 30));
    EXPECT_EQ(scripts.States_Left_Out(), 4);
    for (const int place : {-1, 0, 3}) {
        EXPECT_THAT([&] { scripts.Item(place); }, refuses(not_found));
        EXPECT_THAT([&] { scripts.Remove(place); }, refuses(not_found));
    }
    scripts.SetID = 4;
    scripts.Clear();
    EXPECT_EQ(scripts.Count() + scripts.SetID, 0);
}

TEST(Scripts_Of_A_Set, are_at_most_16_when_made_one_by_one) {
    cls_script_coll scripts;
    scripts.AddScript(); // as read from the database: no name, not new
    EXPECT_TRUE(scripts.Changed);
    const auto second = scripts.add_named_script();
    ASSERT_TRUE(second);
    EXPECT_EQ(second->ScriptName, QStringLiteral("Script2"));
    EXPECT_TRUE(second->HeaderFlag);
    while (scripts.Count() < 16) ASSERT_TRUE(scripts.add_named_script());
    EXPECT_FALSE(scripts.add_named_script());
    EXPECT_EQ(scripts.Count(), 16);
}

TEST(Script_Sets, are_found_by_position_and_key) {
    cls_Script_Sets sets;
    const auto key = [](int id) { return QString::number(id); };
    const auto add = [&](int id) { sets.Add(std::make_shared<cls_script_coll>(), key(id)); };
    for (const int id : {7, -3, 40}) add(id);
    EXPECT_EQ(sets.Item(2), sets.Item(key(-3)));
    EXPECT_EQ(sets.Item(2)->SetID, -3);
    EXPECT_THAT([&] { add(7); }, refuses(exists));
    EXPECT_EQ(sets.Count(), 3);
    sets.Remove(2);
    sets.Remove(key(40));
    EXPECT_EQ(sets.Item(1)->SetID, 7);
    for (const int gone : {-3, 40})
        EXPECT_THAT([&] { sets.Remove(key(gone)); }, refuses(not_found));
    EXPECT_THAT([&] { sets.Item(2); }, refuses(not_found));
    sets.Clear();
    add(7);
    EXPECT_EQ(sets.Count(), 1);
}

} // namespace
