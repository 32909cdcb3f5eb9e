#include "export/dcc_pages.h"

#include "store/cls_CV_Set.h"

#include <gmock/gmock.h>

#include <ostream>

namespace vqx_export {

bool operator==(const Dcc_Page& a, const Dcc_Page& b) {
    return a.high == b.high && a.low == b.low && a.pairs == b.pairs;
}

void PrintTo(const Dcc_Page& page, std::ostream* out) {
    *out << int{page.high} << ':' << int{page.low} << testing::PrintToString(page.pairs);
}

namespace {

struct Row {
    int page, number, value;
};

struct Case {
    std::string what;
    std::vector<Row> rows;
    std::vector<Dcc_Page> expected;
    Left_Out_CVs left_out;
};

const Case cases[] = {
    {"an empty set has no pages", {}, {}, {}},
    {"fixed ranges lie on 0:0, 0:2 and 0:3 with their last byte",
     {{1, 1, 3}, {1, 256, 4}, {1, 513, 5}, {1, 768, 6}, {1, 769, 7}, {1, 1024, 8}},
     {{0, 0, {0, 3, 255, 4}}, {0, 2, {0, 5, 255, 6}}, {0, 3, {0, 7, 255, 8}}},
     {}},
    {"indexed numbers keep their page, the lowest and the highest too",
     {{0, 257, 1}, {4660, 300, 2}, {65535, 512, 3}},
     {{0, 0, {0, 1}}, {0x12, 0x34, {43, 2}}, {255, 255, {255, 3}}},
     {}},
    {"numbers without a place are counted, and their pages not written",
     {{1, 0, 1}, {1, -5, 1}, {7, 1025, 1}, {1, 32767, 1}, {258, 300, 9}},
     {{1, 2, {43, 9}}},
     {.out_of_range = 4}},
    {"the last row of a number counts, at its own place",
     {{1, 5, 1}, {1, 6, 2}, {9, 5, 3}, {258, 300, 4}, {258, 300, 5}},
     {{0, 0, {5, 2, 4, 3}}, {1, 2, {43, 5}}},
     {.repeated = 2}},
    {"a fixed CV wins over an indexed one before it and behind it",
     {{0, 300, 1}, {1, 44, 2}, {0, 301, 3}, {1, 46, 4}, {0, 302, 5}, {2, 302, 6}, {1, 558, 7}},
     {{0, 0, {43, 2, 44, 3, 45, 4}}, {0, 2, {45, 7}}},
     {.covered = 3}},
    {"one number on two pages is two CVs",
     {{258, 300, 1}, {259, 300, 2}},
     {{1, 2, {43, 1}}, {1, 3, {43, 2}}},
     {}},
};

TEST(Dcc_Pages, hold_each_cv_on_its_byte) {
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        store::cls_CV_Set set;
        for (const auto& row : c.rows)
            set.Add_CV(row.page, static_cast<std::int16_t>(row.number),
                       static_cast<std::uint8_t>(row.value));
        Left_Out_CVs left_out;
        EXPECT_EQ(dcc_pages(set, left_out), c.expected);
        EXPECT_EQ(left_out.out_of_range, c.left_out.out_of_range);
        EXPECT_EQ(left_out.covered, c.left_out.covered);
        EXPECT_EQ(left_out.repeated, c.left_out.repeated);
    }
}

TEST(Dcc_Pages, have_256_places_however_many_rows_a_page_has) {
    store::cls_CV_Set set;
    for (int round = 0; round < 140; ++round)
        for (int number = 257; number <= 512; ++number)
            set.Add_CV(258, static_cast<std::int16_t>(number), static_cast<std::uint8_t>(round));
    Left_Out_CVs left_out;
    const auto pages = dcc_pages(set, left_out);
    ASSERT_EQ(pages.size(), 1U);
    ASSERT_EQ(pages[0].pairs.size(), 512U);
    for (std::size_t i = 0; i < 256; ++i) {
        ASSERT_EQ(pages[0].pairs[2 * i], i);
        ASSERT_EQ(pages[0].pairs[2 * i + 1], 139);
    }
    EXPECT_EQ(left_out.repeated, 139 * 256);
}

} // namespace
} // namespace vqx_export
