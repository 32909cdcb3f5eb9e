#include "store/cls_Sets_Coll.h"

#include <gtest/gtest.h>

using namespace store;
using namespace Qt::Literals::StringLiterals;

namespace {

TEST(Model, files_a_cv_under_the_page_of_its_number) {
    const struct {
        std::int32_t page;
        std::int16_t number;
        std::int32_t expected;
    } cases[] = {
        {5, 1, 0},   {5, 256, 0}, {258, 257, 258}, {258, 512, 258},     {5, 513, 2},
        {5, 768, 2}, {5, 769, 3}, {5, 1024, 3},    {5, 1025, 5},        {5, 0, 5},
        {5, -1, 5},  {0, 300, 0}, {2, 300, 2},     {65535, 400, 65535},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.number);
        cls_CV_Set set;
        set.Add_CV(c.page, c.number, 7);
        ASSERT_EQ(set.Count(), 1);
        const auto page = set.Item(QString::number(c.expected));
        EXPECT_EQ(page->PageNr, c.expected);
        EXPECT_EQ(page->PageHi(), c.expected / 256);
        EXPECT_EQ(page->PageLo(), c.expected % 256);
        ASSERT_EQ(page->Count(), 1);
        EXPECT_EQ(page->Item(1)->CVNr, c.number);
        EXPECT_EQ(page->Item(1)->Wert, 7);
    }
}

TEST(Model, cvs_of_one_page_gather_in_the_order_of_their_arrival) {
    cls_CV_Set set;
    set.Add_CV(1, 700, 1);
    set.Add_CV(2, 300, 2); // shares page 2 with the fixed range
    set.Add_CV(1, 29, 3);
    set.Add_CV(1, 600, 4);
    ASSERT_EQ(set.Count(), 2);
    EXPECT_EQ(set.Item(1)->PageNr, 2);
    EXPECT_EQ(set.Item(2)->PageNr, 0);
    std::vector<std::pair<int, int>> seen;
    for (const auto& cv : set.Item(1)->NewEnum()) seen.emplace_back(cv->Index, cv->CVNr);
    EXPECT_EQ(seen, (std::vector<std::pair<int, int>>{{1, 700}, {2, 300}, {3, 600}}));
}

TEST(Model, clearing_and_removing_keep_the_indexes_of_the_others) {
    cls_Sets_Coll sets;
    sets.Clear();
    EXPECT_EQ(sets.Count(), 0);
    for (std::int16_t place = 1; place <= 3; ++place)
        EXPECT_EQ(sets.Add_CVSet(u"a"_s, 8, 1, 6 + place), place);
    const auto held = sets.Item(2);
    sets.Remove(2);
    EXPECT_EQ(held->SetID, 8);
    EXPECT_EQ(sets.Item(2)->SetID, 9);
    EXPECT_EQ(sets.Item(2)->Index, 3);
    sets.Remove(u"7"_s);
    EXPECT_EQ(sets.Item(1)->SetID, 9);
    EXPECT_EQ(sets.Add_CVSet(u"b"_s, 8, 1, 8), 2) << "the key of a removed child is free again";
    sets.Clear();
    EXPECT_EQ(sets.Count(), 0);
    EXPECT_EQ(sets.Add_CVSet(u"c"_s, 265, 2, 9), 1);
}

TEST(Model, missing_places_and_taken_keys_are_errors_and_change_nothing) {
    cls_Sets_Coll sets;
    EXPECT_THROW(sets.Item(1), Collection_Error);
    EXPECT_THROW(sets.Remove(1), Collection_Error);
    sets.Add_CVSet(u"first"_s, 8, 3, 12);
    EXPECT_THROW(sets.Add_CVSet(u"second"_s, 265, 4, 12), Collection_Error);
    ASSERT_EQ(sets.Count(), 1);
    EXPECT_EQ(sets.Item(u"12"_s)->Name, u"first"_s);
    for (const int position : {0, 2, -1}) EXPECT_THROW(sets.Item(position), Collection_Error);
    EXPECT_THROW(sets.Item(u"1"_s), Collection_Error);
    EXPECT_THROW(sets.Remove(u"1"_s), Collection_Error);
    EXPECT_EQ(sets.Count(), 1);
    sets.Add(std::make_shared<cls_CV_Set>()); // only with a key it is found by one
    EXPECT_EQ(sets.Count(), 2);
    EXPECT_THROW(sets.Item(u"2"_s), Collection_Error);
}

} // namespace
