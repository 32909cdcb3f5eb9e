#include "platform/jet/fixture.h"

#include <cstring>

namespace {

using namespace fixture;

/// Sets the counters of all tables that have one, as programs leave it that write rows but not
/// counters.
void lower_counters(files::Memory_Disk& disk, std::int32_t to) {
    auto bytes = disk.bytes(path);
    constexpr std::size_t counter_at = 0x14;
    for (std::size_t page = 0; page < bytes.size(); page += 4096) {
        std::int32_t counter = 0;
        std::memcpy(&counter, &bytes[page + counter_at], sizeof counter);
        if (bytes[page] == std::byte{2} && counter > to)
            std::memcpy(&bytes[page + counter_at], &to, sizeof to);
    }
    disk.set_bytes(path, bytes);
}

class Lagging_Counter : public testing::Test {
protected:
    Lagging_Counter() {
        auto database = jet::Database::create(disk, path);
        auto id = column(u"id");
        id.auto_number = true;
        auto needed = column(u"needed");
        needed.required = true;
        database.create_table(u"T", std::vector{id, needed}, std::vector{primary_key(u"id")});
        for (int i = 1; i <= 5; ++i) database.table(u"T")->insert({{1, i}});
    }
    files::Memory_Disk disk;
};

TEST_F(Lagging_Counter, a_row_that_was_refused_leaves_the_next_one_a_number) {
    lower_counters(disk, 2);
    auto database = open(disk);
    const auto table = *database.table(u"T");
    {
        jet::Transaction all(database);
        EXPECT_EQ(failure_of([&] { table.insert({}); }), jet::Failure::refused);
        EXPECT_EQ(table.insert({{1, 1}}).auto_number, 6);
        all.commit();
    }
    EXPECT_EQ(table.insert({{1, 1}}).auto_number, 7);
}

TEST_F(Lagging_Counter, a_row_that_brings_its_number_says_nothing_about_the_others) {
    lower_counters(disk, 2);
    auto database = open(disk);
    const auto table = *database.table(u"T");
    {
        jet::Transaction all(database);
        table.insert({{0, -7}, {1, 1}});
        EXPECT_EQ(table.insert({{1, 1}}).auto_number, 6);
        all.commit();
    }
    auto last = table.find({{0, 6}});
    ASSERT_TRUE(last.next());
    const auto row = last.id();
    table.update(row, {{0, 900}});
    EXPECT_EQ(table.insert({{1, 1}}).auto_number, 901);
    EXPECT_EQ(faults(database, true), "");
}

} // namespace
