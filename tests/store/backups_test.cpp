// Copies before the first change, and bringing one back.

#include "store/backups_library.h"
#include "support/crash_sweep.h"

#include <gmock/gmock.h>

using namespace store;
using namespace Qt::Literals::StringLiterals;
using copies::noon;
using copies::Program;
using copies::text;
using testing::ElementsAre;
using undo::Content;
using undo::content;
using undo::difference;
using undo::Person;

namespace {

TEST_F(Copies, one_is_made_before_the_first_change_of_a_run) {
    put();
    const auto before = disk.bytes("a.mdb");
    Program run(disk, time);
    run.db.Connection_Start(u"a.mdb"_s);
    library::sets(run.db, 8);
    library::cvs(run.db, 1);
    EXPECT_FALSE(run.db.DB_Rename_CVSet(QString(300, u'x'), 0)) << "refused: nothing is written";
    EXPECT_THAT(names(), ElementsAre());
    for (int value = 1; value < 4; ++value) ASSERT_TRUE(run.change("a.mdb", value));
    EXPECT_THAT(names(), ElementsAre("a 2026-03-01 12-00-00.mdb"));
    EXPECT_EQ(disk.bytes("Sicherungen/a 2026-03-01 12-00-00.mdb"), before);
    EXPECT_NE(disk.bytes("a.mdb"), before);
}

TEST_F(Copies, a_library_made_in_this_run_needs_none_until_another_lies_there) {
    put();
    Program run(disk, time);
    run.backups.made_now(u"a.mdb"_s);
    ASSERT_TRUE(run.change("a.mdb", 1));
    EXPECT_THAT(names(), ElementsAre());
    disk.remove("a.mdb");
    put();
    ASSERT_TRUE(run.change("a.mdb", 1));
    EXPECT_EQ(names().size(), 1U);
}

TEST_F(Copies, nobody_can_write_while_one_is_made) {
    put();
    struct Keeper : Before_First_Write {
        explicit Keeper(clsDBConn& other_) : other(other_) {}
        bool keep_copy(const QString&) override {
            ++asked;
            std::int16_t number = 0;
            EXPECT_EQ(other.DB_Add_CVSet(u"x"_s, number, 8), 0);
            EXPECT_EQ(library::trouble(other), "locked_elsewhere");
            return true;
        }
        clsDBConn& other;
        int asked = 0;
    };
    clsDBConn other(disk);
    other.Connection_Start(u"a.mdb"_s);
    Keeper keeper(other);
    db.keep_copies(&keeper);
    db.Connection_Start(u"a.mdb"_s);
    Person person(db);
    person.write(1, 900, 1);
    person.write(1, 901, 1);
    EXPECT_EQ(keeper.asked, 1);
}

TEST_F(Copies, an_old_library_is_upgraded_only_when_there_is_one) {
    for (const bool possible : {true, false}) {
        put("a.mdb", "old_library");
        const auto before = disk.bytes("a.mdb");
        if (!possible) {
            disk.set_bytes("user/Sicherungen", {});
            disk.remove("Sicherungen/a 2026-03-01 12-00-00.mdb");
            disk.protect_folder("Sicherungen");
        }
        Program run(disk, time);
        run.db.Connection_Start(u"a.mdb"_s);
        ASSERT_TRUE(run.db.Connection_Active());
        EXPECT_FALSE(library::sets(run.db, 8).empty());
        EXPECT_EQ(run.trouble(), possible ? "" : "told");
        if (possible) {
            EXPECT_EQ(disk.bytes("Sicherungen/a 2026-03-01 12-00-00.mdb"), before);
            EXPECT_NE(disk.bytes("a.mdb"), before);
        } else {
            EXPECT_EQ(content(disk).tables.size(), 2U) << "no tables were added";
            Person person(run.db);
            EXPECT_NE(person.write(1, 900, 1).CVID, 0) << "a change that was asked for is made";
        }
    }
}

TEST_F(Copies, the_newest_ten_are_kept_and_nothing_else_is_touched) {
    put();
    disk.make_folder("Sicherungen");
    std::vector<std::string> strangers{"ab 2026-03-01 11-00-00.mdb",
                                       "a 2026-03-01 11-00-00.mdb-journal",
                                       "a 2026-13-01 11-00-00.mdb",
                                       "a 2026-03-01 11-00-0x.mdb",
                                       "a 2026-03-01 11-00-00 2026-03-01 11-00-00.mdb",
                                       "a 2026-03-01_11-00-00.mdb",
                                       "A 2026-03-01 11-00-00.mdb",
                                       "a2026-03-01 11-00-00.mdb",
                                       "a.mdb"};
    for (const std::string& name : strangers) disk.set_bytes("Sicherungen/" + name, {});
    for (int i = 0; i < 14; ++i) change_at(i, i);
    std::vector<std::string> expected = strangers;
    for (int i = 4; i < 14; ++i)
        expected.push_back("a " + noon.addSecs(i).toString(u"yyyy-MM-dd HH-mm-ss"_s).toStdString() +
                           ".mdb");
    EXPECT_THAT(names(), testing::UnorderedElementsAreArray(expected));
}

TEST_F(Copies, what_a_crash_left_of_one_goes_with_the_next) {
    put();
    disk.make_folder("Sicherungen");
    const std::vector<std::string> cut_off{"a 2026-03-01 11-00-00.mdb.new1",
                                           "a 2025-12-31 23-59-59.mdb.new12"};
    const std::vector<std::string> others{"a 2026-03-01 12-00-00.mdb.new1", // made just now
                                          "a 2026-03-01 11-00-00.mdb.new",
                                          "a 2026-03-01 11-00-00.mdb.new1x",
                                          "a 2026-03-01 11-00-00.mdb.old1",
                                          "b 2026-03-01 11-00-00.mdb.new1",
                                          "a.mdb.new1"};
    for (const auto* names_ : {&cut_off, &others})
        for (const std::string& name : *names_) disk.set_bytes("Sicherungen/" + name, {});
    change_at(0, 1);
    auto expected = others;
    expected.push_back("a 2026-03-01 12-00-00.mdb");
    EXPECT_THAT(names(), testing::UnorderedElementsAreArray(expected));
}

TEST_F(Copies, the_first_one_is_not_lost_with_the_folder_that_was_made_for_it) {
    put();
    disk.set_bytes("Sicherungen", {}); // so it goes to the user's own
    files::Crash_Disk crashing(disk);
    {
        Program run(crashing, time);
        ASSERT_TRUE(run.change("a.mdb", 1));
    }
    std::mt19937 unused;
    files::Memory_Disk left = crashing.after_power_loss(
        [](std::size_t) { return files::Crash_Disk::Fate::lost; }, unused);
    EXPECT_NE(left.bytes("a.mdb"), disk.bytes("a.mdb"));
    const auto copies = Backups(left, u"user"_s).copies_of(u"a.mdb"_s);
    ASSERT_EQ(copies.size(), 1U);
    EXPECT_EQ(left.bytes(copies.front().path.toStdString()), disk.bytes("a.mdb"));
}

TEST_F(Copies, two_within_a_second_and_a_clock_that_goes_back_lose_none) {
    put();
    change_at(0, 1);
    change_at(0, 2);
    EXPECT_EQ(names().size(), 2U);
    for (int i = 2; i < 12; ++i) change_at(i, i);
    ASSERT_EQ(names().size(), 10U);
    const auto present = disk.bytes("a.mdb");
    change_at(-3600, 20); // the clock was set back: older than all by its name
    EXPECT_EQ(names().size(), 10U);
    EXPECT_EQ(names().front(), "a 2026-03-01 11-00-00.mdb");
    EXPECT_EQ(disk.bytes("Sicherungen/a 2026-03-01 11-00-00.mdb"), present);
}

TEST_F(Copies, libraries_of_any_name_keep_theirs_apart) {
    disk.make_folder("o");
    const std::vector<std::string> odd{"o/a.mdb",
                                       "o/a.MDB",
                                       "o/a.b.mdb",
                                       "o/50% [x].mdb",
                                       "o/ä ß.mdb",
                                       "o/-a*?.mdb",
                                       "o/a 2026-03-01 12-00-00.mdb"};
    for (const std::string& path : odd) put(path);
    for (const std::string& path : odd) {
        change_at(0, 1, path);
        change_at(60, 2, path);
    }
    EXPECT_EQ(names("o/Sicherungen").size(), 2 * odd.size());
    Program last(disk, time);
    for (const std::string& path : odd) {
        SCOPED_TRACE(path);
        const auto found = last.backups.copies_of(text(path));
        ASSERT_EQ(found.size(), 2U);
        EXPECT_EQ(found.front().made, noon.addSecs(60));
        EXPECT_EQ(found.back().made, noon);
        EXPECT_EQ(found.front().sets, 45);
    }
}

TEST_F(Copies, where_the_folder_cannot_be_made_they_go_to_the_users_own) {
    for (const std::string folder : {"one", "two"}) {
        disk.make_folder(folder);
        put(folder + "/a.mdb");
        disk.set_bytes(folder + "/Sicherungen", {}); // a file has the name
        change_at(0, 1, folder + "/a.mdb");
        change_at(1, 2, folder + "/a.mdb");
    }
    Program last(disk, time);
    disk.set_bytes(last.backups.copies_of(u"one/a.mdb"_s).front().path.toStdString(), {});
    const auto one = last.backups.copies_of(u"one/a.mdb"_s);
    const auto two = last.backups.copies_of(u"two/a.mdb"_s);
    ASSERT_EQ(one.size(), 2U);
    ASSERT_EQ(two.size(), 2U);
    EXPECT_EQ(one.front().sets, std::nullopt) << "listed, but not a library";
    EXPECT_EQ(one.back().sets, 45);
    EXPECT_EQ(two.front().sets, 45);
    EXPECT_TRUE(two.front().path.startsWith(u"user/Sicherungen/"_s));
}

TEST_F(Copies, one_is_brought_back_and_the_present_library_becomes_one) {
    put();
    const Content before = content(disk);
    change_at(0, 1);
    time.set_date(noon.addSecs(60));
    Program run(disk, time);
    ASSERT_TRUE(run.change("a.mdb", 2));
    clsDBConn other(disk);
    other.Connection_Start(u"a.mdb"_s);
    const Content present = content(disk);
    run.db.Connection_Close();
    const auto found = run.backups.copies_of(u"a.mdb"_s);
    ASSERT_EQ(found.size(), 2U);
    ASSERT_TRUE(run.backups.restore(found.back().path, u"a.mdb"_s));
    EXPECT_EQ(difference(content(disk), before), "");
    const auto now_there = run.backups.copies_of(u"a.mdb"_s);
    ASSERT_EQ(now_there.size(), 3U);
    EXPECT_EQ(difference(content(disk, now_there.front().path.toStdString()), present), "");
    std::int16_t number = 0;
    EXPECT_EQ(other.DB_Add_CVSet(u"x"_s, number, 8), 0);
    EXPECT_EQ(library::trouble(other), "replaced");
    ASSERT_TRUE(run.change("a.mdb", 3)) << library::trouble(run.db);
    EXPECT_EQ(run.backups.copies_of(u"a.mdb"_s).size(), 4U) << "a library like any other";
    EXPECT_EQ(library::faults(disk, "a.mdb"), std::vector<std::string>());
}

TEST_F(Copies, the_oldest_of_ten_can_be_brought_back) {
    put();
    const Content first = content(disk);
    for (int i = 0; i < 10; ++i) change_at(i, i);
    time.set_date(noon.addSecs(60));
    Program run(disk, time);
    const auto found = run.backups.copies_of(u"a.mdb"_s);
    ASSERT_EQ(found.size(), 10U);
    ASSERT_TRUE(run.backups.restore(found.back().path, u"a.mdb"_s));
    EXPECT_EQ(difference(content(disk), first), "");
    EXPECT_EQ(run.backups.copies_of(u"a.mdb"_s).size(), 10U);
}

TEST_F(Copies, a_damaged_or_missing_library_is_replaced_and_its_journal_is_not_applied) {
    for (const bool missing : {true, false}) {
        put();
        change_at(missing ? 0 : 60, 1);
        const auto damaged = std::vector<std::byte>(5000, std::byte{7});
        disk.set_bytes("a.mdb-journal", damaged);
        if (missing)
            disk.remove("a.mdb");
        else
            disk.set_bytes("a.mdb", damaged);
        Program run(disk, time);
        const auto found = run.backups.copies_of(u"a.mdb"_s);
        ASSERT_TRUE(run.backups.restore(found.front().path, u"a.mdb"_s)) << run.trouble();
        EXPECT_FALSE(disk.file_exists("a.mdb-journal"));
        EXPECT_EQ(run.backups.copies_of(u"a.mdb"_s).size(), found.size() + (missing ? 0 : 1));
        EXPECT_EQ(library::faults(disk, "a.mdb"), std::vector<std::string>());
    }
    EXPECT_TRUE(disk.file_exists("a.mdb-journal-aside-2"));
}

/// What the list tells of a copy.
using Told = std::pair<std::optional<int>, Soundness>;

TEST_F(Copies, a_spoiled_one_is_known_by_its_rows_and_its_end) {
    put("a.mdb", "library_2003");
    change_at(0, 1);
    const std::string copy = "Sicherungen/a 2026-03-01 12-00-00.mdb";
    const std::vector<std::byte> whole = disk.bytes(copy);
    const auto told = [&](std::size_t page, std::size_t pages) {
        auto bytes = whole;
        if (page != 0) std::fill_n(&bytes[page * 4096], 4096, std::byte{0x5A});
        bytes.resize(pages * 4096);
        disk.set_bytes(copy, bytes);
        Program run(disk, time);
        const Backup found = run.backups.copies_of(u"a.mdb"_s).front();
        EXPECT_EQ(run.backups.restore(found.path, u"b.mdb"_s), found.sets.has_value());
        return Told(found.sets, found.soundness);
    };
    const std::size_t pages = whole.size() / 4096;
    EXPECT_EQ(told(0, pages), Told(45, Soundness::whole));
    EXPECT_EQ(told(0, 80), Told(45, Soundness::cut_off));
    EXPECT_EQ(told(0, 20).first, std::nullopt) << "Sets is gone";
    EXPECT_EQ(told(68, pages).first, std::nullopt) << "the rows of Sets";
    EXPECT_EQ(told(pages - 1, pages), Told(45, Soundness::damaged)) << "those of CVs";
}

TEST_F(Copies, what_cannot_be_read_or_kept_is_not_brought_back) {
    put();
    change_at(0, 1);
    change_at(1, 2);
    const auto present = disk.bytes("a.mdb");
    Program run(disk, time);
    const auto found = run.backups.copies_of(u"a.mdb"_s);
    disk.set_bytes(found.front().path.toStdString(), {});
    EXPECT_FALSE(run.backups.restore(found.front().path, u"a.mdb"_s));
    EXPECT_EQ(run.backups.take_trouble()->kind, Failure::damaged);
    EXPECT_FALSE(run.backups.restore(u"nicht da"_s, u"a.mdb"_s));
    {
        clsDBConn other(disk);
        other.Connection_Start(u"a.mdb"_s);
        const Operation held(other);
        EXPECT_FALSE(run.backups.restore(found.back().path, u"a.mdb"_s));
        EXPECT_EQ(run.backups.take_trouble()->kind, Failure::locked_elsewhere);
    }
    disk.protect_folder("Sicherungen");
    disk.set_bytes("user/Sicherungen", {});
    EXPECT_FALSE(run.backups.restore(found.back().path, u"a.mdb"_s));
    EXPECT_EQ(run.backups.take_trouble()->kind, Failure::denied);
    EXPECT_EQ(disk.bytes("a.mdb"), present);
}

} // namespace
