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

auto refuses(ado::Failure kind) {
    return testing::Throws<ado::Error>(testing::Field(&ado::Error::kind, kind));
}

struct Records : testing::Test {
    /// A new library with a table of the whole columns and, over the first of them, its key.
    void make(const QString& table, const std::vector<QString>& columns,
              const QString& other_index = {}) {
        if (connection.state() == ado::State::closed) {
            jet::Database::create(disk, "a.mdb", 40000.0);
            connection.open(ado::Connection::string_for(u"a.mdb"_s));
        }
        ado::Table made{table};
        for (const auto& column : columns) made.columns.push_back({column});
        made.columns.front().auto_increment = true;
        made.columns.front().nullable = false;
        made.indexes.push_back({u"PK"_s, true, columns.front()});
        if (!other_index.isEmpty()) made.indexes.push_back({other_index, false, other_index});
        ado::Catalog(connection).append(made);
    }
    void make(bool with_index) {
        make(u"T"_s, {u"K"_s, u"A"_s, u"B"_s}, with_index ? u"A"_s : QString());
    }

    ado::Recordset& query(const QString& sql) {
        command.text = sql;
        rows.open(command);
        return rows;
    }
    void store(std::optional<int> a, std::optional<int> b) {
        rows.set(u"A"_s, a ? ado::value(*a) : ado::null());
        rows.set(u"B"_s, b ? ado::value(*b) : ado::null());
        rows.update();
    }
    void insert(std::optional<int> a, std::optional<int> b, const QString& table = u"T"_s) {
        query(u"SELECT * FROM "_s + table).add_new();
        store(a, b);
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
    files::Memory_Disk disk;
    ado::Connection connection{disk};
    ado::Command command{connection};
    ado::Recordset rows;
};

TEST_F(Records, null_equals_nothing_and_comes_first) {
    for (const bool with_index : {false, true}) {
        make(with_index);
        for (const auto& [a, b] : std::vector<std::pair<std::optional<int>, std::optional<int>>>{
                 {3, 1}, {{}, 2}, {0, 9}, {3, {}}, {-1, 5}, {3, 1}, {{}, {}}})
            insert(a, b);
        const std::map<QString, Strings> cases{
            {u"SELECT * FROM T"_s,
             {"1:3/1", "2:-/2", "3:0/9", "4:3/-", "5:-1/5", "6:3/1", "7:-/-"}},
            {u"SELECT * FROM T WHERE A = 0"_s, {"3:0/9"}},
            {u"SELECT * FROM T WHERE A = -1"_s, {"5:-1/5"}},
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
TEST_F(Records, lookups_follow_own_changes_and_those_that_are_rolled_back) {
    for (const bool with_index : {false, true}) {
        SCOPED_TRACE(with_index);
        make(with_index);
        std::mt19937 random(17);
        const auto below = [&](unsigned n) { return static_cast<int>(random() % n); };
        const int widths[] = {0, 255, 256, -1, 32768, -32769}; // of which as many bytes are held
        std::map<int, std::pair<int, int>> model;              // A and B by key
        const auto ask = [&](std::optional<int> a, std::optional<int> b) {
            QString sql = u"SELECT * FROM T WHERE "_s;
            if (a) sql += u"A = %1"_s.arg(*a);
            if (b) sql += (a ? u" AND B = %1"_s : u"B = %1"_s).arg(*b);
            Strings expected;
            for (const auto& [k, row] : model)
                if (row.first == a.value_or(row.first) && row.second == b.value_or(row.second))
                    expected.push_back(
                        QString::asprintf("%d:%d/%d", k, row.first, row.second).toStdString());
            ASSERT_EQ(found(sql), expected) << sql.toStdString();
            query(sql);
        };
        for (int round = 0; round < 8; ++round) {
            std::optional<ado::Reading> reading; // what is held may outlive the transaction
            if (round % 4 < 2) reading.emplace(connection);
            const auto before = model;
            std::optional<ado::Transaction> transaction(std::in_place, connection);
            for (int step = 0, a = 0; step < 200; ++step) {
                if (below(8) == 0) a = below(6);
                const int b = widths[below(6)], asked = below(6);
                ask(asked > 0 ? std::optional(a) : std::nullopt,
                    asked < 4 ? std::optional(b) : std::nullopt);
                for (int skip = below(4); skip > 0 && !rows.at_end(); --skip) rows.move_next();
                const int action = rows.at_end() ? 0 : below(3);
                if (action == 2) {
                    model.erase(rows.number(u"K").value());
                    rows.erase();
                    continue;
                }
                if (action == 0) rows.add_new();
                const std::pair stored{below(3) > 0 ? a : below(6), b};
                store(stored.first, stored.second);
                model[rows.number(u"K").value()] = stored;
            }
            if (round % 2 == 0)
                transaction->commit();
            else
                model = before;
            transaction.reset();
            for (int a = 0; a < 6; ++a) ask(a, {});
        }
        connection.close();
    }
}

TEST_F(Records, a_join_shows_each_pair_once_and_null_where_there_is_no_partner) {
    make(u"L"_s, {u"K"_s, u"A"_s, u"B"_s});
    make(u"R"_s, {u"K"_s, u"A"_s, u"B"_s});
    for (const int a : {5, 2, 5, 9, 7, 2}) insert(a, {}, u"L"_s);
    insert({}, {}, u"L"_s);
    for (const auto& [a, b] : {std::pair{2, 20}, {5, 50}, {7, 71}, {7, 70}, {8, 80}})
        insert(a, b, u"R"_s);
    insert({}, 99, u"R"_s);
    Strings lines;
    for (query(u"SELECT DISTINCT L.A, R.B FROM L LEFT JOIN R ON L.A = R.A ORDER BY L.A"_s);
         !rows.at_end(); rows.move_next())
        lines.push_back(std::to_string(rows.number(u"A").value_or(-1)) + "/" +
                        std::to_string(rows.number(u"B").value_or(-1)));
    EXPECT_THAT(lines, ElementsAre("-1/-1", "2/20", "5/50", "7/70", "7/71", "9/-1"));
}

TEST_F(Records, columns_of_other_types_hold_our_numbers_too) {
    using T = jet::Column_Type;
    for (const T type : {T::byte, T::integer, T::long_integer, T::double_float, T::single_float,
                         T::currency, T::text}) {
        SCOPED_TRACE(static_cast<int>(type));
        make(u"T"_s, {u"K"_s, u"B"_s});
        jet::Column other;
        other.name = u"A";
        other.type = type;
        other.fixed = type != T::text;
        other.length = other.fixed ? 0 : 20;
        connection.session().database().add_column(u"T", other);
        for (const int a : {7, 200, 7}) insert(a, 1);
        EXPECT_EQ(found(u"SELECT * FROM T WHERE A = 7"_s), (Strings{"1:7/1", "3:7/1"}));
        EXPECT_EQ(found(u"SELECT * FROM T WHERE A = 70000"_s), Strings{});
        if (type == T::byte || type == T::integer) {
            EXPECT_THAT([&] { insert(70000, 1); }, refuses(ado::Failure::refused));
        }
        connection.close();
    }
}

TEST_F(Records, tell_what_they_cannot_do) {
    EXPECT_THAT([&] { query(u"SELECT * FROM T"_s); }, refuses(ado::Failure::not_open));
    EXPECT_THAT([&] { connection.open(u"a.mdb"_s); }, refuses(ado::Failure::statement));
    make(false);
    insert(1, 1);
    insert(2, 2);
    EXPECT_THAT([&] { found(u"SELECT * FROM U"_s); }, refuses(ado::Failure::not_found));
    EXPECT_THAT([&] { found(u"SELECT * FROM T WHERE X = 1"_s); }, refuses(ado::Failure::not_found));
    EXPECT_THAT([&] { found(u"SELECT * FROM T ORDER BY X"_s); }, refuses(ado::Failure::not_found));
    EXPECT_THAT([&] { query(u"DELETE FROM T WHERE K = 1"_s); }, refuses(ado::Failure::statement));
    command.text = u"SELECT * FROM T"_s;
    EXPECT_THAT([&] { command.execute(); }, refuses(ado::Failure::statement));
    query(u"SELECT * FROM T WHERE K = 3"_s);
    EXPECT_THAT([&] { rows.value({0}); }, refuses(ado::Failure::not_found));
    EXPECT_THAT([&] { rows.field(u"X"); }, refuses(ado::Failure::not_found));
    query(u"SELECT * FROM T WHERE K = 1"_s);
    EXPECT_EQ(rows.record_count(), 1);
    command.text = u"DELETE FROM T WHERE K = 1"_s;
    EXPECT_EQ(command.execute(), 1);
    EXPECT_EQ(command.execute(), 0);
    EXPECT_THAT([&] { rows.erase(); }, refuses(ado::Failure::not_found));
    rows.close();
    EXPECT_THAT([&] { rows.record_count(); }, refuses(ado::Failure::not_open));
}

TEST(Numbers, are_held_once_when_a_wider_one_comes) {
    ado::Numbers numbers;
    for (const int number : {7, 256, 32768}) numbers.push_back(number);
    EXPECT_EQ(numbers.size(), 3U);
}

} // namespace
