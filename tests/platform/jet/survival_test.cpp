#include "platform/jet/fixture.h"
#include "support/crash_sweep.h"

#include <gmock/gmock.h>

#include <array>
#include <filesystem>
#include <random>

namespace {

using namespace fixture;
using jet::Column_Type;
using jet::Failure;

/// A session of three operations: a set with values comes, a set with its values goes, and the
/// structure changes.
class Session {
public:
    explicit Session(std::vector<Content>* states = nullptr) : states_(states) {}

    void operator()(files::Disk& disk) {
        auto database = open(disk);
        note(database);
        add_set(database);
        note(database);
        remove_set(database);
        note(database);
        change_structure(database);
        note(database);
    }

private:
    void note(jet::Database& database) {
        if (states_ != nullptr) states_->push_back(content(database));
    }
    static void add_set(jet::Database& database) {
        jet::Transaction transaction(database);
        const auto id = database.table(u"Sets")->insert({{1, u"Neu"}}).auto_number;
        for (int i = 0; i < 150; ++i)
            database.table(u"CVs")->insert({{1, id}, {2, 0}, {3, 1}, {4, i + 1}, {5, i}});
        transaction.commit();
    }
    static void remove_set(jet::Database& database) {
        jet::Transaction transaction(database);
        const auto cvs = *database.table(u"CVs");
        std::vector<jet::Row_Place> rows;
        for (auto cursor = cvs.find({{1, 2}}); cursor.next();) rows.push_back(cursor.id());
        for (const auto row : rows) cvs.erase(row);
        transaction.commit();
    }
    static void change_structure(jet::Database& database) {
        jet::Transaction transaction(database);
        database.add_column(u"CVs", column(u"Text", Column_Type::text, 30));
        database.create_table(u"Notes",
                              std::vector{column(u"id"), column(u"Note", Column_Type::memo)},
                              std::vector{primary_key(u"id")});
        database.table(u"Notes")->insert({{0, 1}, {1, std::u16string(5000, u'n')}});
        transaction.commit();
    }

    std::vector<Content>* states_;
};

class Survival : public testing::Test {
protected:
    void SetUp() override {
        if (!load(disk, CV_SETS_SAMPLES "/old_library.mdb")) GTEST_SKIP() << "no samples";
    }
    files::Memory_Disk disk;
};

/// Every state after a loss of power or a refused call is one between two operations, and sound.
TEST_F(Survival, a_session_cut_off_anywhere_leaves_whole_operations) {
    std::vector<Content> states;
    {
        auto copy = disk.copy();
        Session{&states}(copy);
    }
    ASSERT_EQ(states.size(), 4U);
    const auto check = [&](files::Disk& found, support::Outcome outcome) {
        auto database = open(found);
        ASSERT_EQ(faults(database), "");
        const auto now = content(database);
        if (outcome == support::Outcome::finished)
            ASSERT_TRUE(now == states.back());
        else
            ASSERT_THAT(states, testing::Contains(now));
    };
    EXPECT_GT(support::sweep_crashes(disk, Session(), check), 100);
    EXPECT_GT(support::sweep_refusals(disk, Session(), check), 50);
}

/// The program is killed at any moment, and then the medium spoils the journal: nobody takes the
/// file for a whole one, and with the journal mended by hand it is one again.
TEST_F(Survival, a_journal_spoiled_after_a_crash_is_kept_and_the_file_looked_through) {
    std::vector<Content> states;
    {
        auto copy = disk.copy();
        Session{&states}(copy);
    }
    const std::string journal_name = std::string(path) + "-journal";
    constexpr std::size_t state_at = 504;
    constexpr std::size_t in_table = 512 + 8;
    int told = 0;
    int damaged = 0;
    files::Crash_Disk crashing(disk);
    crashing.before_change = [&] {
        std::mt19937 unused;
        files::Memory_Disk found = crashing.after_power_loss(
            [](std::size_t) { return files::Crash_Disk::Fate::kept; }, unused);
        if (!found.file_exists(journal_name)) return;
        const auto whole = found.bytes(journal_name);
        if (whole.size() <= in_table || whole[state_at] == std::byte{}) return;
        found.open(journal_name, files::Access::read_write)
            ->write_at(in_table, std::array{whole[in_table] ^ std::byte{4}});
        {
            auto database = open(found);
            ASSERT_TRUE(database.status().journal_spoiled);
            ASSERT_EQ(database.status().set_aside, journal_name + "-aside-1");
            const bool sound = faults(database).empty();
            const jet::Blocked blocked = database.status().blocked;
            // what names the appended pages has arrived, they have not: sound as far as it goes
            ASSERT_TRUE(blocked == jet::Blocked::cut_off || (blocked == jet::Blocked::no) == sound);
            damaged += !sound;
        }
        found.set_bytes(journal_name, whole);
        auto database = open(found);
        ASSERT_EQ(faults(database), "");
        ASSERT_THAT(states, testing::Contains(content(database)));
        ++told;
    };
    Session()(crashing);
    EXPECT_GT(told, 20);
    EXPECT_GT(damaged, 5);
}

/// Only the file itself tells what it is then, also to a copy of the program that has had it open,
/// and looked it through, all the while.
TEST_F(Survival, a_journal_lost_after_a_crash_hides_no_half_written_file) {
    const std::string journal_name = std::string(path) + "-journal";
    constexpr std::size_t state_at = 504;
    constexpr std::size_t in_table = 512 + 8;
    const std::function<void(files::Memory_Disk&)> losses[] = {
        [&](files::Memory_Disk& d) {
            auto bytes = d.bytes(journal_name);
            if (bytes.size() > in_table) bytes[in_table] ^= std::byte{4};
            d.set_bytes(journal_name, bytes);
        },
        [&](files::Memory_Disk& d) { d.set_bytes(journal_name, {}); },
        [&](files::Memory_Disk& d) { d.set_bytes(journal_name, jet::Bytes(600)); },
        [&](files::Memory_Disk& d) { d.remove(journal_name); }};
    const auto write = [](jet::Database& database) {
        database.table(u"Sets")->insert({{1, u"Andere"}});
    };
    int damaged = 0;
    files::Crash_Disk crashing(disk);
    crashing.before_change = [&] {
        std::mt19937 unused;
        files::Memory_Disk left = crashing.after_power_loss(
            [](std::size_t) { return files::Crash_Disk::Fate::kept; }, unused);
        if (!left.file_exists(journal_name)) return;
        auto emptied = left.bytes(journal_name);
        if (emptied.size() > state_at) emptied[state_at] = {};
        for (const auto& lose : losses)
            for (const bool open_before : {false, true}) {
                files::Memory_Disk found = disk.copy();
                found.set_bytes(journal_name, emptied);
                std::optional<jet::Database> database;
                if (open_before) write(database.emplace(open(found)));
                found.set_bytes(path, left.bytes(path));
                found.set_bytes(journal_name, left.bytes(journal_name));
                lose(found);
                if (!open_before) database.emplace(open(found));
                const bool sound =
                    jet::check::check(*found.open(path, files::Access::read)).sound();
                damaged += !sound;
                const bool written = !failure_of([&] { write(*database); });
                // sound as far as it goes, without the pages that were to be appended
                const bool cut_off = database->status().blocked == jet::Blocked::cut_off;
                ASSERT_EQ(written, sound && !cut_off) << open_before;
                ASSERT_TRUE(written || found.bytes(path) == left.bytes(path));
            }
    };
    Session()(crashing);
    EXPECT_GT(damaged, 30);
}

TEST_F(Survival, a_damaged_file_is_shown_and_never_written) {
    auto bytes = disk.bytes(path);
    bytes.at(6 * 4096 + 2) ^= std::byte{0x55}; // the count of free bytes of some page
    disk.set_bytes(path, bytes);
    auto database = open(disk);
    EXPECT_GT(database.table(u"Sets")->row_count(), 0U);
    EXPECT_EQ(failure_of([&] { database.table(u"Sets")->insert({{1, u"x"}}); }), Failure::damaged);
    EXPECT_EQ(database.status().blocked, jet::Blocked::damaged);
    EXPECT_EQ(failure_of([&] {
                  database.table(u"Sets")->insert({{1, u"x"}});
              }),
              Failure::read_only);
    EXPECT_TRUE(disk.bytes(path) == bytes);
}

TEST_F(Survival, rows_stand_in_the_order_of_the_key_even_when_its_tree_is_broken) {
    const auto before = [&] {
        auto database = open(disk, jet::Mode::read_only);
        return content(database);
    }();
    auto bytes = disk.bytes(path);
    int broken = 0;
    for (std::size_t at = 0; at < bytes.size(); at += 4096) // every node and leaf of every tree
        if (bytes[at] == std::byte{3} || bytes[at] == std::byte{4}) {
            bytes[at + 0x18] = std::byte{0xFF};
            bytes[at + 0x19] = std::byte{0xFF};
            ++broken;
        }
    ASSERT_GT(broken, 5);
    disk.set_bytes(path, bytes);
    auto database = open(disk);
    EXPECT_TRUE(content(database) == before);
    auto third = database.table(u"Sets")->find({{0, before.at(u"Sets")[2][0]}});
    ASSERT_TRUE(third.next());
    EXPECT_EQ(third.values(), before.at(u"Sets")[2]);
    EXPECT_EQ(database.status().blocked, jet::Blocked::damaged);
    EXPECT_EQ(failure_of([&] { database.table(u"Sets")->insert({}); }), Failure::read_only);
}

/// Random damage: whatever is met, nothing crashes or hangs, and what the checker calls damaged is
/// not written to.
void edit_damaged(const std::vector<std::byte>& bytes) {
    files::Memory_Disk disk;
    disk.set_bytes(path, bytes);
    try {
        auto database = open(disk);
        const bool sound = database.check().sound();
        bool written = false;
        for (const auto& table : database.tables()) {
            try {
                for (auto cursor = table.rows(); cursor.next();) (void)cursor.values();
                std::optional<jet::Row_Place> row;
                if (auto cursor = table.rows(jet::Order::file); cursor.next()) row = cursor.id();
                if (!row) continue;
                table.erase(*row);
                written = true;
                table.insert({});
            } catch (const jet::Error&) {
                // refused or damaged: told, and that is all
            }
        }
        if (!sound) {
            EXPECT_FALSE(written) << "a damaged file was written to";
            EXPECT_TRUE(disk.bytes(path) == bytes);
        }
    } catch (const jet::Error&) {
        EXPECT_TRUE(disk.bytes(path) == bytes);
    }
}

/// Cuts a file at every page down to the `least`. Opening refuses what is left or says that the end
/// is missing, unless nothing but free pages went. @return how many cuts told nobody
/// @param filling what stands where the rest was
int silent_cuts(files::Memory_Disk& disk, std::size_t page_size, std::size_t least = 0,
                std::optional<std::byte> filling = std::nullopt) {
    const auto whole = disk.bytes(path);
    const auto before = [&] {
        auto database = open(disk);
        EXPECT_FALSE(database.status().lost_end);
        EXPECT_NE(database.status().blocked, jet::Blocked::damaged);
        return content(database);
    }();
    int silent = 0;
    for (auto size = whole.size(); size > least * page_size;) {
        size -= page_size;
        SCOPED_TRACE(size / page_size);
        const auto cut = disk.open(path, files::Access::read_write);
        cut->resize(size);
        if (filling) cut->write_at(size, jet::Page_Bytes(whole.size() - size, *filling));
        try {
            auto database = open(disk);
            const auto status = database.status();
            if (status.blocked == jet::Blocked::cut_off) {
                // a free page of the same filling before the cut is counted, too
                const auto missing = status.lost_end->whole - size;
                EXPECT_TRUE(filling ? status.lost_end->bytes >= missing
                                    : status.lost_end->bytes == missing);
                EXPECT_LE(status.lost_end->whole, whole.size());
                continue;
            }
            ++silent;
            EXPECT_EQ(faults(database), "");
            EXPECT_TRUE(content(database) == before);
        } catch (const jet::Error& error) {
            EXPECT_TRUE(size < page_size || error.kind == Failure::damaged) << error.what();
        }
    }
    disk.set_bytes(path, whole);
    return silent;
}

TEST(Damage, a_missing_end_is_told_at_opening) {
    if (!std::filesystem::exists(CV_SETS_SAMPLES)) GTEST_SKIP();
    for (const auto& sample : std::filesystem::directory_iterator(CV_SETS_SAMPLES)) {
        if (sample.path().extension() != ".mdb") continue;
        SCOPED_TRACE(sample.path().filename());
        files::Memory_Disk disk;
        load(disk, sample.path().string());
        const bool jet3 = disk.bytes(path).at(0x14) == std::byte{0};
        EXPECT_EQ(silent_cuts(disk, jet3 ? 2048 : 4096), 0);
        for (const int filling : {0, 0xFF}) {
            SCOPED_TRACE(filling);
            EXPECT_EQ(silent_cuts(disk, jet3 ? 2048 : 4096, 0, static_cast<std::byte>(filling)), 0);
        }
    }
}

TEST(Damage, a_missing_end_of_a_file_made_here_is_told_at_opening) {
    files::Memory_Disk disk;
    std::vector<jet::Row_Place> rows;
    const auto with_table = [&](auto act) {
        auto database = open(disk);
        act(*database.table(u"Notes"));
    };
    const auto grow = [&](std::size_t pages) {
        with_table([&](const jet::Table& table) {
            while (disk.open(path, files::Access::read)->size() < 4096 * pages) {
                const auto id = static_cast<std::int32_t>(rows.size());
                rows.push_back(table.insert({{0, id}, {1, std::u16string(2000, u'n')}}).id);
            }
        });
    };
    jet::Database::create(disk, path)
        .create_table(u"Notes", std::vector{column(u"id"), column(u"Note", Column_Type::memo)},
                      std::vector{primary_key(u"id")});
    for (const std::size_t pages :
         {30U, 512U, 544U, 546U}) { // the global map is full at 512 and 544
        SCOPED_TRACE(pages);
        grow(pages);
        EXPECT_EQ(disk.bytes(path).size() / 4096, pages);
        EXPECT_EQ(silent_cuts(disk, 4096, pages - 20), 0);
        const auto whole = disk.bytes(path);
        for (const std::size_t at : {0U, 4U}) { // kind and owner of the last page
            disk.open(path, files::Access::read_write)
                ->write_at(whole.size() - 4096 + at, std::array{std::byte{0x77}});
            EXPECT_EQ(open(disk).status().blocked, jet::Blocked::damaged);
            disk.set_bytes(path, whole);
        }
    }
    with_table([&](const jet::Table& table) {
        for (std::size_t i = rows.size() - 20; i < rows.size(); ++i) table.erase(rows[i]);
    });
    EXPECT_GT(silent_cuts(disk, 4096, 540), 2) << "free pages are no loss";
}

TEST(Damage, random_bytes_never_crash_reading_or_editing) {
    const int runs = support::long_tests() ? 100000 : 400;
    std::mt19937 random(4711);
    std::vector<files::Memory_Disk::Bytes> samples;
    for (const auto* name : {"library_2003", "worn_library", "indexTestV2000", "overflowTestV2000",
                             "testV1997", "orphans", "testUnicodeCompV2003", "delColTestV2003"}) {
        files::Memory_Disk disk;
        if (!load(disk, std::string(CV_SETS_SAMPLES "/") + name + ".mdb")) GTEST_SKIP();
        samples.push_back(disk.bytes(path));
    }
    const auto below = [&](std::size_t bound) { return random() % bound; };
    for (int run = 0; run < runs; ++run) {
        SCOPED_TRACE(run);
        auto bytes = samples[below(samples.size())];
        const auto pages = bytes.size() / 2048;
        for (auto changes = 1 + below(8); changes > 0; --changes) {
            // most damage goes to the heads of pages, where it hurts
            auto at = below(pages) * 2048 + (below(2) == 0 ? below(64) : below(2048));
            if (below(3) == 0) at = below(std::min<std::size_t>(bytes.size(), 16 * 4096));
            bytes[at] = static_cast<std::byte>(below(4) == 0 ? 0xFF : below(256));
        }
        if (below(20) == 0) bytes.resize(below(bytes.size()));
        edit_damaged(bytes);
        if (testing::Test::HasFailure()) return;
    }
}

} // namespace
