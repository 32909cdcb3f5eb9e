#include "export/dcc_pages.h"

#include "store/cls_CV_Set.h"

#include <gmock/gmock.h>

#include <array>

namespace vqx_export {
namespace {

struct Row {
    int page, number, value;
};

struct Case {
    std::string what;
    std::vector<Row> rows;
    std::vector<std::tuple<int, int, msgpack::Bytes>> expected;
    std::array<std::int64_t, 3> left_out = {}; ///< out of range, covered, repeated
};

const Case cases[] = {
    {"an empty set has no pages", {}, {}},
    {"fixed ranges lie on 0:0, 0:2 and 0:3 with their last byte",
     {{1, 1, 3}, {1, 256, 4}, {1, 513, 5}, {1, 768, 6}, {1, 769, 7}, {1, 1024, 8}},
     {{0, 0, {0, 3, 255, 4}}, {0, 2, {0, 5, 255, 6}}, {0, 3, {0, 7, 255, 8}}}},
    {"indexed numbers keep their page, the lowest and the highest too",
     {{0, 257, 1}, {4660, 300, 2}, {65535, 512, 3}},
     {{0, 0, {0, 1}}, {0x12, 0x34, {43, 2}}, {255, 255, {255, 3}}}},
    {"numbers without a place are counted, and their pages not written",
     {{1, 0, 1}, {1, -5, 1}, {7, 1025, 1}, {1, 32767, 1}, {258, 300, 9}},
     {{1, 2, {43, 9}}},
     {4, 0, 0}},
    {"the last row of a number counts, at its own place",
     {{1, 5, 1}, {1, 6, 2}, {9, 5, 3}, {258, 300, 4}, {258, 300, 5}},
     {{0, 0, {5, 2, 4, 3}}, {1, 2, {43, 5}}},
     {0, 0, 2}},
    {"a fixed CV wins over an indexed one before it and behind it",
     {{0, 300, 1}, {1, 44, 2}, {0, 301, 3}, {1, 46, 4}, {0, 302, 5}, {2, 302, 6}, {1, 558, 7}},
     {{0, 0, {43, 2, 44, 3, 45, 4}}, {0, 2, {45, 7}}},
     {0, 3, 0}},
    {"to the ends of the ranges",
     {{1, 256, 8}, {0, 512, 9}, {1, 513, 8}, {2, 257, 9}},
     {{0, 0, {255, 8}}, {0, 2, {0, 8}}},
     {0, 2, 0}},
    {"one number on two pages is two CVs",
     {{258, 300, 1}, {259, 300, 2}},
     {{1, 2, {43, 1}}, {1, 3, {43, 2}}}},
};

TEST(Dcc_Pages, hold_each_cv_on_its_byte) {
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        store::cls_CV_Set set;
        for (const auto& row : c.rows)
            set.Add_CV(row.page, static_cast<std::int16_t>(row.number),
                       static_cast<std::uint8_t>(row.value));
        Left_Out_CVs left;
        std::vector<std::tuple<int, int, msgpack::Bytes>> pages;
        for (const auto& page : dcc_pages(set, left))
            pages.emplace_back(page.high, page.low, page.pairs);
        EXPECT_EQ(pages, c.expected);
        EXPECT_THAT(c.left_out,
                    testing::ElementsAre(left.out_of_range, left.covered, left.repeated));
    }
}

} // namespace
} // namespace vqx_export
