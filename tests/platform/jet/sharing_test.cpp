#include "platform/jet/fixture.h"
#include "support/crash_sweep.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>

#include <random>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace fixture;

/// Sets with three values each; whoever finds another number has seen half an operation.
void make_shared_tables(jet::Database& database) {
    auto id = column(u"id");
    id.auto_number = true;
    jet::Index by_set;
    by_set.name = u"Set";
    by_set.columns = {{u"Set", true}};
    database.create_table(u"Sets", std::vector{id, column(u"Name", jet::Column_Type::text, 50)},
                          std::vector{primary_key(u"id")});
    database.create_table(u"Values", std::vector{id, column(u"Set"), column(u"Value")},
                          std::vector{primary_key(u"id"), by_set});
    database.add_relation({u"SetsValues", u"Sets", {u"id"}, u"Values", {u"Set"}});
}

void edit(jet::Database& database, std::mt19937& random) {
    jet::Transaction transaction(database);
    const auto sets = *database.table(u"Sets");
    const auto values = *database.table(u"Values");
    if (random() % 3 != 0 || sets.row_count() == 0) {
        const auto set = sets.insert({{1, u"a set"}}).auto_number;
        for (int i = 0; i < 3; ++i) values.insert({{1, set}, {2, i}});
    } else {
        auto victim = [&] {
            auto cursor = sets.rows();
            for (auto skip = random() % sets.row_count() + 1; skip > 0; --skip) cursor.next();
            return std::pair(cursor.id(), cursor.integer(0));
        }();
        std::vector<jet::Row_Place> rows;
        for (auto cursor = values.find({{1, victim.second}}); cursor.next();)
            rows.push_back(cursor.id());
        for (const auto row : rows) values.erase(row);
        sets.erase(victim.first);
    }
    transaction.commit();
}

void look(jet::Database& database) {
    const jet::Read_Guard guard(database);
    const auto values = *database.table(u"Values");
    std::size_t count = 0;
    for (auto sets = database.table(u"Sets")->rows(); sets.next(); ++count) {
        int of_this = 0;
        for (auto found = values.find({{1, sets.value(0)}}); found.next();) ++of_this;
        ASSERT_EQ(of_this, 3);
    }
    ASSERT_EQ(values.row_count(), 3 * count);
}

TEST(Sharing, two_edit_in_turns_and_a_third_reads) {
    files::Memory_Disk disk;
    auto one = jet::Database::create(disk, path);
    make_shared_tables(one);
    auto other = open(disk);
    auto reader = open(disk, jet::Mode::read_only);
    std::mt19937 random(5);
    for (int i = 0; i < 3000; ++i) {
        edit(random() % 2 == 0 ? one : other, random);
        if (i % 50 != 0) continue;
        ASSERT_NO_FATAL_FAILURE(look(reader));
    }
    EXPECT_EQ(faults(one, true), "");
}

/// Others that never pause can keep one out for longer than it waits.
template <class Step>
auto patiently(Step step) {
    for (;;) {
        try {
            return step();
        } catch (const jet::Error& error) {
            if (error.kind != jet::Failure::locked_elsewhere) throw;
        }
    }
}

jet::Database open_patiently(const std::string& file, jet::Mode mode) {
    return patiently([&] { return jet::Database::open(files::real_disk(), file, mode); });
}

int edit_in_a_process(const std::string& file, unsigned seed, int operations) {
    const auto child = fork();
    if (child != 0) return child;
    int result = 1;
    try {
        auto database = open_patiently(file, jet::Mode::read_write);
        std::mt19937 random(seed);
        for (int i = 0; i < operations; ++i) patiently([&] { edit(database, random); });
        result = 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
    }
    _exit(result);
}

TEST(Sharing, processes_edit_one_file_while_another_reads) {
    const support::Temporary_Folder folder;
    const auto file = folder / "shared.mdb";
    {
        auto database = jet::Database::create(files::real_disk(), file);
        make_shared_tables(database);
    }
    const int operations = support::long_tests() ? 5000 : 100;
    const int editors[] = {edit_in_a_process(file, 1, operations),
                           edit_in_a_process(file, 2, operations)};
    auto database = open_patiently(file, jet::Mode::read_only);
    int left = 2;
    while (left > 0) {
        int status = 0;
        const auto ended = waitpid(-1, &status, WNOHANG);
        if (ended == editors[0] || ended == editors[1]) {
            --left;
            EXPECT_EQ(status, 0);
        }
        ASSERT_NO_FATAL_FAILURE(patiently([&] { look(database); }));
    }
    EXPECT_EQ(faults(database, true), "");
}

/// Storing one value in a large library changes few pages.
TEST(Sharing, one_row_in_a_large_table_changes_at_most_ten_pages) {
    files::Memory_Disk disk;
    auto database = jet::Database::create(disk, path);
    make_shared_tables(database);
    const auto values = *database.table(u"Values");
    {
        jet::Transaction transaction(database);
        for (int i = 0; i < 1000; ++i) database.table(u"Sets")->insert({{1, u"a set"}});
        const int rows = support::long_tests() ? 200000 : 15000;
        for (int i = 0; i < rows; ++i) values.insert({{1, i % 1000 + 1}, {2, i}});
        transaction.commit();
    }
    const auto changed = [&](const std::function<void()>& action) {
        const auto before = disk.bytes(path);
        action();
        const auto after = disk.bytes(path);
        std::size_t pages = (after.size() - before.size()) / 4096;
        for (std::size_t at = 0; at < before.size(); at += 4096)
            pages += !std::equal(before.begin() + static_cast<std::ptrdiff_t>(at),
                                 before.begin() + static_cast<std::ptrdiff_t>(at) + 4096,
                                 after.begin() + static_cast<std::ptrdiff_t>(at));
        return pages;
    };
    std::size_t most = 0;
    for (int i = 0; i < 300; ++i)
        most = std::max(most, changed([&] { values.insert({{1, i * 7 % 1000 + 1}, {2, i}}); }));
    EXPECT_LE(most, 10U);
}

} // namespace
