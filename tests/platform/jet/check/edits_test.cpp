#include "platform/files/memory_disk.h"
#include "platform/jet/check/mutation.h"
#include "support/edit_script.h"

#include <gmock/gmock.h>

#include <cstdlib>

namespace jet::check {
namespace {

constexpr auto path = "edited.mdb";

/// Runs a script of random bytes on the file and judges what it left on the disk.
void edit_and_judge(files::Memory_Disk& disk, unsigned seed, std::size_t length) {
    std::mt19937 random(seed);
    std::vector<std::uint8_t> bytes(length);
    for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random());
    {
        auto database = Database::open(disk, path, Mode::read_write);
        Edit_Script script(bytes);
        ASSERT_NO_THROW(run_edits(database, script));
    }
    ASSERT_EQ(listing(check(disk.bytes(path))), "");
}

int rounds() { return std::getenv("LONG_TESTS") != nullptr ? 50 : 3; }

// Engine and checker were written apart from each other: what one writes, the other must find
// sound.
TEST(Check_Edits, samples_stay_sound) {
    for (const char* name : {"library_2003", "old_library", "indexTestV2000", "overflowTestV2000",
                             "delColTestV2003", "testUnicodeCompV2003"}) {
        files::Memory_Disk disk;
        disk.set_bytes(path, sample(name));
        if (disk.bytes(path).empty()) GTEST_SKIP() << "no samples";
        for (int seed = 0; seed < rounds(); ++seed) {
            SCOPED_TRACE(std::string(name) + ", seed " + std::to_string(seed));
            ASSERT_NO_FATAL_FAILURE(edit_and_judge(disk, static_cast<unsigned>(seed), 2000));
        }
    }
}

TEST(Check_Edits, a_file_of_all_kinds_stays_sound) {
    files::Memory_Disk disk;
    {
        auto database = Database::create(disk, path);
        make_tables_of_all_kinds(database);
    }
    ASSERT_EQ(listing(check(disk.bytes(path))), "");
    for (int seed = 0; seed < 4 * rounds(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        ASSERT_NO_FATAL_FAILURE(edit_and_judge(disk, static_cast<unsigned>(seed), 6000));
    }
    auto database = Database::open(disk, path, Mode::read_only);
    std::size_t rows = 0;
    for (const Table& table : database.tables()) rows += table.row_count();
    EXPECT_GT(rows, 50U) << "the scripts do too little";
}

void read_everything(Database& database) {
    for (const Table& table : database.tables(true)) try {
            auto rows = table.rows();
            while (rows.next()) static_cast<void>(rows.values());
        } catch (const Error&) { // the other tables are read all the same
        }
}

// Opens, reads and edits a file that may be damaged. @return whether all went without an error.
bool use(files::Memory_Disk& disk, Random& random) {
    std::vector<std::uint8_t> bytes(300);
    for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random());
    try {
        auto database = Database::open(disk, path, Mode::read_write);
        read_everything(database);
        Edit_Script script(bytes);
        run_edits(database, script);
        return true;
    } catch (const Error&) {
        return false;
    }
}

// A damaged file is never written to, and one without a fault stays without.
TEST(Check_Edits, damaged_files_are_refused_or_stay_sound) {
    int edited = 0;
    for (const char* name : {"adox_jet4", "library_2003", "indexTestV2000", "overflowTestV2000"}) {
        const File_Bytes original = sample(name);
        if (original.empty()) GTEST_SKIP() << "no samples";
        for (int seed = 0; seed < 12 * rounds(); ++seed) {
            SCOPED_TRACE(std::string(name) + ", seed " + std::to_string(seed));
            Random random(static_cast<Random::result_type>(seed));
            File_Bytes file = original;
            mutate(random, file);
            files::Memory_Disk disk;
            disk.set_bytes(path, file);
            const bool sound = check(file).sound();
            const bool used = use(disk, random);
            if (used) ++edited;
            const Report after = check(disk.bytes(path));
            ASSERT_EQ(after.sound(), sound) << used << listing(after);
            ASSERT_TRUE(sound || disk.bytes(path) == file) << "a damaged file was written to";
        }
    }
    EXPECT_GT(edited, 10);
}

} // namespace
} // namespace jet::check
