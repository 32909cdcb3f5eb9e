#include "platform/jet/fixture.h"
#include "platform/jet/usage_map.h"

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
    EXPECT_EQ(failure([&] { cvs.erase(inserted.id); }), Failure::not_found);
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
        EXPECT_EQ(failure(action), Failure::refused) << what;
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
        EXPECT_EQ(failure([&] {
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
    const auto changes = other.change_count();
    one.table(u"Sets")->insert({{1, u"from the first"}});
    EXPECT_NE(other.change_count(), changes);
    EXPECT_EQ(other.table(u"Sets")->row_count(), count + 1);
    one.add_column(u"Sets", column(u"Added"));
    const auto added = other.table(u"Sets")->column(u"added");
    ASSERT_TRUE(added);
    other.table(u"Sets")->insert({{1, u"from the second"}, {*added, 3}});
    EXPECT_EQ(one.table(u"Sets")->row_count(), count + 2);
    EXPECT_EQ(faults(one), "");
}

/// Tables of our own on an empty file.
class Own_Table : public testing::Test {
protected:
    jet::Table make(std::vector<jet::Column> columns, std::vector<jet::Index> indexes = {}) {
        auto id = column(u"id");
        id.auto_number = true;
        columns.insert(columns.begin(), id);
        indexes.insert(indexes.begin(), primary_key(u"id"));
        return database.create_table(u"T", columns, indexes);
    }
    files::Memory_Disk disk;
    jet::Database database = jet::Database::create(disk, path);
};

TEST_F(Own_Table, space_of_deleted_rows_is_used_again) {
    const auto table =
        make({column(u"Text", Column_Type::text, 200), column(u"Memo", Column_Type::memo)});
    std::size_t size_after_two = 0;
    for (int round = 0; round < 12; ++round) {
        jet::Transaction transaction(database);
        for (int i = 0; i < 300; ++i)
            table.insert({{1, std::u16string(static_cast<std::size_t>(i % 100), u'x')},
                          {2, std::u16string(static_cast<std::size_t>(i * 13 % 3000 + 1), u'm')}});
        std::vector<jet::Row_Id> rows;
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
    std::vector<jet::Row_Id> rows;
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
    std::vector<jet::Row_Id> rows;
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

TEST_F(Own_Table, empty_text_is_null_where_it_is_not_allowed) {
    auto strict = column(u"Strict", Column_Type::text, 10);
    strict.allow_zero_length = false;
    const auto table = make({column(u"Free", Column_Type::text, 10), strict});
    const auto row = table.insert({{1, u""}, {2, u""}}).id;
    EXPECT_EQ(*table.row(row), (std::vector<Value>{1, u"", Null{}}));
    table.update(row, std::vector<Cell>{{2, u""}}, jet::Empty_Text::kept);
    EXPECT_EQ(*table.row(row), (std::vector<Value>{1, u"", u""}));
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

TEST_F(Own_Table, defaults_fill_what_is_not_given) {
    const struct {
        Column_Type type;
        const char16_t* expression;
        Value value;
    } cases[] = {{Column_Type::long_integer, u"42", 42},
                 {Column_Type::long_integer, u"=-3", -3},
                 {Column_Type::byte, u"300", Null{}},
                 {Column_Type::double_float, u"2.5", 2.5},
                 {Column_Type::text, u"\"say \"\"no\"\"\"", u"say \"no\""},
                 {Column_Type::text, u"'x'", u"x"},
                 {Column_Type::text, u"\"ab\"c\"", Null{}},
                 {Column_Type::text, u"Now()", Null{}},
                 {Column_Type::date, u"Date()", Null{}},
                 {Column_Type::boolean, u"-1", true},
                 {Column_Type::boolean, u"0", false},
                 {Column_Type::currency, u"1.5", jet::Currency{15000}},
                 {Column_Type::long_integer, u"\"7\"", Null{}}};
    std::vector<jet::Column> columns;
    for (const auto& one : cases) {
        auto& made = columns.emplace_back(
            column(u"c" + std::u16string(1, static_cast<char16_t>(u'a' + columns.size())), one.type,
                   one.type == Column_Type::text ? 20 : 0));
        made.default_value = one.expression;
    }
    auto strict = column(u"Strict", Column_Type::text, 20);
    strict.default_value = u"\"\"";
    strict.allow_zero_length = false;
    columns.push_back(strict);
    const auto table = make(columns);
    const auto row = *table.row(table.insert({}).id);
    for (std::size_t i = 0; i < std::size(cases); ++i) EXPECT_EQ(row[i + 1], cases[i].value) << i;
    EXPECT_EQ(row.back(), Value(Null{})) << "an empty default, too, is null where that is needed";
    EXPECT_EQ(faults(database, true), "");
}

TEST_F(Own_Table, an_autonumber_lies_above_every_key) {
    const auto table = make({});
    EXPECT_EQ(table.insert({}).auto_number, 1);
    EXPECT_EQ(table.insert({{0, 100}}).auto_number, 100);
    EXPECT_EQ(table.insert({{0, 50}}).auto_number, 50);
    EXPECT_EQ(table.insert({}).auto_number, 101);
    auto last = table.find({{0, 101}});
    ASSERT_TRUE(last.next());
    const auto row = last.id();
    table.erase(row);
    EXPECT_EQ(table.insert({}).auto_number, 102) << "numbers of deleted rows are not given again";
    auto top = table.find({{0, 102}});
    ASSERT_TRUE(top.next());
    const auto highest = top.id();
    table.update(highest, {{0, 2147483647}});
    EXPECT_EQ(failure([&] { table.insert({}); }), Failure::refused);
    EXPECT_EQ(faults(database, true), "");
}

TEST_F(Own_Table, relations_follow_their_rules) {
    const auto table = make({column(u"Parent")});
    jet::Relation itself{u"Tree", u"T", {u"id"}, u"T", {u"Parent"}};
    itself.cascade_delete = true;
    database.add_relation(itself);
    EXPECT_EQ(faults(database, true), "");
    for (int i = 1; i <= 2000; ++i) // a long chain
        table.insert({{1, i == 1 ? Value(Null{}) : Value(i - 1)}});
    EXPECT_EQ(failure([&] { table.insert({{1, 5000}}); }), Failure::refused);
    table.insert({{0, 5000}, {1, 5000}}); // refers to itself
    auto found = table.find({{0, 2}});
    ASSERT_TRUE(found.next());
    const auto second = found.id();
    const auto followers = table.followers(second);
    ASSERT_EQ(followers.size(), 1998U);
    EXPECT_EQ((*table.row(followers.front().row))[0], Value(3));
    table.erase(second);
    EXPECT_EQ(table.row_count(), 2U);
    EXPECT_EQ(faults(database, true), "");

    auto child = column(u"T id");
    const auto other = database.create_table(u"Other", std::vector{child}, {});
    jet::Relation forgetting{u"Forgetting", u"T", {u"id"}, u"Other", {u"T id"}};
    forgetting.null_on_delete = true;
    database.add_relation(forgetting);
    const auto row = other.insert({{0, 5000}}).id;
    auto last = table.find({{0, 5000}});
    ASSERT_TRUE(last.next());
    const auto parent = last.id();
    EXPECT_EQ(failure([&] { table.update(parent, {{0, 5001}}); }), Failure::refused);
    table.erase(parent);
    EXPECT_EQ(*other.row(row), std::vector<Value>{Null{}});
    EXPECT_EQ(faults(database, true), "");
}

} // namespace
