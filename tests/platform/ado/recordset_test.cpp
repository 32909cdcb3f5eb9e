#include "platform/ado/catalog.h"
#include "platform/ado/error.h"
#include "platform/ado/recordset.h"
#include "platform/files/memory_disk.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <random>

using namespace Qt::Literals::StringLiterals;
using testing::ElementsAre;

namespace {

using Strings = std::vector<std::string>;

jet::Column column(const char16_t* name, jet::Column_Type type = jet::Column_Type::long_integer) {
    jet::Column made;
    made.name = name;
    made.type = type;
    made.fixed = type != jet::Column_Type::text;
    made.length = made.fixed ? 0 : 20;
    return made;
}

jet::Column key_column(const char16_t* name) {
    jet::Column made = column(name);
    made.auto_number = made.required = true;
    return made;
}

jet::Index index_on(const char16_t* name, bool primary) {
    jet::Index made;
    made.name = name;
    made.columns = {{name, true}};
    made.primary = made.unique = made.required = primary;
    return made;
}

class Records : public testing::Test {
protected:
    /// Table "T" with key K, numbers A and B.
    void make(bool with_index) {
        auto made = jet::Database::create(disk, "a.mdb", 40000.0);
        const std::vector<jet::Column> columns{key_column(u"K"), column(u"A"), column(u"B")};
        std::vector<jet::Index> indexes{index_on(u"K", true)};
        if (with_index) indexes.push_back(index_on(u"A", false));
        made.create_table(u"T", columns, indexes);
    }
    void open() { connection.open(ado::Connection::string_for(u"a.mdb"_s)); }

    ado::Recordset& query(const QString& sql) {
        command.text = sql;
        rows.open(command);
        return rows;
    }
    void insert(std::optional<int> a, std::optional<int> b) {
        ado::Recordset& added = query(u"SELECT * FROM T"_s);
        added.add_new();
        added.set(u"A"_s, a ? ado::value(*a) : ado::null());
        if (b) added.set(u"B"_s, ado::value(*b));
        added.update();
    }
    /// Rows as "K:A/B".
    Strings found(const QString& sql) {
        Strings lines;
        const auto shown = [&](QStringView name) {
            const auto number = rows.number(name);
            return number ? std::to_string(*number) : std::string("-");
        };
        for (query(sql); !rows.at_end(); rows.move_next())
            lines.push_back(shown(u"K") + ":" + shown(u"A") + "/" + shown(u"B"));
        return lines;
    }
    template <class Work>
    ado::Failure failure_of(Work work) {
        try {
            work();
        } catch (const ado::Error& error) {
            return error.kind;
        }
        ADD_FAILURE() << "nothing was thrown";
        return ado::Failure::device;
    }

    files::Memory_Disk disk;
    ado::Connection connection{disk};
    ado::Command command{connection};
    ado::Recordset rows;
};

TEST_F(Records, null_equals_nothing_and_comes_first) {
    for (const bool with_index : {false, true}) {
        make(with_index);
        open();
        for (const auto& [a, b] : std::vector<std::pair<std::optional<int>, std::optional<int>>>{
                 {3, 1}, {{}, 2}, {0, 9}, {3, {}}, {-1, 5}, {3, 1}, {{}, {}}})
            insert(a, b);
        const std::map<QString, Strings> cases{
            {u"SELECT * FROM T"_s,
             {"1:3/1", "2:-/2", "3:0/9", "4:3/-", "5:-1/5", "6:3/1", "7:-/-"}},
            {u"SELECT * FROM T WHERE A = 0"_s, {"3:0/9"}},
            {u"SELECT * FROM T WHERE A = 3"_s, {"1:3/1", "4:3/-", "6:3/1"}},
            {u"SELECT * FROM T WHERE a = 3 AND B = 1"_s, {"1:3/1", "6:3/1"}},
            {u"SELECT * FROM T WHERE A = 3 ORDER BY B"_s, {"4:3/-", "1:3/1", "6:3/1"}},
            {u"SELECT * FROM T ORDER BY A, B"_s,
             {"7:-/-", "2:-/2", "5:-1/5", "3:0/9", "4:3/-", "1:3/1", "6:3/1"}},
            {u"SELECT * FROM T WHERE B = 7"_s, {}},
        };
        for (const auto& [sql, expected] : cases) {
            EXPECT_EQ(found(sql), expected) << sql.toStdString();
            const ado::Reading whole(connection, ado::Extent::whole);
            EXPECT_EQ(found(sql), expected) << "through a table in memory: " << sql.toStdString();
        }
        connection.close();
    }
}

/// What is held in memory inside a guard must be what the file says: a table, or with an index the
/// rows of the number that is asked for again and again.
TEST_F(Records, lookups_follow_own_changes) {
    struct Numbers {
        int a, b;
    };
    for (const bool with_index : {false, true}) {
        SCOPED_TRACE(with_index);
        make(with_index);
        open();
        std::mt19937 random(17);
        const auto below = [&](unsigned n) { return static_cast<int>(random() % n); };
        std::map<int, Numbers> model;
        const auto expected = [&](int a, std::optional<int> b) {
            Strings lines;
            for (const auto& [k, row] : model)
                if (row.a == a && b.value_or(row.b) == row.b)
                    lines.push_back(std::to_string(k) + ":" + std::to_string(a) + "/" +
                                    std::to_string(row.b));
            return lines;
        };
        const auto where = [](int a, std::optional<int> b) {
            const QString sql = u"SELECT * FROM T WHERE A = "_s + QString::number(a);
            return b ? sql + u" AND B = "_s + QString::number(*b) : sql;
        };
        for (int round = 0; round < 4; ++round) {
            ado::Transaction transaction(connection);
            for (int step = 0, a = 0; step < 400; ++step) {
                if (below(8) == 0) a = below(6);
                const int b = below(4);
                const auto asked = below(3) > 0 ? std::optional(b) : std::nullopt;
                ASSERT_EQ(found(where(a, asked)), expected(a, asked));
                query(where(a, asked));
                for (int skip = below(4); skip > 0 && !rows.at_end(); --skip) rows.move_next();
                const int action = below(3);
                if (action == 0 || rows.at_end()) {
                    rows.add_new();
                    rows.set(u"A"_s, ado::value(a));
                    rows.set(u"B"_s, ado::value(b));
                    rows.update();
                    model[rows.number(u"K").value()] = {a, b};
                } else if (action == 1) {
                    const Numbers moved{below(3) > 0 ? a : below(6), below(4)};
                    rows.set(u"A"_s, ado::value(moved.a));
                    rows.set(u"B"_s, ado::value(moved.b));
                    rows.update();
                    model[rows.number(u"K").value()] = moved;
                } else {
                    model.erase(rows.number(u"K").value());
                    rows.erase();
                }
            }
            transaction.commit();
            for (int a = 0; a < 6; ++a) ASSERT_EQ(found(where(a, {})), expected(a, {}));
        }
        connection.close();
    }
}

TEST_F(Records, what_is_held_forgets_rows_that_go_and_changes_that_are_rolled_back) {
    for (const bool with_index : {false, true}) {
        SCOPED_TRACE(with_index);
        make(with_index);
        open();
        for (const int b : {1, 2, 3}) insert(5, b);
        const QString by_both = u"SELECT * FROM T WHERE A = 5 AND B = 2"_s;
        const QString by_one = u"SELECT * FROM T WHERE B = 2"_s;
        std::optional<ado::Reading> reading(std::in_place, connection);
        for (const bool kept : {false, true}) {
            for (int i = 0; i < 2; ++i) ASSERT_EQ(found(by_both), Strings{"2:5/2"});
            ado::Transaction transaction(connection);
            for (int i = 0; i < 2; ++i) ASSERT_EQ(found(by_both), Strings{"2:5/2"});
            query(by_both).erase();
            for (int i = 0; i < 2; ++i) EXPECT_EQ(found(by_one), Strings{});
            EXPECT_EQ(found(u"SELECT * FROM T WHERE K = 2 AND B = 2"_s), Strings{});
            query(by_both);
            for (const int b : {2, 9}) {
                rows.add_new();
                rows.set(u"A"_s, ado::value(5));
                rows.set(u"B"_s, ado::value(b));
                rows.update();
            }
            for (int i = 0; i < 2; ++i) EXPECT_EQ(found(by_both).size(), 1U);
            if (kept) transaction.commit();
        }
        EXPECT_EQ(found(by_both), Strings{"4:5/2"});
        EXPECT_EQ(found(u"SELECT * FROM T WHERE B = 9"_s), Strings{"5:5/9"});
        reading.reset();
        connection.close();
    }
}

TEST_F(Records, a_join_shows_each_pair_once_and_null_where_there_is_no_partner) {
    {
        auto made = jet::Database::create(disk, "a.mdb", 40000.0);
        const auto left = made.create_table(u"L", std::vector{key_column(u"K"), column(u"A")},
                                            std::vector{index_on(u"K", true)});
        const auto right = made.create_table(u"R", std::vector{column(u"A"), column(u"N")},
                                             std::vector<jet::Index>{});
        for (const int a : {5, 2, 5, 9, 7, 2}) left.insert({{1, std::int32_t{a}}});
        left.insert({{1, jet::Null{}}});
        for (const auto& [a, n] : {std::pair{2, 20}, {5, 50}, {7, 71}, {7, 70}, {8, 80}})
            right.insert({{0, std::int32_t{a}}, {1, std::int32_t{n}}});
        right.insert({{0, jet::Null{}}, {1, std::int32_t{99}}});
    }
    open();
    Strings lines;
    for (query(u"SELECT DISTINCT L.A, R.N FROM L LEFT JOIN R ON L.A = R.A ORDER BY L.A"_s);
         !rows.at_end(); rows.move_next())
        lines.push_back(std::to_string(rows.number(u"A").value_or(-1)) + "/" +
                        std::to_string(rows.number(u"N").value_or(-1)));
    EXPECT_THAT(lines, ElementsAre("-1/-1", "2/20", "5/50", "7/70", "7/71", "9/-1"));
}

TEST_F(Records, columns_of_other_types_hold_our_numbers_too) {
    using T = jet::Column_Type;
    for (const T type : {T::byte, T::integer, T::long_integer, T::double_float, T::single_float,
                         T::currency, T::text}) {
        SCOPED_TRACE(static_cast<int>(type));
        {
            auto made = jet::Database::create(disk, "a.mdb", 40000.0);
            made.create_table(u"T", std::vector{key_column(u"K"), column(u"A", type), column(u"B")},
                              std::vector{index_on(u"K", true)});
        }
        open();
        for (const int a : {7, 200, 7}) insert(a, 1);
        EXPECT_EQ(found(u"SELECT * FROM T WHERE A = 7"_s), (Strings{"1:7/1", "3:7/1"}));
        EXPECT_EQ(found(u"SELECT * FROM T WHERE A = 70000"_s), Strings{});
        const bool narrow = type == T::byte || type == T::integer;
        if (narrow) {
            EXPECT_EQ(failure_of([&] { insert(70000, 1); }), ado::Failure::refused);
        }
        connection.close();
    }
}

TEST_F(Records, tell_what_they_cannot_do) {
    make(false);
    EXPECT_EQ(failure_of([&] { query(u"SELECT * FROM T"_s); }), ado::Failure::not_open);
    EXPECT_EQ(failure_of([&] { connection.open(u"a.mdb"_s); }), ado::Failure::statement);
    open();
    insert(1, 1);
    insert(2, 2);
    EXPECT_EQ(failure_of([&] { found(u"SELECT * FROM U"_s); }), ado::Failure::not_found);
    EXPECT_EQ(failure_of([&] { found(u"SELECT * FROM T WHERE X = 1"_s); }),
              ado::Failure::not_found);
    EXPECT_EQ(failure_of([&] { found(u"SELECT * FROM T ORDER BY X"_s); }), ado::Failure::not_found);
    EXPECT_EQ(failure_of([&] { query(u"DELETE FROM T WHERE K = 1"_s); }), ado::Failure::statement);
    command.text = u"SELECT * FROM T"_s;
    EXPECT_EQ(failure_of([&] { command.execute(); }), ado::Failure::statement);
    query(u"SELECT * FROM T WHERE K = 3"_s);
    EXPECT_EQ(failure_of([&] { rows.value({0}); }), ado::Failure::not_found);
    EXPECT_EQ(failure_of([&] { rows.field(u"X"); }), ado::Failure::not_found);
    query(u"SELECT * FROM T WHERE K = 1"_s);
    EXPECT_EQ(rows.record_count(), 1);
    command.text = u"DELETE FROM T WHERE K = 1"_s;
    EXPECT_EQ(command.execute(), 1);
    EXPECT_EQ(command.execute(), 0);
    EXPECT_EQ(failure_of([&] { rows.erase(); }), ado::Failure::not_found);
    rows.close();
    EXPECT_EQ(failure_of([&] { rows.record_count(); }), ado::Failure::not_open);
}

TEST(Numbers, keep_their_values_when_a_wider_one_comes) {
    ado::Numbers numbers;
    const std::vector<std::int32_t> expected{0,   255,    7,     -1, 32767,
                                             256, -32768, 32768, 5,  -2147483647 - 1};
    for (const std::int32_t number : expected) numbers.push_back(number);
    numbers.set(2, 8);
    ado::Numbers set_wide;
    set_wide.push_back(1);
    set_wide.push_back(2);
    set_wide.set(0, 70000);
    EXPECT_EQ(set_wide[0], 70000);
    EXPECT_EQ(set_wide[1], 2);
    ASSERT_EQ(numbers.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(numbers[i], i == 2 ? 8 : expected[i]);
}

} // namespace
