#include "platform/jet/pages/journal_support.h"

#include <gmock/gmock.h>

using namespace pager_tests;
using testing::ElementsAre;

namespace {

TEST(Journal, an_operation_cut_off_is_taken_back_on_opening) {
    Memory_Disk disk = killed_at(between);
    EXPECT_NE(disk.bytes(name), old_state());
    const auto pager = open_pager(disk, name, Open_Mode::read_write);
    EXPECT_EQ(pager->report().recovery, Recovery::rolled_back);
    EXPECT_EQ(disk.bytes(name), old_state());
    EXPECT_EQ(content(*pager), old_state());
}

TEST(Journal, an_operation_that_is_complete_stays) {
    Memory_Disk disk = killed_at(all_new);
    const auto pager = open_pager(disk, name, Open_Mode::read_write);
    EXPECT_EQ(pager->report().recovery, Recovery::none);
    EXPECT_EQ(disk.bytes(name), new_state());
}

TEST(Journal, an_operation_that_failed_is_taken_back_even_where_all_its_pages_are_new) {
    Memory_Disk disk = killed_at(all_new);
    edit(disk, journal_name, jet::journal_state_at, std::byte{0xA5});
    const auto pager = open_pager(disk, name, Open_Mode::read_write);
    EXPECT_EQ(disk.bytes(name), old_state());
}

TEST(Journal, a_copy_that_has_the_file_open_takes_back_what_another_left) {
    for (const bool writing : {false, true}) {
        Memory_Disk disk = disk_with(6);
        const auto pager = open_pager(disk, name, Open_Mode::read_write);
        put(*pager, {2}, 1);
        content(*pager);
        const Memory_Disk left = killed_at(between);
        disk.set_bytes(name, left.bytes(name)); // the same file, as the killed copy left it
        disk.set_bytes(journal_name, left.bytes(journal_name));
        if (writing) {
            pager->begin_write();
            pager->rollback();
        }
        EXPECT_EQ(content(*pager), old_state());
        EXPECT_EQ(disk.bytes(name), old_state());
        EXPECT_EQ(pager->report().recovery, Recovery::rolled_back);
    }
}

TEST(Journal, where_nothing_may_be_written_the_old_state_is_shown) {
    struct Case {
        const char* what;
        std::function<void(Memory_Disk&)> prepare;
        Open_Mode mode;
        std::string opened = name;
    };
    const auto link = [](Memory_Disk& d) { d.link(name, "second.mdb"); };
    const Case cases[] = {
        {"a second name", link, Open_Mode::read_write},
        {"by its second name", link, Open_Mode::read_write, "second.mdb"},
        {"asked for", [](Memory_Disk&) {}, Open_Mode::read_only},
        {"file protected", [](Memory_Disk& d) { d.protect(name); }, Open_Mode::read_write},
        {"journal protected", [](Memory_Disk& d) { d.protect(journal_name); },
         Open_Mode::read_write}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Memory_Disk disk = killed_at(between);
        c.prepare(disk);
        const auto before = disk.bytes(name);
        const auto pager = open_pager(disk, c.opened, c.mode);
        EXPECT_EQ(content(*pager), old_state());
        EXPECT_EQ(content(*pager), old_state());
        EXPECT_EQ(pager->report().recovery, Recovery::shown_only);
        EXPECT_TRUE(pager->report().refusal);
        EXPECT_EQ(disk.bytes(name), before);
    }
    Memory_Disk disk = killed_at(between); // and another copy may take it back meanwhile
    const auto reader = open_pager(disk, name, Open_Mode::read_only);
    EXPECT_EQ(content(*reader), old_state());
    const auto writer = open_pager(disk, name, Open_Mode::read_write);
    put(*writer, {4}, 4);
    EXPECT_EQ(content(*reader), disk.bytes(name));
}

using jet::Journal_Head;
using Table = std::vector<jet::Journal_Entry>;

/// A journal whose checksums are right, as somebody writes it who knows how.
std::function<void(Memory_Disk&)> forged(const std::function<void(Journal_Head&, Table&)>& change) {
    return [=](Memory_Disk& disk) {
        const auto bytes = disk.bytes(journal_name);
        Journal_Head head = *jet::decode_head(std::span(bytes).first(512));
        Table table = jet::decode_table(std::span(bytes).subspan(512, 80 * head.entries), 4096);
        const auto entries = head.entries;
        change(head, table);
        const auto table_bytes = encode(table, 4096);
        if (head.entries == entries) head.entries = static_cast<std::uint32_t>(table.size());
        head.table = jet::journal_checksum(table_bytes);
        const auto file = disk.open(journal_name, files::Access::read_write);
        file->write_at(0, encode(head));
        file->write_at(512, table_bytes);
    };
}

/// Each spoils one thing; the file must stay as it is, and the journal must stay readable under a
/// new name.
TEST(Journal, one_that_does_not_fit_is_set_aside_and_never_applied) {
    struct Case {
        const char* what;
        std::function<void(Memory_Disk&)> spoil;
    };
    const Case cases[] = {
        {"no head of ours",
         [](Memory_Disk& d) { d.set_bytes(journal_name, Page_Bytes(9, std::byte{'x'})); }},
        {"page 0 is another", [](Memory_Disk& d) { edit(d, name, 3000, std::byte{1}); }},
        {"a page that neither state explains",
         [](Memory_Disk& d) { edit(d, name, 3 * 4096, std::byte{0xEE}); }},
        {"file shorter",
         [](Memory_Disk& d) { d.open(name, files::Access::read_write)->resize(3 * 4096); }},
        {"file longer",
         [](Memory_Disk& d) { d.open(name, files::Access::read_write)->resize(9 * 4096); }},
        {"an older backup in its place", [](Memory_Disk& d) { d.set_bytes(name, file_of(6, 8)); }},
        {"another file with nothing to take back",
         [](Memory_Disk& d) {
             d.remove(name);
             d.set_bytes(name, old_state());
         }},
        {"a size to cut to, and no page", forged([](Journal_Head& head, Table& table) {
             head.state = Journal_State::take_back;
             head.size_before = 3 * 4096;
             table.clear();
         })},
        {"pages to cut off that are not named", forged([](Journal_Head& head, Table&) {
             head.state = Journal_State::take_back;
             head.size_before = 4 * 4096;
         })},
        {"a page named twice", forged([](Journal_Head&, Table& table) { table[1] = table[0]; })},
        {"pages in disorder",
         forged([](Journal_Head&, Table& table) { std::swap(table[0], table[1]); })},
        {"a page beyond the file",
         forged([](Journal_Head&, Table& table) { table.back().number = 7; })},
        {"a page far beyond",
         forged([](Journal_Head&, Table& table) { table.back().number = 0xFFFFFFFF; })},
        {"more pages than the file has", forged([](Journal_Head& head, Table&) {
             head.entries = 4'000'000'000; // and not what the table holds
         })},
        {"more than any file has",
         forged([](Journal_Head& head, Table&) { head.size_after = std::uint64_t{3} << 30; })},
        {"no whole pages", forged([](Journal_Head& head, Table&) { head.size_after += 512; })},
        {"nothing of it in another file",
         [](Memory_Disk& d) {
             const auto journal = killed_at(all_new).bytes(journal_name);
             d.remove(name);
             d.set_bytes(name, old_state());
             d.set_bytes(journal_name, journal);
             edit(d, journal_name, jet::journal_state_at, std::byte{0xA5});
         }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Memory_Disk disk = killed_at(between);
        c.spoil(disk);
        const auto file = disk.bytes(name);
        const auto journal = disk.bytes(journal_name);
        {
            const auto reader = open_pager(disk, name, Open_Mode::read_only);
            EXPECT_TRUE(reader->report().foreign_journal);
        }
        const auto pager = open_pager(disk, name, Open_Mode::read_write);
        EXPECT_TRUE(pager->report().foreign_journal);
        EXPECT_EQ(pager->report().set_aside, journal_name + "-aside-1");
        EXPECT_EQ(disk.bytes(journal_name + "-aside-1"), journal);
        EXPECT_EQ(disk.bytes(name), file);
        EXPECT_EQ(pager->report().recovery, Recovery::none);
    }
}

/// It may have been cut off before its sync, or spoiled on the medium when pages were written
/// already: whoever mends the file by hand needs it, and must know.
TEST(Journal, a_spoiled_one_is_kept_and_told) {
    struct Case {
        const char* what;
        std::function<void(Page_Bytes&)> spoil;
    };
    const Case cases[] = {
        {"table", [](Page_Bytes& journal) { journal[512 + 20] ^= std::byte{1}; }},
        {"an old page",
         [](Page_Bytes& journal) {
             journal[jet::journal_pages_at(4, 4096) + 100] ^= std::byte{1};
         }},
        {"end cut off", [](Page_Bytes& journal) { journal.resize(journal.size() - 1); }},
        {"table cut off", [](Page_Bytes& journal) { journal.resize(600); }},
        {"head", [](Page_Bytes& journal) { journal[20] ^= std::byte{0xEE}; }},
        {"state", [](Page_Bytes& journal) { journal[jet::journal_state_at] = std::byte{3}; }},
        {"head cut off", [](Page_Bytes& journal) { journal.resize(300); }},
        {"head cut off behind the entries", [](Page_Bytes& journal) { journal.resize(20); }},
        {"head cut off at once", [](Page_Bytes& journal) { journal.resize(9); }},
        {"head wiped", [](Page_Bytes& journal) {
             std::ranges::fill(std::span(journal).first(512), std::byte{});
         }}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Memory_Disk disk = killed_at(between);
        const auto file = disk.bytes(name);
        auto journal = disk.bytes(journal_name);
        c.spoil(journal);
        disk.set_bytes(journal_name, journal);
        {
            const auto reader = open_pager(disk, name, Open_Mode::read_only);
            EXPECT_TRUE(reader->report().spoiled_journal);
            EXPECT_EQ(content(*reader), file);
        }
        EXPECT_EQ(disk.bytes(journal_name), journal);
        const auto pager = open_pager(disk, name, Open_Mode::read_write);
        EXPECT_TRUE(pager->report().spoiled_journal);
        EXPECT_FALSE(pager->report().foreign_journal);
        EXPECT_EQ(pager->report().recovery, Recovery::none);
        ASSERT_EQ(pager->report().set_aside, journal_name + "-aside-1");
        EXPECT_EQ(disk.bytes(journal_name + "-aside-1"), journal);
        EXPECT_EQ(disk.bytes(name), file);
        put(*pager, {1}, 9);
    }
}

TEST(Journal, a_name_too_long_for_one_leaves_the_library_to_be_looked_at) {
    Memory_Disk disk;
    const std::string longest = std::string(246, 'a') + ".mdb";
    disk.set_bytes(longest, file_of(4));
    const auto pager = open_pager(disk, longest, Open_Mode::read_write);
    ASSERT_TRUE(pager->report().refusal);
    EXPECT_EQ(pager->report().refusal->blocked, jet::Blocked::journal_name);
    EXPECT_EQ(content(*pager), file_of(4));
}

/// Another copy could take it back meanwhile; what was shown must not be built upon.
TEST(Journal, what_was_shown_in_place_of_pages_is_not_built_upon) {
    Memory_Disk disk = disk_with(6);
    const auto pager = open_pager(disk, name, Open_Mode::read_write);
    put(*pager, {2}, 1);
    const Memory_Disk left = killed_at(between);
    disk.set_bytes(name, left.bytes(name));
    disk.remove(journal_name);
    disk.set_bytes(journal_name, left.bytes(journal_name));
    disk.protect(journal_name);
    EXPECT_EQ(content(*pager), old_state());
    disk.remove(journal_name);
    disk.set_bytes(name, new_state());
    pager->begin_write();
    pager->change(1)[7] = std::byte{0x77};
    pager->commit();
    auto expected = new_state();
    expected[4096 + 7] = std::byte{0x77};
    EXPECT_EQ(disk.bytes(name), expected);
}

TEST(Journal, a_second_one_set_aside_gets_a_name_of_its_own) {
    Memory_Disk disk = disk_with(4);
    for (int i = 1; i <= 2; ++i) {
        disk.set_bytes(journal_name, Page_Bytes(700, std::byte{'x'}));
        EXPECT_EQ(open_pager(disk, name, Open_Mode::read_write)->report().set_aside,
                  journal_name + "-aside-" + std::to_string(i));
    }
    EXPECT_EQ(disk.paths().size(), 3U);
}

TEST(Journal, one_that_cannot_be_set_aside_leaves_the_file_to_be_looked_at) {
    Memory_Disk disk = disk_with(4);
    disk.set_bytes(journal_name, Page_Bytes(700, std::byte{'x'}));
    disk.protect_folder("");
    const auto pager = open_pager(disk, name, Open_Mode::read_write);
    EXPECT_TRUE(pager->report().foreign_journal);
    EXPECT_EQ(pager->report().set_aside, "");
    ASSERT_TRUE(pager->report().refusal);
    EXPECT_EQ(content(*pager), file_of(4));
}

TEST(Journal, a_file_copied_together_with_its_journal_is_taken_back_too) {
    const Memory_Disk left = killed_at(between);
    Memory_Disk disk;
    disk.set_bytes("something else", {});
    disk.set_bytes(name, left.bytes(name)); // another identity than the journal says
    disk.set_bytes(journal_name, left.bytes(journal_name));
    const auto pager = open_pager(disk, name, Open_Mode::read_write);
    EXPECT_EQ(pager->report().recovery, Recovery::rolled_back);
    EXPECT_EQ(disk.bytes(name), old_state());
}

TEST(Journal, torn_pages_are_mended) {
    for (std::size_t sector = 0; sector < 8; ++sector) {
        Memory_Disk disk = killed_at(between);
        const auto file = disk.open(name, files::Access::read_write);
        const Page_Bytes page = page_of(3, 2); // one sector of it is there, the rest still old
        file->write_at(3 * 4096 + 512 * sector, std::span(page).subspan(512 * sector, 512));
        open_pager(disk, name, Open_Mode::read_write);
        EXPECT_EQ(disk.bytes(name), old_state()) << sector;
    }
}

/// Whatever stands in the journal: the file stays as it was found, or gets its old state back.
TEST(Journal, a_spoiled_journal_never_makes_things_worse) {
    std::mt19937 random(11);
    const auto found = killed_at(between).bytes(name);
    int healed = 0;
    for (int round = 0; round < 400; ++round) {
        SCOPED_TRACE(round);
        Memory_Disk disk = killed_at(between);
        auto journal = disk.bytes(journal_name);
        if (round % 3 == 0) journal.resize(random() % journal.size());
        // Half of the rounds aim at head and table.
        const std::size_t reach =
            random() % 2 ? journal.size() : std::min<std::size_t>(1024, journal.size());
        for (unsigned i = random() % 4; i > 0 && reach > 0; --i)
            journal[random() % reach] = static_cast<std::byte>(random());
        disk.set_bytes(journal_name, journal);
        const auto pager = open_pager(disk, name, Open_Mode::read_write);
        const auto after = disk.bytes(name);
        ASSERT_TRUE(after == found || after == old_state());
        healed += after == old_state();
        const bool says_nothing = journal.empty();
        ASSERT_TRUE(after == old_state() || says_nothing ||
                    disk.bytes(pager->report().set_aside) == journal);
        put(*pager, {1}, 9);
    }
    EXPECT_GT(healed, 20);
    EXPECT_LT(healed, 380);
}

TEST(Journal, an_emptied_journal_gives_its_room_back) {
    Memory_Disk disk = disk_with(200);
    const auto pager = open_pager(disk, name, Open_Mode::read_write);
    pager->begin_write();
    for (Page_Number n = 1; n < 200; ++n) set_page(*pager, n, 1);
    pager->commit();
    EXPECT_LE(disk.bytes(journal_name).size(), 65536U);
    EXPECT_EQ(disk.bytes(name), [] {
        auto expected = file_of(200, 1);
        std::ranges::copy(header_page(), expected.begin());
        return expected;
    }());
}

/// The bytes as docs/formats/journal.md shows them, so that a later program still understands them.
TEST(Journal_Format, stands_as_it_is_described) {
    jet::Journal_Head head;
    head.state = Journal_State::operation;
    head.page_size = 4096;
    head.entries = 2;
    head.salt = 0x1112131415161718;
    head.counter = 7;
    head.database = {0x21, 0x31};
    head.size_before = 0x5000;
    head.size_after = 0x6000;
    head.page_0 = 0x41;
    head.table = 0x51;
    const auto bytes = encode(head);
    ASSERT_EQ(bytes.size(), 512U);
    const auto number = [&](std::size_t at, std::size_t length) {
        std::uint64_t value = 0;
        for (std::size_t i = length; i-- > 0;)
            value = value << 8 | std::to_integer<std::uint64_t>(bytes[at + i]);
        return value;
    };
    EXPECT_EQ(std::memcmp(bytes.data(), "CVSETJ01", 8), 0);
    const std::uint64_t fields[] = {number(8, 4),  number(12, 4), number(16, 8), number(24, 8),
                                    number(32, 8), number(40, 8), number(48, 8), number(56, 8),
                                    number(64, 8), number(72, 8), number(504, 1)};
    EXPECT_THAT(fields,
                ElementsAre(4096, 2, head.salt, 7, 0x21, 0x31, 0x5000, 0x6000, 0x41, 0x51, 0x5A));
    EXPECT_EQ(number(496, 8), jet::journal_checksum(std::span(bytes).first(496)));
    EXPECT_EQ(encode(*jet::decode_head(bytes)), bytes);
    for (std::size_t i = 0; i < 504; ++i) {
        auto spoiled = bytes;
        spoiled[i] ^= std::byte{1};
        EXPECT_FALSE(jet::decode_head(spoiled)) << i;
    }
    EXPECT_EQ(jet::journal_entry_size(4096), 80U);
    EXPECT_EQ(jet::journal_pages_at(6, 4096), 1024U);
    EXPECT_EQ(jet::journal_pages_at(7, 4096), 1536U);
}

TEST(Journal_Format, the_checksum_is_the_described_one) {
    const auto sum = [](std::string_view text) {
        return jet::journal_checksum(std::as_bytes(std::span(text.data(), text.size())));
    };
    EXPECT_EQ(sum(""), 0x0B2D19BD6A41E5B8U);
    EXPECT_EQ(sum("0123456789"), 0x67D7288B20D9B143U);
}

} // namespace
