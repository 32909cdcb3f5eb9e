#include "platform/jet/pages/pager_support.h"

#include "platform/files/faulty_disk.h"
#include "platform/jet/pages/pager_cache.h"

#include <gmock/gmock.h>

using namespace pager_tests;
using files::Memory_Disk;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

template <class Step>
std::optional<jet::Failure> failure_of(Step step) {
    try {
        step();
    } catch (const jet::Error& error) {
        return error.kind;
    }
    return std::nullopt;
}

TEST(Pager, a_transaction_shows_at_once_and_stays) {
    Memory_Disk disk = disk_with(4);
    {
        const auto pager = open_pager(disk, name, Open_Mode::read_write);
        pager->begin_write();
        const jet::Page before = pager->read(2);
        set_page(*pager, 2, 1);
        EXPECT_EQ(pager->append(), 4U);
        set_page(*pager, 4, 1);
        const jet::Page between = pager->read(2);
        set_page(*pager, 2, 2);
        EXPECT_EQ(*before, page_of(2, 0)); // a page once read keeps its content
        EXPECT_EQ(*between, page_of(2, 1));
        EXPECT_EQ(*pager->read(2), page_of(2, 2));
        EXPECT_EQ(pager->page_count(), 5U);
        EXPECT_EQ(disk.bytes(name), file_of(4)); // nothing reaches the file before the commit
        pager->commit();
        EXPECT_FALSE(pager->in_write());
    }
    const auto pager = open_pager(disk, name, Open_Mode::read_only);
    pager->begin_read();
    EXPECT_EQ(pager->page_count(), 5U);
    EXPECT_EQ(*pager->read(1), page_of(1, 0));
    EXPECT_EQ(*pager->read(2), page_of(2, 2));
    EXPECT_EQ(*pager->read(4), page_of(4, 1));
    EXPECT_EQ(failure_of([&] { pager->read(5); }), jet::Failure::damaged);
    pager->end_read();
}

TEST(Pager, rollback_leaves_the_file_untouched) {
    Memory_Disk disk = disk_with(4);
    const auto pager = open_pager(disk, name, Open_Mode::read_write);
    pager->begin_write();
    set_page(*pager, 2, 1);
    pager->append();
    pager->rollback();
    EXPECT_EQ(content(*pager), file_of(4));
    EXPECT_EQ(disk.bytes(name), file_of(4));
}

TEST(Pager, a_change_that_changes_nothing_writes_nothing) {
    Memory_Disk disk = disk_with(4);
    files::Faulty_Disk counted(disk);
    const auto pager = open_pager(counted, name, Open_Mode::read_write);
    const int before = counted.calls(files::Faulty_Disk::Call::write);
    put(*pager, {1, 2}, 0);
    EXPECT_EQ(counted.calls(files::Faulty_Disk::Call::write), before);
    EXPECT_EQ(counted.calls(files::Faulty_Disk::Call::sync), 0);
}

TEST(Pager, a_small_change_waits_for_the_medium_twice) {
    Memory_Disk disk = disk_with(100);
    files::Faulty_Disk counted(disk);
    const auto pager = open_pager(counted, name, Open_Mode::read_write);
    put(*pager, {7}, 1); // the first change syncs the name of the journal too
    const int before = counted.calls(files::Faulty_Disk::Call::sync);
    const int folders = counted.calls(files::Faulty_Disk::Call::sync_folder);
    const int writes = counted.calls(files::Faulty_Disk::Call::write);
    put(*pager, {7, 8, 9}, 2);
    EXPECT_EQ(counted.calls(files::Faulty_Disk::Call::sync) - before, 2);
    EXPECT_EQ(counted.calls(files::Faulty_Disk::Call::sync_folder) - folders, 0);
    EXPECT_EQ(counted.calls(files::Faulty_Disk::Call::write) - writes, 3); // journal, pages, head
}

TEST(Pager, what_cannot_be_opened_says_why) {
    struct Case {
        const char* what;
        Page_Bytes content;
        jet::Failure kind;
    };
    Page_Bytes renamed = header_page();
    renamed[4] = std::byte{'X'};
    const Case cases[] = {
        {"empty", {}, jet::Failure::not_a_database},
        {"short", Page_Bytes(20), jet::Failure::not_a_database},
        {"text", Page_Bytes(4096, std::byte{'a'}), jet::Failure::not_a_database},
        {"another name", renamed, jet::Failure::unsupported},
        {"a later generation", header_page(2), jet::Failure::unsupported},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Memory_Disk disk;
        disk.set_bytes(name, c.content);
        EXPECT_EQ(failure_of([&] { open_pager(disk, name, Open_Mode::read_write); }), c.kind);
        EXPECT_THAT(disk.paths(), ElementsAre(name)); // and nothing is left beside it
    }
    Memory_Disk disk;
    EXPECT_EQ(failure_of([&] { open_pager(disk, "none.mdb", Open_Mode::read_write); }),
              jet::Failure::not_found);
}

TEST(Pager, what_cannot_be_written_is_shown_and_says_why) {
    struct Case {
        const char* what;
        std::function<void(Memory_Disk&)> prepare;
        Open_Mode mode;
        jet::Failure kind;
    };
    const Case cases[] = {
        {"asked for", [](Memory_Disk&) {}, Open_Mode::read_only, jet::Failure::read_only},
        {"file protected", [](Memory_Disk& d) { d.protect(name); }, Open_Mode::read_write,
         jet::Failure::read_only},
        {"folder protected", [](Memory_Disk& d) { d.protect_folder(""); }, Open_Mode::read_write,
         jet::Failure::read_only},
        {"broken length",
         [](Memory_Disk& d) {
             auto bytes = file_of(4);
             bytes.resize(bytes.size() + 100);
             d.set_bytes(name, bytes);
         },
         Open_Mode::read_write, jet::Failure::damaged},
        {"Jet 3", [](Memory_Disk& d) { d.set_bytes(name, header_page(0, 2048)); },
         Open_Mode::read_write, jet::Failure::unsupported},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Memory_Disk disk = disk_with(4);
        c.prepare(disk);
        const auto pager = open_pager(disk, name, c.mode);
        ASSERT_TRUE(pager->report().refusal);
        EXPECT_EQ(pager->report().refusal->kind, c.kind);
        EXPECT_FALSE(content(*pager).empty());
        EXPECT_EQ(failure_of([&] { pager->begin_write(); }), c.kind);
        EXPECT_FALSE(pager->in_write());
    }
}

TEST(Pager, a_replaced_or_moved_file_is_never_written) {
    const std::function<void(Memory_Disk&)> cases[] = {
        [](Memory_Disk& d) { d.rename(name, "elsewhere.mdb"); },
        [](Memory_Disk& d) {
            d.set_bytes("new.mdb", file_of(4, 9));
            d.rename("new.mdb", name);
        },
        [](Memory_Disk& d) { d.remove(name); },
    };
    for (const bool inside : {false, true}) {
        for (const auto& disturb : cases) {
            Memory_Disk disk = disk_with(4);
            const auto pager = open_pager(disk, name, Open_Mode::read_write);
            put(*pager, {2}, 1);
            const auto before = disk.bytes(name);
            if (inside) pager->begin_write();
            if (inside) set_page(*pager, 3, 1);
            disturb(disk);
            std::map<std::string, std::vector<std::byte>> files;
            for (const auto& path : disk.paths()) files[path] = disk.bytes(path);
            EXPECT_EQ(failure_of([&] { inside ? pager->commit() : pager->begin_write(); }),
                      jet::Failure::replaced);
            for (const auto& [path, bytes] : files) EXPECT_EQ(disk.bytes(path), bytes) << path;
            EXPECT_EQ(content(*pager), before); // reading goes on
            EXPECT_EQ(failure_of([&] { pager->begin_write(); }), jet::Failure::replaced);
        }
    }
}

TEST(Pager, a_new_file_replaces_an_old_one_in_one_step) {
    Memory_Disk disk = disk_with(4);
    const std::vector<Page_Bytes> pages = {header_page(), page_of(1, 5)};
    const auto pager = jet::create_pager(disk, name, pages);
    EXPECT_EQ(content(*pager), file_of(2, 5));
    EXPECT_THAT(disk.paths(), ElementsAre(name, journal_name));
}

TEST(Pager, two_copies_see_each_other) {
    Memory_Disk disk = disk_with(6);
    const auto one = open_pager(disk, name, Open_Mode::read_write);
    const auto two = open_pager(disk, name, Open_Mode::read_write);
    const auto reader = open_pager(disk, name, Open_Mode::read_only);
    for (int state = 1; state < 50; ++state) {
        const auto& writer = state % 3 ? one : two;
        put(*writer, {1, 3, 5}, state);
        if (state % 10 == 0) put(*writer, {5U + static_cast<unsigned>(state) / 10}, 0);
        ASSERT_EQ(content(*one), disk.bytes(name)) << state;
        ASSERT_EQ(content(*two), disk.bytes(name)) << state;
        ASSERT_EQ(content(*reader), disk.bytes(name)) << state;
    }
}

TEST(Pager, locks_keep_copies_apart) {
    Memory_Disk disk = disk_with(4);
    const auto one = open_pager(disk, name, Open_Mode::read_write);
    const auto two = open_pager(disk, name, Open_Mode::read_write);
    one->begin_write();
    EXPECT_EQ(failure_of([&] { two->begin_read(); }), jet::Failure::locked_elsewhere);
    EXPECT_EQ(failure_of([&] { two->begin_write(); }), jet::Failure::locked_elsewhere);
    one->commit();
    two->begin_read();
    one->begin_read(); // readers do not disturb each other
    EXPECT_EQ(failure_of([&] { one->begin_write(); }), jet::Failure::locked_elsewhere);
    two->end_read();
    put(*one, {1}, 1); // a reader becomes a writer and a reader again
    EXPECT_EQ(failure_of([&] { two->begin_write(); }), jet::Failure::locked_elsewhere);
    one->end_read();
    put(*two, {1}, 2);
}

TEST(Pager, pages_stay_cached_until_somebody_changes_the_file) {
    Memory_Disk disk = disk_with(6);
    files::Faulty_Disk counted(disk);
    const auto one = open_pager(counted, name, Open_Mode::read_write);
    const auto page_reads = [&] {
        const int before = counted.calls(files::Faulty_Disk::Call::read);
        content(*one);
        return counted.calls(files::Faulty_Disk::Call::read) - before -
               1; // the head of the journal
    };
    EXPECT_EQ(page_reads(), 6);
    EXPECT_EQ(page_reads(), 0);
    put(*one, {2}, 1);
    EXPECT_EQ(page_reads(), 0); // our own changes are known
    const auto two = open_pager(disk, name, Open_Mode::read_write);
    EXPECT_EQ(page_reads(), 0);
    put(*two, {3}, 1);
    EXPECT_EQ(page_reads(), 6);
    disk.open(name, files::Access::read_write)->write_at(4096, page_of(1, 7)); // a foreign program
    EXPECT_EQ(page_reads(), 6);
}

TEST(Pager, the_journal_goes_with_the_last_copy) {
    Memory_Disk disk = disk_with(4);
    auto one = open_pager(disk, name, Open_Mode::read_write);
    auto two = open_pager(disk, name, Open_Mode::read_write);
    put(*one, {1}, 1);
    one.reset();
    EXPECT_TRUE(disk.file_exists(journal_name));
    put(*two, {1}, 2);
    two.reset();
    EXPECT_THAT(disk.paths(), ElementsAre(name));
}

TEST(Pager, a_journal_that_was_deleted_by_hand_is_made_anew) {
    Memory_Disk disk = disk_with(4);
    auto one = open_pager(disk, name, Open_Mode::read_write);
    const auto two = open_pager(disk, name, Open_Mode::read_write);
    auto three = open_pager(disk, name, Open_Mode::read_write);
    put(*one, {1}, 1);
    content(*two);
    disk.remove(journal_name);
    put(*one, {1}, 2);
    ASSERT_TRUE(disk.file_exists(journal_name));
    EXPECT_EQ(content(*two), disk.bytes(name));
    const auto before = disk.bytes(journal_name);
    put(*two, {1}, 3);
    EXPECT_NE(disk.bytes(journal_name), before); // not in the one that nobody would find
    EXPECT_EQ(content(*one), disk.bytes(name));
    one.reset();
    three.reset(); // knows only the deleted one, and must not remove the new one
    EXPECT_TRUE(disk.file_exists(journal_name));
}

TEST(Page_Cache, the_longest_unused_page_goes_first) {
    jet::Page_Cache cache(std::size_t{8} << 20); // room for two
    for (const Page_Number n : {1U, 2U}) cache.put(n, std::make_shared<Page_Bytes>(n));
    EXPECT_TRUE(cache.find(1));
    cache.put(3, std::make_shared<Page_Bytes>(3));
    EXPECT_FALSE(cache.find(2));
    EXPECT_EQ(cache.find(1)->size(), 1U);
    cache.put(1, std::make_shared<Page_Bytes>(9));
    EXPECT_EQ(cache.find(1)->size(), 9U);
    EXPECT_TRUE(cache.find(3));
}

} // namespace
