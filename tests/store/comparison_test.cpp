#include "store/comparison.h"

#include <gtest/gtest.h>

namespace {

using store::CVRec;

CVRec row(int number, int value, int hi = 0, int lo = 1) {
    return {.CVPageHi = static_cast<std::uint8_t>(hi),
            .CVPageLo = static_cast<std::uint8_t>(lo),
            .CVNr = static_cast<std::int16_t>(number),
            .CVWert = static_cast<std::int16_t>(value)};
}

TEST(Comparison, tells_cvs_apart_by_number_and_by_page_where_they_have_one) {
    const auto found = store::compare(
        {row(300, 1, 8, 0), row(300, 7), row(5, 9, 3, 3), row(2, 1), row(2, 4), row(1, 0)},
        {row(300, 1, 16, 0), row(5, 9), row(2, 4), row(1, 255), row(300, 7)});
    EXPECT_EQ(found.equal, 3); // 300 on 0:1, 5 whatever its page says, 2 as its last row has it
    EXPECT_EQ(
        store::comparison_text(found.differences, QStringLiteral("A\tB"), QStringLiteral("C")),
        QStringLiteral("CV\tA B\tC\r\n"
                       "1\t0\t255\r\n"
                       "300 (CV31 = 8, CV32 = 0)\t1\t\r\n"
                       "300 (CV31 = 16, CV32 = 0)\t\t1\r\n"));
}

} // namespace
