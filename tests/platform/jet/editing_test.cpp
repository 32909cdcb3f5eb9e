#include "platform/jet/fixture.h"
#include "platform/jet/pages/usage_map.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <stdexcept>

namespace {

using namespace fixture;
using jet::Cell;
using jet::Column_Type;
using jet::Failure;
using jet::Null;
using jet::Value;

/// Edits of the full sample library, whose relations are enforced without cascades.
class Editing : public testing::Test {
protected:
    void SetUp() override {
        if (!load(disk, CV_SETS_SAMPLES "/library_2000.mdb")) GTEST_SKIP() << "no samples";
    }
    files::Memory_Disk disk;
};

TEST_F(Editing, rows_come_change_and_go) {
    auto database = open(disk);
    const auto cvs = *database.table(u"CVs");
    const auto before = cvs.row_count();
    const auto inserted = cvs.insert({{1, 1}, {2, 0}, {3, 1}, {4, 29}, {5, 6}});
    EXPECT_EQ(cvs.row_count(), before + 1);
    EXPECT_EQ(faults(database), "");
    cvs.update(inserted.id, {{5, 255}});
    EXPECT_EQ(*cvs.row(inserted.id), (std::vector<Value>{inserted.auto_number, 1, 0, 1, 29, 255}));
    EXPECT_EQ(faults(database), "");
    cvs.erase(inserted.id);
    EXPECT_FALSE(cvs.row(inserted.id));
    EXPECT_EQ(cvs.row_count(), before);
    EXPECT_EQ(faults(database), "");
    EXPECT_EQ(failure_of([&] { cvs.erase(inserted.id); }), Failure::not_found);
}

TEST_F(Editing, what_is_refused_leaves_every_byte_as_it_was) {
    auto database = open(disk);
    const auto sets = *database.table(u"Sets");
    const auto scripts = *database.table(u"Scripte");
    const auto states = *database.table(u"Scriptstates");
    const auto first = [](const jet::Table& table) {
        auto cursor = table.rows();
        cursor.next();
        return cursor.id();
    };
    auto used_set = scripts.rows();
    ASSERT_TRUE(used_set.next());
    auto parent = sets.find({{0, used_set.value(1)}});
    ASSERT_TRUE(parent.next());
    const auto parent_row = parent.id();
    const auto before = disk.bytes(path);
    const std::pair<const char*, std::function<void()>> refused[] = {
        {"text too long",
         [&] {
             sets.insert({{1, std::u16string(256, u'x')}});
         }},
        {"wrong type",
         [&] {
             sets.insert({{2, u"ten"}});
         }},
        {"text for a number",
         [&] {
             sets.update(parent_row, {{1, 7}});
         }},
        {"required",
         [&] {
             states.insert({{1, Null{}}, {2, 0}, {3, 0}});
         }},
        {"required later",
         [&] {
             states.update(first(states), {{2, Null{}}});
         }},
        {"key taken",
         [&] {
             sets.insert({{0, used_set.value(1)}});
         }},
        {"key changed to one that is taken",
         [&] {
             auto cursor = sets.rows();
             cursor.next();
             cursor.next();
             sets.update(first(sets), {{0, cursor.value(0)}});
         }},
        {"no set of this number",
         [&] {
             scripts.insert({{1, 99999}});
         }},
        {"moved to no set",
         [&] {
             scripts.update(first(scripts), {{1, 99999}});
         }},
        {"set with scripts", [&] { sets.erase(parent_row); }},
        {"key that is referred to",
         [&] {
             sets.update(parent_row, {{0, 4711}});
         }},
        {"table taken", [&] { database.create_table(u"SETS", std::vector{column(u"a")}, {}); }},
        {"column taken", [&] { database.add_column(u"Sets", column(u"NUMMER")); }},
        {"second key", [&] { database.add_index(u"Sets", primary_key(u"Nummer")); }},
        {"relation taken",
         [&] {
             database.add_relation({u"cvsetidscripte", u"Sets", {u"SetID"}, u"CVs", {u"SetID"}});
         }},
    };
    for (const auto& [what, action] : refused) {
        EXPECT_EQ(failure_of(action), Failure::refused) << what;
        EXPECT_TRUE(disk.bytes(path) == before) << what;
    }
}

TEST_F(Editing, a_transaction_is_all_or_nothing_and_joins_inner_ones) {
    auto database = open(disk);
    const auto sets = *database.table(u"Sets");
    const auto count = sets.row_count();
    const auto before = disk.bytes(path);
    {
        jet::Transaction outer(database);
        sets.insert({{1, u"one"}});
        {
            jet::Transaction inner(database);
            sets.insert({{1, u"two"}});
            inner.commit();
        }
        EXPECT_EQ(failure_of([&] {
                      sets.insert({{1, std::u16string(300, u'x')}});
                  }),
                  Failure::refused);
        EXPECT_EQ(sets.row_count(), count + 2);
    }
    EXPECT_EQ(sets.row_count(), count);
    EXPECT_TRUE(disk.bytes(path) == before);
    jet::Transaction again(database);
    sets.insert({{1, u"three"}});
    again.commit();
    EXPECT_EQ(sets.row_count(), count + 1);
    EXPECT_EQ(faults(database), "");
}

TEST_F(Editing, a_cursor_does_not_outlive_a_change) {
    auto database = open(disk);
    const auto sets = *database.table(u"Sets");
    auto cursor = sets.rows();
    ASSERT_TRUE(cursor.next());
    sets.insert({{1, u"new"}});
    EXPECT_THROW(cursor.next(), std::logic_error);
}

TEST_F(Editing, two_copies_see_what_the_other_has_changed) {
    auto one = open(disk);
    auto other = open(disk);
    const auto count = one.table(u"Sets")->row_count();
    const auto changes = other.foreign_changes();
    const auto own = one.foreign_changes();
    one.table(u"Sets")->insert({{1, u"from the first"}});
    EXPECT_EQ(one.foreign_changes(), own) << "its own are none by others";
    EXPECT_NE(other.foreign_changes(), changes);
    EXPECT_EQ(other.table(u"Sets")->row_count(), count + 1);
    one.add_column(u"Sets", column(u"Added"));
    const auto added = other.table(u"Sets")->column(u"added");
    ASSERT_TRUE(added);
    other.table(u"Sets")->insert({{1, u"from the second"}, {*added, 3}});
    EXPECT_EQ(one.table(u"Sets")->row_count(), count + 2);
    EXPECT_EQ(faults(one), "");
}

TEST_F(Own_Table, space_of_deleted_rows_is_used_again) {
    const auto table =
        make({column(u"Text", Column_Type::text, 200), column(u"Memo", Column_Type::memo)});
    std::size_t size_after_two = 0;
    for (int round = 0; round < 12; ++round) {
        jet::Transaction transaction(database);
        for (int i = 0; i < 300; ++i)
            table.insert({{1, std::u16string(static_cast<std::size_t>(i % 100), u'x')},
                          {2, std::u16string(static_cast<std::size_t>(i * 13 % 3000 + 1), u'm')}});
        std::vector<jet::Row_Place> rows;
        for (auto cursor = table.rows(); cursor.next();)
            if (cursor.integer(0) % 10 != round % 10) rows.push_back(cursor.id());
        for (const auto row : rows) table.erase(row);
        transaction.commit();
        if (round == 1) size_after_two = disk.bytes(path).size();
    }
    EXPECT_LT(disk.bytes(path).size(), size_after_two * 11 / 10);
    EXPECT_EQ(faults(database, true), "");
}

TEST_F(Own_Table, a_row_that_outgrows_its_page_moves_and_comes_home) {
    const auto table = make({column(u"Text", Column_Type::text, 255)});
    std::vector<jet::Row_Place> rows;
    for (int i = 0; i < 100; ++i) rows.push_back(table.insert({{1, u"short"}}).id);
    for (const std::size_t length : {255U, 10U, 200U, 0U, 255U}) {
        for (const auto row : rows) table.update(row, {{1, std::u16string(length, u'y')}});
        EXPECT_EQ(faults(database, true), "") << length;
        for (const auto row : rows)
            EXPECT_EQ((*table.row(row))[1], Value(std::u16string(length, u'y')));
    }
    for (const auto row : rows) table.erase(row);
    EXPECT_EQ(table.row_count(), 0U);
    EXPECT_EQ(faults(database, true), "");
}

TEST_F(Own_Table, long_values_of_every_length_are_kept_replaced_and_freed) {
    const auto table = make({column(u"Bytes", Column_Type::ole)});
    const auto bytes = [](std::size_t length) {
        jet::Bytes made(length);
        for (std::size_t i = 0; i < length; ++i) made[i] = static_cast<std::byte>(i * 7 + length);
        return made;
    };
    const std::size_t lengths[] = {0, 1, 63, 64, 65, 4075, 4076, 4077, 8144, 8145, 30000};
    std::vector<jet::Row_Place> rows;
    for (const auto length : lengths) rows.push_back(table.insert({{1, bytes(length)}}).id);
    EXPECT_EQ(faults(database, true), "");
    for (std::size_t i = 0; i < rows.size(); ++i)
        EXPECT_EQ((*table.row(rows[i]))[1], Value(bytes(lengths[i]))) << lengths[i];
    std::reverse(rows.begin(), rows.end());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        table.update(rows[i], {{1, bytes(lengths[i])}});
        EXPECT_EQ(faults(database, true), "") << lengths[i];
    }
    for (std::size_t i = 0; i < rows.size(); ++i)
        EXPECT_EQ((*table.row(rows[i]))[1], Value(bytes(lengths[i]))) << lengths[i];
    const auto size = disk.bytes(path).size();
    for (const auto row : rows) table.erase(row);
    table.insert({{1, bytes(30000)}});
    EXPECT_EQ(disk.bytes(path).size(), size);
    EXPECT_EQ(faults(database, true), "");
}

TEST_F(Own_Table, the_first_variable_column_finds_all_rows) {
    const auto table = make({column(u"Number")});
    {
        jet::Transaction transaction(database);
        for (int i = 0; i < 2000; ++i) table.insert({{1, i}});
        transaction.commit();
    }
    database.add_column(u"T", column(u"Text", Column_Type::text, 50));
    EXPECT_EQ(faults(database, true), "");
    int count = 0;
    for (auto cursor = table.rows(); cursor.next(); ++count) {
        EXPECT_EQ(cursor.integer(1), count);
        EXPECT_TRUE(cursor.is_null(2));
    }
    EXPECT_EQ(count, 2000);
    const auto row = table.insert({{1, 2000}, {2, u"last"}});
    EXPECT_EQ(table.row(row.id)->back(), Value(u"last"));
}

TEST_F(Own_Table, a_definition_grows_over_several_pages) {
    const auto table = make({column(u"Number")});
    const auto row = table.insert({{1, 1}}).id;
    const Column_Type types[] = {Column_Type::long_integer, Column_Type::memo, Column_Type::boolean,
                                 Column_Type::double_float, Column_Type::ole};
    const std::u16string long_name(40, u'n');
    for (int i = 0; i < 150; ++i) {
        const std::u16string number{static_cast<char16_t>(u'0' + i / 26),
                                    static_cast<char16_t>(u'a' + i % 26)};
        database.add_column(u"T", column(long_name + number, types[i % 5]));
    }
    for (int i = 0; i < 20; ++i) {
        jet::Index index;
        index.name = u"Index " + std::u16string(1, static_cast<char16_t>(u'A' + i));
        index.columns = {{table.columns()[static_cast<std::size_t>(i * 5 + 2)].name, i % 2 == 0}};
        database.add_index(u"T", index);
    }
    EXPECT_EQ(faults(database, true), "");
    std::vector<Cell> cells;
    for (std::size_t i = 2; i < table.columns().size(); i += 5) cells.push_back({i, 5});
    table.update(row, cells);
    table.insert(cells);
    EXPECT_EQ(faults(database, true), "");
    EXPECT_EQ(open(disk).table(u"T")->columns().size(), 152U);
}

TEST_F(Own_Table, rows_are_found_by_any_of_their_cells) {
    jet::Index index;
    index.name = u"Pair";
    index.columns = {{u"A", true}, {u"B", false}};
    index.ignore_nulls = true;
    const auto table = make({column(u"A"), column(u"B"), column(u"C")}, {index});
    for (int i = 0; i < 60; ++i)
        table.insert({{1, i % 3 == 0 ? Value(Null{}) : Value(i % 5)},
                      {2, i % 3 == 0 ? Value(Null{}) : Value(i % 4)},
                      {3, i % 2}});
    const auto count = [&](std::initializer_list<Cell> equal) {
        int found = 0;
        for (auto cursor = table.find(equal); cursor.next(); ++found)
            for (const auto& cell : equal) EXPECT_EQ(cursor.value(cell.column), cell.value);
        return found;
    };
    EXPECT_EQ(count({{1, 2}}), 8);
    EXPECT_EQ(count({{1, 2}, {2, 1}}), 2);
    EXPECT_EQ(count({{2, 1}}), 10);
    EXPECT_EQ(count({{3, 1}}), 30);
    EXPECT_EQ(count({{1, Null{}}}), 20);
    EXPECT_EQ(count({{1, Null{}}, {3, 0}}), 10);
    EXPECT_EQ(count({{1, 77}}), 0);
    EXPECT_TRUE(table.quick(std::vector<std::size_t>{3, 2, 1}));
    EXPECT_FALSE(table.quick(std::vector<std::size_t>{2, 3}));
}

} // namespace
