#include "platform/jet/expected.h"
#include "platform/jet/fixture.h"
#include "platform/jet/mdbtools.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>

namespace {

using namespace fixture;
using jet::Cell;
using jet::Column;
using jet::Column_Type;

class Mdbtools : public testing::Test {
protected:
    void SetUp() override {
        if (!mdbtools::available()) GTEST_SKIP() << "no mdbtools";
    }
    std::string file(const std::string& name) { return folder.path() + "/" + name; }
    support::Temporary_Folder folder;
};

TEST_F(Mdbtools, reads_the_same_rows_from_every_sample) {
    for (const auto& name : expected::sample_names())
        EXPECT_EQ(mdbtools::difference(expected::sample_path(name)).toStdString(), "") << name;
}

const struct {
    const char16_t* name;
    Column_Type type;
    std::size_t length;
} all_types[] = {{u"Truth", Column_Type::boolean, 0},      {u"Small", Column_Type::byte, 0},
                 {u"Middle", Column_Type::integer, 0},     {u"Large", Column_Type::long_integer, 0},
                 {u"Money", Column_Type::currency, 0},     {u"Rough", Column_Type::single_float, 0},
                 {u"Fine", Column_Type::double_float, 0},  {u"When", Column_Type::date, 0},
                 {u"Few bytes", Column_Type::binary, 100}, {u"Short", Column_Type::text, 80},
                 {u"Many bytes", Column_Type::ole, 0},     {u"Long", Column_Type::memo, 0},
                 {u"Global", Column_Type::guid, 0},        {u"Exact", Column_Type::decimal, 0}};

std::vector<Column> columns_of_all_types() {
    std::vector<Column> columns{column(u"id")};
    columns.front().auto_number = true;
    for (const auto& entry : all_types) {
        auto& made = columns.emplace_back(column(entry.name, entry.type, entry.length));
        made.compressed = entry.type == Column_Type::text;
        if (entry.type == Column_Type::decimal) made.precision = 10, made.scale = 2;
    }
    return columns;
}

/// The key and nine others: unique, descending, over several columns, leaving out nulls.
std::vector<jet::Index> ten_indexes() {
    std::vector<jet::Index> indexes{primary_key(u"id")};
    const auto add = [&](std::u16string name, std::vector<jet::Index_Column> columns) {
        auto& index = indexes.emplace_back();
        index.name = std::move(name);
        index.columns = std::move(columns);
    };
    add(u"A", {{u"Short", true}});
    add(u"B", {{u"Short", false}, {u"Large", true}});
    add(u"C", {{u"When", true}});
    add(u"D", {{u"Money", false}});
    add(u"E", {{u"Truth", true}, {u"Small", false}, {u"Middle", true}});
    add(u"F", {{u"Fine", true}});
    add(u"G", {{u"Few bytes", true}});
    add(u"H", {{u"Global", false}});
    add(u"I", {{u"Large", true}, {u"id", true}});
    indexes[5].ignore_nulls = true;
    indexes[9].unique = true;
    return indexes;
}

/// Without zeros, which mdb-export cuts off at the end.
jet::Bytes bytes(std::size_t size, int seed) {
    jet::Bytes made(size);
    for (std::size_t i = 0; i < size; ++i)
        made[i] = static_cast<std::byte>((static_cast<int>(i) * 31 + seed) | 1);
    return made;
}

std::vector<Cell> cells(int n) {
    const auto size = static_cast<std::size_t>(n);
    jet::Guid guid;
    guid.bytes.fill(static_cast<std::byte>(n));
    return {{1, n % 2 == 0},
            {2, n % 256},
            {3, n * 100 - 5000},
            {4, n * 100000 - 3000000},
            {5, jet::Currency{std::int64_t{n} * 12345 - 70000}},
            {6, n / 4.0},
            {7, n / 8.0 - 5},
            {8, jet::Date{40000 + n / 2.0}},
            {9, bytes(size % 100 + 1, n)},
            {10, u"Wagen " + std::u16string(size % 70, u'x') + (n % 3 == 0 ? u"漢" : u"ä")},
            {11, bytes(size * 97 % 9000 + 1, n)},
            {12, std::u16string(size * 41 % 4500 + 1, n % 2 == 0 ? u'ß' : u'n')},
            {13, guid},
            {14, jet::Decimal{n % 2 == 1, {0, 0, 0, static_cast<std::uint32_t>(n * 7)}, 2}}};
}

/// All tables, columns and indexes that a file of others may have, in one of ours.
TEST_F(Mdbtools, reads_sixty_tables_of_all_types_with_ten_indexes_each) {
    const auto name = file("many.mdb");
    auto database = jet::Database::create(files::real_disk(), name);
    jet::Transaction transaction(database);
    for (int number = 1; number <= 60; ++number) {
        const auto table =
            database.create_table(u"Table " + QString::number(number).toStdU16String(),
                                  columns_of_all_types(), ten_indexes());
        for (int row = 0; row < 12; ++row) {
            auto given = cells(row * 5 + number);
            for (int null = 2; null < row; null += 3)
                given.erase(given.begin() + 1 + (row + null) % 10);
            table.insert(given);
        }
    }
    transaction.commit();
    EXPECT_EQ(faults(database, true), "");
    EXPECT_EQ(mdbtools::difference(name).toStdString(), "");
    EXPECT_EQ(mdbtools::schema(name).count(u"CREATE TABLE"_qs), 60);
    EXPECT_EQ(mdbtools::schema(name).count(u"INDEX "_qs), 60 * 9);
}

TEST_F(Mdbtools, sees_an_old_library_completed_in_place) {
    const auto name = file("old.mdb");
    {
        files::Memory_Disk disk;
        if (!load(disk, expected::sample_path("old_library"))) GTEST_SKIP() << "no samples";
        auto database = open(disk);
        const auto sets_before = mdbtools::our_rows(*database.table(u"Sets"));
        jet::Transaction transaction(database);
        auto counter = column(u"ScriptID");
        counter.auto_number = true;
        counter.description = u"unique identifier";
        auto set_id = column(u"SetID");
        set_id.required = true;
        database.create_table(
            u"Scripte", std::vector{counter, set_id, column(u"ScriptName", Column_Type::text, 255)},
            std::vector{primary_key(u"ScriptID")});
        database.add_relation({u"CVSetIDScripte", u"Sets", {u"SetID"}, u"Scripte", {u"SetID"}});
        database.add_column(u"Sets", column(u"Nummer"));
        database.add_column(u"Sets", column(u"ResCV"));
        transaction.commit();
        EXPECT_EQ(faults(database, true), "");
        const auto sets = *database.table(u"Sets");
        ASSERT_EQ(sets.columns().size(), 4U);
        for (auto cursor = sets.rows(); cursor.next();) EXPECT_TRUE(cursor.is_null(2));
        const auto row = [&] {
            auto cursor = sets.rows();
            cursor.next();
            return cursor.id();
        }();
        sets.update(row, {{2, 10}, {3, 8}});
        const auto first = std::get<std::int32_t>((*sets.row(row))[0]);
        database.table(u"Scripte")->insert({{1, first}, {2, u"Fahrt"}});
        EXPECT_EQ(failure_of([&] {
                      database.table(u"Scripte")->insert({{1, 9999}});
                  }),
                  jet::Failure::refused);
        EXPECT_EQ(failure_of([&] {
                      database.table(u"Scripte")->insert({{2, u"x"}});
                  }),
                  jet::Failure::refused);
        EXPECT_EQ(failure_of([&] { sets.erase(row); }), jet::Failure::refused);
        EXPECT_EQ(faults(database, true), "");
        const auto all = disk.bytes(path);
        files::real_disk().open(name, files::Access::create_new)->write_at(0, all);
    }
    EXPECT_EQ(mdbtools::difference(name).toStdString(), "");
    const auto schema = mdbtools::schema(name);
    for (const auto* part : {"\"nummer\"", "\"rescv\"", "PRIMARY KEY (\"scriptid\")",
                             "REFERENCES \"Sets\"(\"setid\")"})
        EXPECT_TRUE(schema.contains(QLatin1String(part))) << part << schema.toStdString();
}

} // namespace
