#include "platform/jet/pages/journal_support.h"

#include <gmock/gmock.h>

using namespace pager_tests;
using testing::ElementsAre;

namespace {

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

using Preparation = std::function<void(Memory_Disk&)>;

void link_library(Memory_Disk& disk) { disk.link(name, "second.mdb"); }
void link_journal(Memory_Disk& disk) { disk.link(journal_name, "elsewhere"); }
Preparation shows(files::User owner, std::optional<std::uint32_t> mode = {}) {
    return [=](Memory_Disk& disk) { disk.show_owner(owner, mode); };
}

constexpr Standing usual{1000, 1000, 0644};
constexpr Standing shared{1000, 50, 0664};
Standing listed(files::User user, std::uint16_t rights, files::User owner = 1000) {
    return {owner, 1000, 0664, 1, list_for(user, rights)};
}

TEST(Journal, one_that_a_stranger_can_have_made_is_not_believed) {
    const struct Case {
        const char* what;
        bool believed;
        Standing library, journal;
        files::User us = 1000;
        Preparation prepare = [](Memory_Disk&) {};
    } cases[] = {
        {"ours", true, usual, usual},
        {"the administrator's", true, {1000, 1000, 0664}, {0, 1000, 0664}},
        {"the owner's, seen by the administrator", true, usual, usual, 0},
        {"a member's", true, {2002, 50, 0664}, {2000, 50, 0664}, 2001},
        {"anybody's where anybody may write", true, {1000, 1000, 0666}, {3000, 7, 0666}},
        {"a stranger's", false, usual, {3000, 3000, 0644}},
        {"a stranger's, for the administrator", false, usual, {3000, 3000, 0644}, 0},
        {"a stranger's of the right group", false, shared, {3000, 50, 0664}, 2001},
        {"a member's, the group may not write", false, {1000, 50, 0644}, {2000, 50, 0644}},
        {"open to anybody", false, usual, {1000, 1000, 0646}},
        {"open to another group", false, shared, {1000, 60, 0664}},
        {"open to members who may only read", false, {1000, 50, 0646}, {1000, 1000, 0666}},
        {"with a list", false, usual, listed(3000, 6)},
        {"with another list", false, listed(3000, 4), listed(3000, 6)},
        {"without the list", false, listed(3000, 4), {1000, 1000, 0664}},
        {"with the list", true, listed(3000, 4), listed(3000, 4)},
        {"by one whom the list lets read", false, listed(3000, 4), listed(1000, 6, 3000)},
        {"by one whom the list lets write", true, listed(3000, 6), listed(1000, 6, 3000)},
        {"a member's, the group bits are the mask",
         false,
         {1000, 50, 0664, 1, list_for(3000, 6)},
         {2000, 50, 0664, 1, list_for(1000, 6)}},
        {"with a second name", false, usual, usual, 1000, link_journal},
        {"on a server that shows one owner", true, usual, {3000, 3000, 0644}, 1000, shows(99)},
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
    using B = jet::Blocked;
    const auto in_place = [](Standing standing, std::size_t size = 0) {
        return [=](Memory_Disk& d) {
            d.set_bytes(journal_name, Page_Bytes(size));
            d.set_standing(journal_name, standing);
        };
    };
    const auto ours = in_place(usual);
    const auto strangers = in_place({3000, 3000, 0666}, 512);
    const auto strangers_own = in_place({3000, 3000, 0600}, 512);
    const auto make_pipe = [](Memory_Disk& d) { d.make_special(journal_name); };
    const auto make_folder = [](Memory_Disk& d) { d.make_folder(journal_name); };
    const auto protect = [](Memory_Disk& d) { d.protect_folder(""); };
    const auto hide = [](Memory_Disk& d) { d.hide_folder(""); };
    const auto shorten = [](Memory_Disk& d) { d.count_short_names(); };
    using Of = files::Acl_Entry::Of;
    const files::Acl list_of_3000{{Of::owner, 6}, {Of::user, 6, 1000},
                                  {Of::group, 0}, {Of::named_group, 0, 1000},
                                  {Of::mask, 6},  {Of::others, 4}};
    const struct Case {
        const char* what;
        files::User us;
        Standing library;
        jet::Blocked blocked;
        Standing journal = {};
        std::vector<Preparation> prepare = {};
    } cases[] = {
        {"private", 1000, {1000, 1000, 0600}, B::no, {1000, 1000, 0600}},
        {"a member's", 2000, shared, B::journal_rights},
        {"a member's, the owner is one", 2000, {2001, 50, 0664}, B::no, {2000, 50, 0664}},
        {"the administrator's", 0, {1000, 50, 0640}, B::no, {1000, 50, 0640}},
        {"a group that we cannot give", 1000, shared, B::journal_rights},
        {"one that only reads", 1000, {1000, 50, 0640}, B::no, {1000, 1000, 0600}},
        {"everybody", 2000, {1000, 50, 0666}, B::no, {2000, 50, 0666}},
        {"too open", 1000, {1000, 1000, 0600}, B::no, {1000, 1000, 0600}, {ours}},
        {"a stranger's", 1000, usual, B::no, usual, {strangers}},
        {"a stranger's that stays", 1000, usual, B::journal_barred, {}, {strangers, protect}},
        {"a stranger's, private", 1000, usual, B::journal_barred, {}, {strangers_own}},
        {"one not yet opened to others",
         2000,
         {2001, 50, 0664},
         B::no,
         {2000, 50, 0664},
         {in_place({2001, 50, 0600})}},
        {"with a second name", 1000, usual, B::no, usual, {ours, link_journal}},
        {"a pipe", 1000, usual, B::journal_no_file, {}, {ours, make_pipe}},
        {"a folder", 1000, usual, B::journal_no_file, {}, {make_folder}},
        {"no owners kept", 1000, {7, 7, 0755}, B::no, {7, 7, 0755}, {shows(7, 0755)}},
        {"new files open to more", 1000, {7, 7, 0755}, B::journal_rights, {}, {shows(7, 0777)}},
        {"a folder that cannot be opened", 1000, usual, B::folder_hidden, {}, {hide}},
        {"a second name of the library", 1000, usual, B::second_name, {}, {link_library}},
        {"a folder not to be listed", 1000, usual, B::second_name, {}, {link_library, hide}},
        {"a short name", 1000, usual, B::no, {1000, 1000, 0644, 2}, {shorten}},
        {"a list", 1000, listed(3000, 6), B::no, listed(3000, 6)},
        {"one whom the list lets write",
         3000,
         {1000, 1000, 0664, 1, list_for(3000, 6, 0)},
         B::no,
         {3000, 3000, 0664, 1, list_of_3000}},
        {"a list in place that the library has not",
         1000,
         usual,
         B::no,
         usual,
         {in_place(listed(3000, 6), 512)}},
        {"a list that the medium does not keep",
         1000,
         listed(3000, 6),
         B::journal_rights,
         {},
         {[](Memory_Disk& d) { d.keep_no_lists(); }}},
        {"both", 1000, usual, B::second_name, {}, {shorten, link_library}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Memory_Disk disk = disk_with(4);
        enter_members(disk);
        disk.set_standing(name, c.library);
        for (const auto& prepare : c.prepare) prepare(disk);
        disk.become(c.us);
        const auto pager = open_pager(disk, name, Open_Mode::read_write);
        const auto refusal = pager->report().refusal;
        ASSERT_EQ(refusal ? refusal->blocked : B::no, c.blocked);
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

} // namespace
