#include "platform/files/memory_disk.h"
#include "platform/jet/check/samples.h"
#include "platform/jet/database.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace jet::check {
namespace {

constexpr auto made = "made.mdb";

/// A file with one table `T` of one column and one row.
File_Bytes file_with(const jet::Column& column, const jet::Value& value) {
    files::Memory_Disk disk;
    {
        auto database = Database::create(disk, made);
        const std::vector columns{column};
        database.create_table(u"T", columns, {}).insert({{0, value}});
    }
    return disk.bytes(made);
}

/// Changes the byte at `at` of the only place that holds the pattern; -1 stands for any byte.
void change(File_Bytes& file, const std::vector<int>& pattern, std::ptrdiff_t at, int value) {
    const auto fits = [](std::byte byte, int wanted) {
        return wanted < 0 || byte == static_cast<std::byte>(wanted);
    };
    const auto found = std::ranges::search(file, pattern, fits);
    ASSERT_EQ(found.size(), pattern.size());
    found.begin()[at] = static_cast<std::byte>(value);
}

// What no sample holds comes from the engine.
TEST(Check_Made_Files, sign_of_a_decimal) {
    jet::Column column;
    column.name = u"Price";
    column.type = Column_Type::decimal;
    column.precision = 18;
    File_Bytes file = file_with(column, jet::Decimal{.magnitude = {0, 0, 0, 0x123456}});
    ASSERT_EQ(listing(check(file)), "");
    change(file, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x56, 0x34, 0x12, 0}, 0, 0x40);
    EXPECT_THAT(listing(check(file)),
                testing::HasSubstr("row 0 in column 'Price' has the sign 64."));
}

TEST(Check_Made_Files, empty_text_where_it_is_forbidden) {
    jet::Column column;
    column.name = u"Remark";
    column.type = Column_Type::text;
    column.length = 20;
    column.allow_zero_length = true;
    File_Bytes file = file_with(column, std::u16string());
    ASSERT_EQ(listing(check(file)), "");
    change(file, {9, 0, 1, 1, -1, 0, 1, 0, 1}, 8, 0); // the record of the property: true
    EXPECT_THAT(listing(check(file)),
                testing::HasSubstr("has an empty text in column 'Remark', which forbids it."));
}

} // namespace
} // namespace jet::check
