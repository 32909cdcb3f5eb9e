// What a row may hold, and what becomes of the others when it changes.

#include "platform/jet/fixture.h"
#include "platform/jet/rows/cell.h"
#include "platform/jet/rows/long_value.h"

#include <cmath>
#include <limits>
#include <random>

namespace {

using namespace fixture;
using jet::Cell;
using jet::Column_Type;
using jet::Failure;
using jet::Null;
using jet::Value;

constexpr std::int32_t greatest = std::numeric_limits<std::int32_t>::max();

TEST_F(Own_Table, empty_text_is_null_where_it_is_not_allowed) {
    auto strict = column(u"Strict", Column_Type::text, 10);
    strict.allow_zero_length = false;
    const auto table = make({column(u"Free", Column_Type::text, 10), strict});
    const auto row = table.insert({{1, u""}, {2, u""}}).id;
    EXPECT_EQ(*table.row(row), (std::vector<Value>{1, u"", Null{}}));
    table.update(row, std::vector<Cell>{{2, u""}}, jet::Origin::restored);
    EXPECT_EQ(*table.row(row), (std::vector<Value>{1, u"", u""}));
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
    const auto row_of = [&](int number) {
        auto found = table.find({{0, number}});
        found.next();
        return found.id();
    };
    table.erase(row_of(101));
    EXPECT_EQ(table.insert({}).auto_number, 102) << "numbers of deleted rows are not given again";
    table.update(row_of(102), {{0, greatest}});
    EXPECT_EQ(table.insert({}).auto_number, 103) << "one row does not close its table";
    table.insert({{0, greatest - 2}});
    EXPECT_EQ(table.insert({}).auto_number, greatest - 1);
    EXPECT_EQ(table.insert({}).auto_number, 104);
    auto again = open(disk);
    EXPECT_EQ(again.table(u"T")->insert({}).auto_number, 105);
    EXPECT_EQ(faults(database), "");
}

TEST_F(Own_Table, rows_may_refer_to_themselves_and_to_each_other) {
    const auto table = make({column(u"Parent")});
    jet::Relation tree{u"Tree", u"T", {u"id"}, u"T", {u"Parent"}};
    tree.cascade_update = true;
    database.add_relation(tree);
    const auto one = table.insert({{0, 1}, {1, 1}}).id;
    const auto two = table.insert({{0, 2}, {1, 1}}).id;
    const auto three = table.insert({{0, 3}}).id;
    EXPECT_EQ(changed([&] { table.update(one, {{0, 5}}); }), 2U) << "another row follows";
    EXPECT_EQ(*table.row(one), (std::vector<Value>{5, 5}));
    EXPECT_EQ(*table.row(two), (std::vector<Value>{2, 5}));
    EXPECT_EQ(failure_of([&] {
                  table.update(three, {{0, 6}, {1, 3}});
              }),
              Failure::refused)
        << "to a key that goes with the same change";
    EXPECT_EQ(changed([&] { table.update(three, {{0, 6}, {1, 6}}); }), 1U);
    EXPECT_EQ(changed([&] { table.update(one, {{0, 7}, {1, 2}}); }), 2U);
    EXPECT_EQ(*table.row(one), (std::vector<Value>{7, 2}));
    EXPECT_EQ(*table.row(two), (std::vector<Value>{2, 7}));
    EXPECT_EQ(changed([&] { table.update(two, {{1, Null{}}}); }), 1U);

    const auto other = database.create_table(u"Other", std::vector{column(u"id")},
                                             std::vector{primary_key(u"id")});
    jet::Relation there{u"There", u"T", {u"id"}, u"Other", {u"id"}};
    jet::Relation back{u"Back", u"Other", {u"id"}, u"T", {u"id"}};
    there.cascade_update = back.cascade_update = true;
    for (const int id : {2, 6, 7}) other.insert({{0, id}});
    database.add_relation(there);
    database.add_relation(back);
    EXPECT_EQ(changed([&] { table.update(one, {{0, 8}}); }), 2U);
    EXPECT_EQ((*table.row(one))[0], Value(8));
    EXPECT_TRUE(other.find({{0, 8}}).next());
    EXPECT_EQ(faults(database, true), "");
}

TEST_F(Own_Table, what_was_there_fits_again) {
    const auto text = [](char16_t first, std::size_t more) {
        return first + std::u16string(more, u'x');
    };
    std::vector<jet::Column> columns;
    for (int i = 0; i < 8; ++i) {
        auto& made = columns.emplace_back(column(
            u"Text" + std::u16string(1, static_cast<char16_t>(u'a' + i)), Column_Type::text, 255));
        made.compressed = i < 6;
        made.allow_zero_length = made.required = i == 7;
    }
    for (const auto* name : {u"Memo", u"Ole"})
        columns.push_back(column(name, name == std::u16string_view(u"Ole") ? Column_Type::ole
                                                                           : Column_Type::memo));
    columns.push_back(column(u"Single", Column_Type::single_float));
    columns.push_back(column(u"Date", Column_Type::date));
    columns.push_back(column(u"Flag", Column_Type::boolean));
    const auto table = make(columns);
    std::mt19937 random(5);
    const auto any_text = [&](std::size_t most) {
        constexpr char16_t firsts[] = {0xFEFF, 0xD800, 0xDC00, u'\0', u'ä', u'語', u'x'};
        const auto first = firsts[random() % std::size(firsts)];
        std::u16string made = text(first, random() % most);
        if (first != 0xFEFF && random() % 2 == 0) made += firsts[random() % std::size(firsts)];
        return made;
    };
    const double nan = std::numeric_limits<double>::quiet_NaN();
    int stored = 0;
    for (int round = 0; round < 200; ++round) {
        std::vector<Cell> cells;
        for (std::size_t i = 1; i <= 8; ++i)
            if (random() % 8 > 0) cells.push_back({i, any_text(400)});
        cells.push_back({9, any_text(random() % 2 == 0 ? 30 : 5000)});
        cells.push_back({10, jet::Bytes(random() % 100)});
        cells.push_back({11, random() % 2 == 0 ? Value(nan) : Value(HUGE_VAL)});
        cells.push_back({12, jet::Date{random() % 2 == 0 ? nan : 1.5}});
        cells.push_back({13, random() % 2 == 0});
        std::vector<Value> values;
        try {
            const auto row = table.insert(cells, jet::Origin::restored).id;
            values = *table.row(row);
            table.erase(row);
        } catch (const jet::Error& error) {
            ASSERT_EQ(error.kind, Failure::refused); // does not fit into a page
            continue;
        }
        ++stored;
        for (const auto& cell : cells)
            ASSERT_TRUE(same_value(values[cell.column], cell.value)) << round;
        std::vector<Cell> back;
        for (std::size_t i = 0; i < values.size(); ++i) back.push_back({i, values[i]});
        const auto row = table.insert(back, jet::Origin::restored).id;
        const auto found = *table.row(row);
        for (std::size_t i = 0; i < values.size(); ++i)
            ASSERT_TRUE(same_value(found[i], values[i])) << round << ", " << i;
        if (round % 50 > 0) table.erase(row);
    }
    EXPECT_GT(stored, 100);
    EXPECT_EQ(jet::check::check(*disk.open(path, files::Access::read)).sound(), true);
}

TEST_F(Own_Table, a_refusal_comes_before_any_change) {
    std::vector<jet::Column> columns{column(u"Text", Column_Type::text, 255)};
    for (int i = 0; i < 8; ++i)
        columns.push_back(column(u"W" + std::u16string(1, static_cast<char16_t>(u'a' + i)),
                                 Column_Type::text, 255));
    columns.push_back(column(u"Memo", Column_Type::memo));
    const auto table = make(columns);
    std::vector<Cell> wide;
    for (std::size_t i = 2; i < 10; ++i) wide.push_back({i, std::u16string(255, u'語')});
    const std::vector<Cell> refused[] = {
        {{1, u"\uFEFF\u0100"}}, {{10, u"\uFEFF\u0100"}}, {{1, std::u16string(256, u'x')}}, wide};
    const auto row = table.insert({{1, u"first"}}).id;
    jet::Transaction all(database);
    for (const auto& cells : refused) {
        EXPECT_EQ(failure_of([&] { table.insert(cells); }), Failure::refused);
        EXPECT_EQ(failure_of([&] { table.update(row, cells); }), Failure::refused);
        EXPECT_EQ(failure_of([&] { table.check(cells); }), Failure::refused);
    }
    table.insert({{1, u"\uFEFFx語"}});
    all.commit();
    EXPECT_TRUE(table.find({{1, u"\uFEFFx語"}}).next());
    EXPECT_EQ(faults(database, true), "");
}

TEST(A_Long_Value, has_less_than_1_GiB) {
    jet::Column_Record record;
    record.type = Column_Type::ole;
    EXPECT_EQ(failure_of([&] { jet::check_length(record, std::size_t{1} << 30U); }),
              Failure::refused);
    jet::check_length(record, jet::Long_Header::longest);
    const jet::Long_Header longest{jet::Long_Header::longest, jet::Long_Header::Kind::chain, {}, 0};
    const auto bytes = longest.bytes();
    const auto header = jet::Long_Header::from(jet::View(bytes, 1));
    EXPECT_EQ(header.length, longest.length);
    EXPECT_EQ(header.kind, longest.kind);
}

TEST_F(Own_Table, relations_follow_their_rules) {
    const auto table = make({column(u"Parent")});
    jet::Relation itself{u"Tree", u"T", {u"id"}, u"T", {u"Parent"}};
    itself.cascade_delete = true;
    database.add_relation(itself);
    EXPECT_EQ(faults(database, true), "");
    for (int i = 1; i <= 2000; ++i) // a long chain
        table.insert({{1, i == 1 ? Value(Null{}) : Value(i - 1)}});
    EXPECT_EQ(failure_of([&] { table.insert({{1, 5000}}); }), Failure::refused);
    table.insert({{0, 5000}, {1, 5000}}); // refers to itself
    auto found = table.find({{0, 2}});
    ASSERT_TRUE(found.next());
    const auto second = found.id();
    ASSERT_EQ(changed([&] { table.erase(second); }), 1999U);
    EXPECT_EQ(told.firsts.front(), Value(2000)) << "who is taken along is told first";
    EXPECT_EQ(told.firsts.back(), Value(2));
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
    EXPECT_EQ(failure_of([&] { table.update(parent, {{0, 5001}}); }), Failure::refused);
    table.erase(parent);
    EXPECT_EQ(*other.row(row), std::vector<Value>{Null{}});
    EXPECT_EQ(faults(database, true), "");
}

} // namespace
