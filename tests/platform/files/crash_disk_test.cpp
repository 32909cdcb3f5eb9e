#include "support/crash_sweep.h"

#include "platform/files/replace.h"

#include <gmock/gmock.h>

using namespace files;
using support::Outcome;
using testing::AnyOf;
using testing::ElementsAre;
using testing::Eq;
using testing::IsEmpty;

namespace {

using Fate = Crash_Disk::Fate;

std::vector<std::byte> filled(std::size_t count, int value) {
    return std::vector<std::byte>(count, static_cast<std::byte>(value));
}

Memory_Disk after(const Crash_Disk& disk, const Crash_Disk::Fates& fates) {
    std::mt19937 torn(1);
    return disk.after_power_loss(fates, torn);
}

TEST(Crash_Disk, only_what_was_synced_is_certain) {
    Memory_Disk start;
    start.set_bytes("old", filled(1000, 1));
    Crash_Disk disk(start);
    const auto old = disk.open("old", Access::read_write);
    old->write_at(0, filled(10, 2));
    old->sync();
    old->write_at(500, filled(1000, 3));
    disk.open("new", Access::create_new)->write_at(0, filled(5, 4));
    EXPECT_EQ(disk.pending(), 3U);

    Memory_Disk lost = after(disk, [](std::size_t) { return Fate::lost; });
    auto expected = filled(1000, 1);
    std::fill_n(expected.begin(), 10, std::byte{2});
    EXPECT_EQ(lost.bytes("old"), expected);
    EXPECT_EQ(lost.identity("old"), disk.identity("old"));
    EXPECT_THAT(lost.paths(), ElementsAre("old")); // the folder was not synced

    Memory_Disk kept = after(disk, [](std::size_t) { return Fate::kept; });
    EXPECT_EQ(kept.bytes("old").size(), 1500U);
    EXPECT_EQ(kept.bytes("new"), filled(5, 4));

    Memory_Disk name_only =
        after(disk, [](std::size_t i) { return i == 1 ? Fate::kept : Fate::lost; });
    EXPECT_EQ(name_only.bytes("new"), filled(0, 0));
}

TEST(Crash_Disk, names_arrive_with_their_folder) {
    Memory_Disk start;
    start.make_folder("f");
    start.set_bytes("f/a", filled(1, 1));
    Crash_Disk disk(start);
    const auto lost = [&] { return after(disk, [](std::size_t) { return Fate::lost; }).paths(); };
    disk.rename("f/a", "f/b");
    EXPECT_THAT(lost(), ElementsAre("f/a"));
    disk.sync_folder("");
    EXPECT_THAT(lost(), ElementsAre("f/a"));
    disk.sync_folder("f");
    EXPECT_THAT(lost(), ElementsAre("f/b"));
    disk.remove("f/b");
    EXPECT_THAT(lost(), ElementsAre("f/b"));
    disk.sync_folder("f");
    EXPECT_THAT(lost(), IsEmpty());
}

TEST(Crash_Disk, a_new_folder_arrives_with_the_one_above) {
    Memory_Disk start;
    start.make_folder("f");
    start.make_folder("empty");
    Crash_Disk disk(start);
    const auto lost = [&] { return after(disk, [](std::size_t) { return Fate::lost; }); };
    disk.make_folder("f/g");
    disk.open("f/g/a", Access::create_new)->sync();
    disk.sync_folder("f/g");
    EXPECT_TRUE(lost().folder_exists("empty"));
    EXPECT_FALSE(lost().folder_exists("f/g"));
    EXPECT_THAT(lost().paths(), IsEmpty()) << "whatever is in it is lost with it";
    disk.sync_folder("f");
    EXPECT_THAT(lost().paths(), ElementsAre("f/g/a"));
}

TEST(Crash_Disk, a_torn_write_is_whole_in_each_sector) {
    Memory_Disk start;
    start.set_bytes("a", filled(4096, 1));
    Crash_Disk disk(start);
    disk.open("a", Access::read_write)->write_at(256, filled(3000, 2));
    bool mixed = false;
    for (unsigned seed = 0; seed < 20; ++seed) {
        std::mt19937 torn(seed);
        Memory_Disk found = disk.after_power_loss([](std::size_t) { return Fate::torn; }, torn);
        const auto bytes = found.bytes("a");
        ASSERT_EQ(bytes.size(), 4096U);
        for (std::size_t at = 512; at < 3072; at += 512) // those that the write fills
            ASSERT_EQ(std::count(&bytes[at], &bytes[at] + 512, bytes[at]), 512) << seed;
        mixed = mixed || bytes[512] != bytes[1024];
    }
    EXPECT_TRUE(mixed);
}

/// The sweep must find what it is there to find: writing in place is not safe, replacing is.
TEST(Crash_Sweep, replacing_a_file_survives_everything) {
    Memory_Disk before;
    before.set_bytes("a", filled(1500, 1));
    const auto old_content = filled(1500, 1);
    const auto new_content = filled(2000, 2);
    const auto check = [&](Disk& disk, Outcome outcome) {
        const auto found = read_file(disk, "a");
        if (outcome == Outcome::finished)
            EXPECT_EQ(found, new_content);
        else
            EXPECT_THAT(found, AnyOf(Eq(old_content), Eq(new_content)));
    };
    const auto replace = [&](Disk& disk) { replace_file(disk, "a", new_content); };
    EXPECT_GT(support::sweep_crashes(before, replace, check), 20);
    EXPECT_GT(support::sweep_refusals(before, replace, check), 8);
}

TEST(Crash_Sweep, a_refusal_before_the_name_changes_leaves_the_old_file_alone) {
    using Call = Faulty_Disk::Call;
    for (const Call call : {Call::open, Call::write, Call::sync, Call::rename}) {
        Memory_Disk disk;
        disk.set_bytes("a", filled(100, 1));
        Faulty_Disk faulty(disk);
        faulty.set_fault({call, 1, Failure::disk_full, false, ""});
        EXPECT_THROW(replace_file(faulty, "a", filled(10, 2)), Error);
        EXPECT_THAT(disk.paths(), ElementsAre("a")) << static_cast<int>(call);
        EXPECT_EQ(disk.bytes("a"), filled(100, 1));
    }
}

TEST(Crash_Sweep, finds_that_writing_in_place_is_not_safe) {
    Memory_Disk before;
    before.set_bytes("a", filled(1500, 1));
    bool mixed = false;
    support::sweep_crashes(
        before,
        [](Disk& disk) {
            const auto file = disk.open("a", Access::read_write);
            file->write_at(0, filled(1500, 2));
            file->sync();
        },
        [&](Disk& disk, Outcome) {
            const auto found = read_file(disk, "a");
            mixed = mixed || (found != filled(1500, 1) && found != filled(1500, 2));
        });
    EXPECT_TRUE(mixed);
}

TEST(Faulty_Disk, refuses_the_calls_that_are_asked_for) {
    using Call = Faulty_Disk::Call;
    Memory_Disk disk;
    Faulty_Disk faulty(disk);
    const auto file = faulty.open("a", Access::create_new);
    faulty.set_fault({Call::write, 2, Failure::disk_full, true, ""});
    file->write_at(0, filled(10, 1));
    EXPECT_FALSE(faulty.struck());
    EXPECT_THROW(file->write_at(10, filled(10, 2)), Error);
    EXPECT_EQ(file->size(), 15U); // a short write
    EXPECT_THROW(file->write_at(0, filled(10, 3)), Error);
    file->sync();
    EXPECT_TRUE(faulty.struck());
    EXPECT_EQ(faulty.calls(Call::write), 3);
    faulty.clear_fault();
    faulty.limit_room(20);
    file->write_at(0, filled(35, 4));
    EXPECT_THROW(file->write_at(35, filled(1, 4)), Error);
    file->write_at(0, filled(35, 5)); // what is there can be overwritten
    faulty.set_fault({Call::lock, 1, Failure::locked_elsewhere, false, ""});
    EXPECT_FALSE(file->lock(Lock::shared, {}));
    EXPECT_TRUE(file->lock(Lock::shared, {}));
}

} // namespace
