#include "platform/jet/pages/pager_support.h"

#include "platform/files/crash_disk.h"
#include "platform/jet/pages/journal_format.h"

#include <algorithm>
#include <gmock/gmock.h>

using namespace pager_tests;
using files::Memory_Disk;
using jet::Journal_State;
using Recovery = jet::Pager_Report::Recovery;
using testing::ElementsAre;

namespace {

/// The disk that a program leaves which was killed in the n-th of its changes, counted from the
/// second of two transactions on: 1 the journal, 2 its sync, 3 to 5 the pages, 6 their sync, 7 the
/// emptying.
Memory_Disk killed_at(int moment) {
    Memory_Disk before = disk_with(6);
    files::Crash_Disk disk(before);
    Memory_Disk left;
    const auto pager = open_pager(disk, name, Open_Mode::read_write);
    put(*pager, {2}, 1);
    int count = 0;
    disk.before_change = [&] {
        std::mt19937 unused;
        if (++count == moment)
            left = disk.after_power_loss([](std::size_t) { return files::Crash_Disk::Fate::kept; },
                                         unused);
    };
    put(*pager, {1, 3, 5, 6}, 2);
    disk.before_change = nullptr;
    EXPECT_GE(count, moment);
    return left;
}

constexpr int between = 4; // one page new, the others old
constexpr int all_new = 6;

std::vector<std::byte> old_state() {
    auto bytes = file_of(6);
    const Page_Bytes page = page_of(2, 1);
    std::ranges::copy(page, bytes.begin() + 2 * 4096);
    return bytes;
}

std::vector<std::byte> new_state() {
    auto bytes = old_state();
    bytes.resize(7 * 4096);
    for (const Page_Number n : {1U, 3U, 5U, 6U})
        std::ranges::copy(page_of(n, 2), bytes.begin() + n * 4096);
    return bytes;
}

void edit(Memory_Disk& disk, const std::string& path, std::size_t at, std::byte value) {
    disk.open(path, files::Access::read_write)->write_at(at, std::array{value});
}

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

using files::Standing;

Standing standing_of(Memory_Disk& disk, const std::string& path) {
    return disk.open(path, files::Access::read)->standing();
}

/// Lets one user more in; the mask is what the list gives to him.
files::Acl list_for(files::User user, std::uint16_t rights, std::uint16_t group = 4) {
    using Of = files::Acl_Entry::Of;
    return {{Of::owner, 6},
            {Of::user, rights, user},
            {Of::group, group},
            {Of::mask, 6},
            {Of::others, 4}};
}

/// Three users are members of group 50; user 1000 is none.
void enter_members(Memory_Disk& disk) {
    for (const files::User user : {2000U, 2001U, 2002U}) disk.enter(user, 50);
}

TEST(Journal, one_that_a_stranger_can_have_made_is_not_believed) {
    constexpr Standing usual{1000, 1000, 0644};
    constexpr Standing shared{1000, 50, 0664};
    struct Case {
        const char* what;
        Standing library;
        Standing journal;
        files::User us = 1000;
        bool believed = false;
        std::function<void(Memory_Disk&)> prepare = [](Memory_Disk&) {};
    };
    const Case cases[] = {
        {"ours", usual, usual, 1000, true},
        {"the administrator's", {1000, 1000, 0664}, {0, 1000, 0664}, 1000, true},
        {"the owner's, seen by the administrator", usual, usual, 0, true},
        {"a member's", {2002, 50, 0664}, {2000, 50, 0664}, 2001, true},
        {"anybody's where anybody may write", {1000, 1000, 0666}, {3000, 7, 0666}, 1000, true},
        {"a stranger's", usual, {3000, 3000, 0644}},
        {"a stranger's, for the administrator", usual, {3000, 3000, 0644}, 0},
        {"a stranger's of the right group", shared, {3000, 50, 0664}, 2001},
        {"a member's where the group may not write", {1000, 50, 0644}, {2000, 50, 0644}},
        {"open to anybody", usual, {1000, 1000, 0646}},
        {"open to another group", shared, {1000, 60, 0664}},
        {"open to members who may only read", {1000, 50, 0646}, {1000, 1000, 0666}},
        {"with a list", usual, {1000, 1000, 0664, 1, list_for(3000, 6)}},
        {"with another list",
         {1000, 1000, 0664, 1, list_for(3000, 4)},
         {1000, 1000, 0664, 1, list_for(3000, 6)}},
        {"without the list", {1000, 1000, 0664, 1, list_for(3000, 4)}, {1000, 1000, 0664}},
        {"with the list",
         {1000, 1000, 0664, 1, list_for(3000, 4)},
         {1000, 1000, 0664, 1, list_for(3000, 4)},
         1000,
         true},
        {"by one whom the list lets read",
         {1000, 1000, 0664, 1, list_for(3000, 4)},
         {3000, 1000, 0664, 1, list_for(1000, 6)}},
        {"by one whom the list lets write",
         {1000, 1000, 0664, 1, list_for(3000, 6)},
         {3000, 1000, 0664, 1, list_for(1000, 6)},
         1000,
         true},
        {"a member's where the group bits are the mask",
         {1000, 50, 0664, 1, list_for(3000, 6)},
         {2000, 50, 0664, 1, list_for(1000, 6)}},
        {"with a second name", usual, usual, 1000, false,
         [](Memory_Disk& d) { d.link(journal_name, "elsewhere"); }},
        {"on a server that shows one owner",
         usual,
         {3000, 3000, 0644},
         1000,
         true,
         [](Memory_Disk& d) { d.show_owner(99); }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Memory_Disk disk = killed_at(between);
        enter_members(disk);
        disk.set_standing(name, c.library);
        disk.set_standing(journal_name, c.journal);
        disk.become(c.us);
        c.prepare(disk);
        const auto file = disk.bytes(name);
        const auto journal = disk.bytes(journal_name);
        disk.set_bytes(journal_name + "-probe", {}); // somebody's
        const auto others = disk.paths();
        {
            const auto pager = open_pager(disk, name, Open_Mode::read_write);
            EXPECT_EQ(disk.paths(), others);
            ASSERT_EQ(pager->report().recovery == Recovery::rolled_back, c.believed);
            EXPECT_EQ(!pager->report().refusal, c.believed);
            EXPECT_EQ(content(*pager), c.believed ? old_state() : file);
            if (c.believed) continue;
            EXPECT_EQ(pager->report().refusal->blocked, jet::Blocked::journal_doubted);
            EXPECT_EQ(pager->report().refusal->owner, std::to_string(c.journal.owner));
            EXPECT_THROW(pager->begin_write(), jet::Error);
        }
        EXPECT_EQ(disk.bytes(name), file);
        EXPECT_EQ(disk.bytes(journal_name), journal);
    }
}

/// A server that shows one owner gives nobody's word: where nothing of the operation is found in
/// the file, it is neither taken back nor emptied because of its name.
TEST(Journal, where_owners_prove_nothing_the_pages_decide) {
    Memory_Disk disk = killed_at(all_new);
    disk.set_bytes(name, old_state());
    edit(disk, journal_name, jet::journal_state_at, std::byte{0xA5});
    disk.set_standing(journal_name, {3000, 3000, 0644});
    disk.show_owner(99);
    const auto pager = open_pager(disk, name, Open_Mode::read_write);
    EXPECT_TRUE(pager->report().foreign_journal);
    EXPECT_EQ(disk.bytes(name), old_state());
}

/// Anybody who may lay files into the folder can lay rubbish there: it goes aside and frightens nobody.
TEST(Journal, rubbish_of_a_stranger_says_nothing_of_the_file) {
    for (const bool strange : {true, false}) {
        Memory_Disk disk = killed_at(all_new);
        std::vector<std::byte> rubbish(jet::journal_sector, std::byte{'Z'});
        std::ranges::copy(std::as_bytes(std::span("CVSETJ01", 8)), rubbish.begin());
        disk.set_bytes(journal_name, rubbish);
        disk.set_standing(name, {1000, 1000, 0644});
        disk.set_standing(journal_name, {strange ? 3000U : 1000U, 1000, strange ? 0666U : 0644U});
        disk.become(1000);
        const auto pager = open_pager(disk, name, Open_Mode::read_write);
        EXPECT_EQ(pager->report().spoiled_journal, !strange);
        EXPECT_EQ(pager->report().foreign_journal, strange);
        EXPECT_FALSE(pager->report().refusal);
    }
}

/// Nobody begins an operation on a journal that others who may write the library would not believe
/// or could not open, nor puts old pages where more people read them.
TEST(Journal, serves_all_who_may_write_the_library) {
    using jet::Blocked;
    struct Case {
        const char* what;
        files::User us;
        Standing library;
        std::function<void(Memory_Disk&)> prepare;
        Blocked blocked;
        Standing journal = {};
    };
    const auto nothing = [](Memory_Disk&) {};
    const auto in_place = [](Standing standing, std::size_t size = 0) {
        return [=](Memory_Disk& d) {
            d.set_bytes(journal_name, Page_Bytes(size));
            d.set_standing(journal_name, standing);
        };
    };
    const Standing usual{1000, 1000, 0644};
    const Standing shared{1000, 50, 0664};
    using Of = files::Acl_Entry::Of;
    const files::Acl list_of_3000{{Of::owner, 6}, {Of::user, 6, 1000},
                                  {Of::group, 0}, {Of::named_group, 0, 1000},
                                  {Of::mask, 6},  {Of::others, 4}};
    const Case cases[] = {
        {"private", 1000, {1000, 1000, 0600}, nothing, Blocked::no, {1000, 1000, 0600}},
        {"a member's", 2000, shared, nothing, Blocked::journal_rights},
        {"a member's, the owner is one",
         2000,
         {2001, 50, 0664},
         nothing,
         Blocked::no,
         {2000, 50, 0664}},
        {"the administrator's", 0, {1000, 50, 0640}, nothing, Blocked::no, {1000, 50, 0640}},
        {"a group that we cannot give", 1000, shared, nothing, Blocked::journal_rights},
        {"one that only reads", 1000, {1000, 50, 0640}, nothing, Blocked::no, {1000, 1000, 0600}},
        {"everybody", 2000, {1000, 50, 0666}, nothing, Blocked::no, {2000, 50, 0666}},
        {"one that is there, too open",
         1000,
         {1000, 1000, 0600},
         in_place(usual),
         Blocked::no,
         {1000, 1000, 0600}},
        {"a stranger's", 1000, usual, in_place({3000, 3000, 0666}, 512), Blocked::no, usual},
        {"a stranger's that stays", 1000, usual,
         [&](Memory_Disk& d) {
             in_place({3000, 3000, 0666}, 512)(d);
             d.protect_folder("");
         },
         Blocked::journal_barred},
        {"a stranger's, private", 1000, usual, in_place({3000, 3000, 0600}, 512),
         Blocked::journal_barred},
        {"one not yet opened to others",
         2000,
         {2001, 50, 0664},
         in_place({2001, 50, 0600}),
         Blocked::no,
         {2000, 50, 0664}},
        {"with a second name", 1000, usual,
         [&](Memory_Disk& d) {
             in_place(usual)(d);
             d.link(journal_name, "elsewhere");
         },
         Blocked::no, usual},
        {"a pipe", 1000, usual,
         [&](Memory_Disk& d) {
             in_place(usual)(d);
             d.make_special(journal_name);
         },
         Blocked::journal_no_file},
        {"a folder", 1000, usual, [](Memory_Disk& d) { d.make_folder(journal_name); },
         Blocked::journal_no_file},
        {"a medium without owners",
         1000,
         {7, 7, 0755},
         [](Memory_Disk& d) { d.show_owner(7, 0755); },
         Blocked::no,
         {7, 7, 0755}},
        {"one that opens new files to more",
         1000,
         {7, 7, 0755},
         [](Memory_Disk& d) { d.show_owner(7, 0777); },
         Blocked::journal_rights},
        {"a folder that cannot be opened", 1000, usual, [](Memory_Disk& d) { d.hide_folder(""); },
         Blocked::folder_hidden},
        {"a second name of the library", 1000, usual,
         [](Memory_Disk& d) { d.link(name, "second.mdb"); }, Blocked::second_name},
        {"the same in a folder that cannot be listed", 1000, usual,
         [](Memory_Disk& d) {
             d.link(name, "second.mdb");
             d.hide_folder("");
         },
         Blocked::second_name},
        {"a short name",
         1000,
         usual,
         [](Memory_Disk& d) { d.count_short_names(); },
         Blocked::no,
         {1000, 1000, 0644, 2}},
        {"a list",
         1000,
         {1000, 1000, 0664, 1, list_for(3000, 6)},
         nothing,
         Blocked::no,
         {1000, 1000, 0664, 1, list_for(3000, 6)}},
        {"one whom the list lets write",
         3000,
         {1000, 1000, 0664, 1, list_for(3000, 6, 0)},
         nothing,
         Blocked::no,
         {3000, 3000, 0664, 1, list_of_3000}},
        {"a list in place that the library has not", 1000, usual,
         in_place({1000, 1000, 0664, 1, list_for(3000, 6)}, 512), Blocked::no, usual},
        {"a list that the medium does not keep",
         1000,
         {1000, 1000, 0664, 1, list_for(3000, 6)},
         [](Memory_Disk& d) { d.keep_no_lists(); },
         Blocked::journal_rights},
        {"both", 1000, usual,
         [](Memory_Disk& d) {
             d.count_short_names();
             d.link(name, "second.mdb");
         },
         Blocked::second_name},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Memory_Disk disk = disk_with(4);
        enter_members(disk);
        disk.set_standing(name, c.library);
        c.prepare(disk);
        disk.become(c.us);
        const auto pager = open_pager(disk, name, Open_Mode::read_write);
        const auto refusal = pager->report().refusal;
        ASSERT_EQ(refusal ? refusal->blocked : Blocked::no, c.blocked);
        EXPECT_EQ(content(*pager), file_of(4));
        if (refusal) {
            EXPECT_THROW(pager->begin_write(), jet::Error);
            continue;
        }
        put(*pager, {1}, 1);
        EXPECT_EQ(standing_of(disk, journal_name), c.journal);
    }
}

TEST(Journal, is_private_until_it_has_its_rights) {
    struct Recording : Memory_Disk {
        std::unique_ptr<files::File> open(const std::string& path, files::Access access) override {
            if (path == journal_name) accesses.push_back(access);
            return Memory_Disk::open(path, access);
        }
        std::vector<files::Access> accesses;
    } disk;
    disk.set_bytes(name, file_of(4));
    put(*open_pager(disk, name, Open_Mode::read_write), {1}, 1);
    EXPECT_THAT(disk.accesses, ElementsAre(files::Access::create_private));
}

TEST(Journal, follows_the_rights_and_names_of_a_library_that_is_open) {
    Memory_Disk disk = disk_with(4);
    const auto pager = open_pager(disk, name, Open_Mode::read_write);
    put(*pager, {1}, 1);
    disk.set_standing(name, {1000, 1000, 0600});
    const auto too_open = disk.identity(journal_name); // by somebody already, perhaps
    put(*pager, {1}, 2);
    EXPECT_NE(disk.identity(journal_name), too_open);
    EXPECT_EQ(standing_of(disk, journal_name).mode, 0600U);
    const auto reader = open_pager(disk, name, Open_Mode::read_only);
    EXPECT_EQ(reader->report().refusal->blocked, jet::Blocked::write_protected);
    disk.link(name, "second.mdb");
    content(*reader); // half an operation, for all that can be known
    EXPECT_EQ(reader->report().refusal->blocked, jet::Blocked::second_name);
    EXPECT_THROW(pager->begin_write(), jet::Error);
    EXPECT_EQ(pager->report().refusal->blocked, jet::Blocked::second_name);
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
