#include "support/temporary_folder.h"

#include "platform/files/memory_disk.h"
#include "platform/files/replace.h"

#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <sys/xattr.h>
#include <thread>
#include <unistd.h>

using namespace files;
using testing::ElementsAre;
using testing::Optional;

namespace {

std::vector<std::byte> bytes(std::string_view text) {
    const auto all = std::as_bytes(std::span(text.data(), text.size()));
    return {all.begin(), all.end()};
}

template <class Step>
std::optional<Failure> failure_of(Step step) {
    try {
        step();
    } catch (const Error& error) {
        return error.kind;
    }
    return std::nullopt;
}

/// What every disk promises, tried on the real one and on the one in memory.
class Any_Disk : public testing::TestWithParam<bool> {
protected:
    Any_Disk() {
        if (!GetParam()) memory.make_folder("/f");
    }
    std::string at(const std::string& file) { return root + "/" + file; }
    void write(const std::string& file, std::string_view text) {
        disk.open(at(file), Access::create_or_empty)->write_at(0, bytes(text));
    }

    support::Temporary_Folder real;
    Memory_Disk memory;
    Disk& disk = GetParam() ? real_disk() : static_cast<Disk&>(memory);
    std::string root = GetParam() ? real.path() : "/f";
};

INSTANTIATE_TEST_SUITE_P(Disks, Any_Disk, testing::Bool(),
                         [](const auto& kind) { return kind.param ? "real" : "memory"; });

TEST_P(Any_Disk, reads_and_writes_at_offsets) {
    const auto file = disk.open(at("a"), Access::create_new);
    file->write_at(5, bytes("world"));
    EXPECT_EQ(file->size(), 10U);
    std::vector<std::byte> found(20);
    EXPECT_EQ(file->read_at(3, found), 7U);
    found.resize(7);
    EXPECT_EQ(found, bytes(std::string_view("\0\0world", 7)));
    EXPECT_EQ(file->read_at(10, found), 0U);
    EXPECT_EQ(file->read_at(1000, found), 0U);
    file->resize(6);
    file->resize(8);
    file->sync();
    EXPECT_EQ(read_file(disk, at("a")), bytes(std::string_view("\0\0\0\0\0w\0\0", 8)));
}

TEST_P(Any_Disk, opening_says_what_is_wrong) {
    write("a", "text");
    disk.make_folder(at("folder"));
    EXPECT_EQ(failure_of([&] { disk.open(at("none"), Access::read); }), Failure::not_found);
    EXPECT_EQ(failure_of([&] { disk.open(at("none"), Access::read_write); }), Failure::not_found);
    EXPECT_EQ(failure_of([&] { disk.open(at("none/a"), Access::create_new); }), Failure::not_found);
    EXPECT_EQ(failure_of([&] { disk.open(at("a"), Access::create_new); }), Failure::exists);
    EXPECT_EQ(failure_of([&] { disk.remove(at("none")); }), Failure::not_found);
    EXPECT_EQ(failure_of([&] { disk.rename(at("none"), at("b")); }), Failure::not_found);
    EXPECT_EQ(failure_of([&] { disk.make_folder(at("folder")); }), Failure::exists);
    EXPECT_EQ(failure_of([&] { disk.sync_folder(at("none")); }), Failure::not_found);
    EXPECT_EQ(failure_of([&] { disk.files_in(at("none")); }), Failure::not_found);
    EXPECT_TRUE(failure_of([&] { disk.open(at("a"), Access::read)->write_at(0, bytes("x")); }));
    EXPECT_TRUE(failure_of([&] { disk.open(at("folder"), Access::read); }));
    disk.open(at("a"), Access::create_or_empty);
    EXPECT_EQ(read_file(disk, at("a")), bytes(""));
}

TEST_P(Any_Disk, names_and_identities) {
    write("a", "1");
    write("b", "2");
    disk.make_folder(at("folder"));
    disk.sync_folder(root);
    EXPECT_THAT(disk.files_in(root), ElementsAre("a", "b"));
    EXPECT_TRUE(disk.folder_exists(at("folder")));
    EXPECT_FALSE(disk.folder_exists(at("a")));
    EXPECT_FALSE(disk.identity(at("folder")));
    EXPECT_FALSE(disk.identity(at("a/below")));
    const auto open = disk.open(at("b"), Access::read_write);
    EXPECT_THAT(disk.identity(at("b")), Optional(open->identity()));
    EXPECT_NE(disk.identity(at("a")), disk.identity(at("b")));
    disk.rename(at("a"), at("b"));
    EXPECT_NE(disk.identity(at("b")), std::optional(open->identity()));
    open->write_at(0, bytes("unseen")); // the file lives on for who has it open
    EXPECT_EQ(read_file(disk, at("b")), bytes("1"));
    disk.remove(at("b"));
    EXPECT_THAT(disk.files_in(root), ElementsAre());
}

TEST_P(Any_Disk, the_stamp_moves_with_the_content) {
    write("a", "1");
    const auto file = disk.open(at("a"), Access::read_write);
    const auto before = file->stamp();
    EXPECT_EQ(file->stamp(), before);
    std::this_thread::sleep_for(std::chrono::milliseconds(GetParam() ? 20 : 0));
    disk.open(at("a"), Access::read_write)->write_at(0, bytes("2"));
    EXPECT_NE(file->stamp(), before);
}

TEST_P(Any_Disk, locks_belong_to_the_description) {
    write("a", "1");
    const auto open = [&] { return disk.open(at("a"), Access::read_write); };
    const auto one = open();
    const auto two = open();
    auto three = open();
    const std::chrono::milliseconds none{0};
    EXPECT_TRUE(one->lock(Lock::shared, none));
    EXPECT_TRUE(two->lock(Lock::shared, none));
    EXPECT_FALSE(one->lock(Lock::exclusive, none));
    EXPECT_FALSE(three->lock(Lock::exclusive, std::chrono::milliseconds(5)));
    EXPECT_TRUE(two->lock(Lock::none, none));
    EXPECT_TRUE(one->lock(Lock::exclusive, none)); // the shared one that was kept grows
    EXPECT_FALSE(two->lock(Lock::shared, none));
    open(); // closing another description drops nothing
    EXPECT_FALSE(two->lock(Lock::shared, none));
    EXPECT_TRUE(one->lock(Lock::shared, none));
    EXPECT_TRUE(three->lock(Lock::shared, none));
    one->lock(Lock::none, none);
    EXPECT_FALSE(two->lock(Lock::exclusive, none));
    three.reset(); // closing it drops its lock
    EXPECT_TRUE(two->lock(Lock::exclusive, none));
}

TEST_P(Any_Disk, replacing_keeps_nothing_beside) {
    replace_file(disk, at("a"), bytes("first"));
    const auto old = disk.open(at("a"), Access::read);
    replace_file(disk, at("a"), bytes("2nd"));
    EXPECT_EQ(read_file(disk, at("a")), bytes("2nd"));
    EXPECT_EQ(old->size(), 5U);
    { Replacement(disk, at("a")).write(bytes("given up")); }
    write("a.new1", "left by a crash, or another copy is at work");
    copy_file(disk, at("a"), at("b"));
    copy_file(disk, at("a.new1"), at("a"));
    EXPECT_EQ(read_file(disk, at("b")), bytes("2nd"));
    EXPECT_EQ(read_file(disk, at("a")), read_file(disk, at("a.new1")));
    EXPECT_THAT(disk.files_in(root), ElementsAre("a", "a.new1", "b"));
    EXPECT_EQ(failure_of([&] { copy_file(disk, at("none"), at("a")); }), Failure::not_found);
    EXPECT_EQ(read_file(disk, at("b")), bytes("2nd"));
}

TEST_P(Any_Disk, a_large_file_is_copied_whole) {
    std::vector<std::byte> large(3'000'001);
    for (std::size_t i = 0; i < large.size(); ++i) large[i] = static_cast<std::byte>(i * 31 >> 3);
    replace_file(disk, at("a"), large);
    copy_file(disk, at("a"), at("b"));
    EXPECT_EQ(read_file(disk, at("b")), large);
}

TEST(Real_Disk, a_lock_is_waited_for) {
    const support::Temporary_Folder folder;
    replace_file(real_disk(), folder / "a", bytes("1"));
    auto one = real_disk().open(folder / "a", Access::read_write);
    const auto two = real_disk().open(folder / "a", Access::read_write);
    ASSERT_TRUE(one->lock(Lock::exclusive, {}));
    std::thread leaver([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        one.reset();
    });
    EXPECT_TRUE(two->lock(Lock::exclusive, std::chrono::seconds(20)));
    leaver.join();
}

TEST(Real_Disk, replacing_follows_links_and_keeps_rights) {
    namespace fs = std::filesystem;
    const support::Temporary_Folder folder;
    replace_file(real_disk(), folder / "file", bytes("old"));
    fs::permissions(folder / "file", fs::perms(0640));
    fs::create_symlink("file", folder / "link");
    replace_file(real_disk(), folder / "link", bytes("new"));
    EXPECT_TRUE(fs::is_symlink(folder / "link"));
    EXPECT_EQ(read_file(real_disk(), folder / "file"), bytes("new"));
    EXPECT_EQ(fs::status(folder / "file").permissions(), fs::perms(0640));
}

TEST(Real_Disk, tells_whose_a_file_is_and_gives_it) {
    namespace fs = std::filesystem;
    const support::Temporary_Folder folder;
    Disk& disk = real_disk();
    const auto file = disk.open(folder / "file", Access::create_private);
    const Standing made = file->standing();
    EXPECT_EQ(made, (Standing{disk.user(), ::getegid(), 0600, 1}));
    fs::create_hard_link(folder / "file", folder / "second");
    fs::create_symlink("file", folder / "link");
    give_standing(disk, *file, {made.owner, made.group, 0640});
    EXPECT_EQ(file->standing(), (Standing{made.owner, made.group, 0640, 2}));
    EXPECT_EQ(disk.look(folder / "second")->owner, made.owner);
    EXPECT_FALSE(has_one_name(disk, *file, folder / "file"));
    EXPECT_FALSE(disk.look(folder / "link")->is_file);
    EXPECT_FALSE(disk.look(folder / std::string(256, 'a')));
    EXPECT_EQ(failure_of([&] { disk.open_no_link(folder / "link", Access::read_write); }),
              Failure::no_file);
    EXPECT_EQ(failure_of([&] { disk.open(folder / std::string(256, 'a'), Access::create_new); }),
              Failure::name_too_long);
    EXPECT_EQ(disk.user_name(administrator), "root");
    EXPECT_EQ(disk.user_name(4'000'000'000), "4000000000");
    EXPECT_TRUE(disk.is_member(administrator, 0));
    EXPECT_FALSE(disk.is_member(administrator, 4'000'000'000));
    if (disk.user() != administrator) return;
    give_standing(disk, *file, {65534, 65534, 0600});
    EXPECT_EQ(file->standing(), (Standing{65534, 65534, 0600, 2}));
}

/// The folder lets a stranger into every new file; the file itself lets another one in.
TEST(Real_Disk, files_with_the_rights_of_another_get_its_list_and_not_that_of_the_folder) {
    using Of = Acl_Entry::Of;
    const support::Temporary_Folder folder;
    const auto list = [](User user, std::uint16_t others) {
        return Acl{{Of::owner, 6},
                   {Of::user, 6, user},
                   {Of::group, 0},
                   {Of::mask, 6},
                   {Of::others, others}};
    };
    const auto put = [&](const std::string& path, const char* kind, const Acl& acl) {
        const auto raw = encode(acl);
        return ::setxattr(path.c_str(), kind, raw.data(), raw.size(), 0) == 0;
    };
    Disk& disk = real_disk();
    const auto standing = [&](const char* name) {
        return disk.open(folder / name, Access::read)->standing();
    };
    for (const char* name : {"plain", "listed"}) replace_file(disk, folder / name, bytes("old"));
    std::filesystem::permissions(folder / "plain", std::filesystem::perms(0640));
    if (!put(folder / "listed", "system.posix_acl_access", list(65534, 0)) ||
        !put(folder.path(), "system.posix_acl_default", list(65533, 6)))
        GTEST_SKIP() << "the file system of the temporary folder keeps no access lists";
    replace_file(disk, folder / "new", bytes("new"));
    EXPECT_EQ(granted(disk, 65533, standing("new")), 6U) << "as any file that the user makes";
    for (const char* name : {"plain", "listed"}) {
        SCOPED_TRACE(name);
        const Standing before = standing(name);
        EXPECT_EQ(before.acl.size(), name == std::string("listed") ? 5U : 0U);
        replace_file(disk, folder / name, bytes("new"));
        EXPECT_EQ(standing(name), before);
        copy_file(disk, folder / name, folder / "copy", Rights::of_source);
        EXPECT_EQ(standing("copy"), before);
        disk.remove(folder / "copy");
    }
}

/// Owner 1 in group 10; a list of others beside them.
TEST(Rights, are_those_of_the_list_where_there_is_one) {
    using Of = Acl_Entry::Of;
    Memory_Disk disk;
    disk.enter(4, 10);
    disk.enter(5, 11);
    disk.enter(6, 10);
    disk.enter(6, 11);
    const Standing listed{1,
                          10,
                          0664,
                          1,
                          {{Of::owner, 6},
                           {Of::user, 6, 2},
                           {Of::user, 0, 3},
                           {Of::group, 4},
                           {Of::named_group, 7, 11},
                           {Of::mask, 6},
                           {Of::others, 4}}};
    EXPECT_EQ(decode_acl(encode(listed.acl)), listed.acl);
    EXPECT_EQ(acl_for(1, 10, listed), listed.acl);
    EXPECT_THROW(decode_acl({}), std::runtime_error);
    constexpr unsigned expected[] = {6, 0, 4, 6, 6, 4}; // for the users 2 to 7
    for (const auto& [owner, group] :
         {std::pair{1U, 10U}, {1U, 7U}, {8U, 10U}, {8U, 8U}, {2U, 11U}}) {
        SCOPED_TRACE(std::to_string(owner) + " in " + std::to_string(group));
        const Standing same{owner, group, 0664, 1, acl_for(owner, group, listed)};
        for (User user = 2; user < 8; ++user)
            EXPECT_TRUE(user == owner || granted(disk, user, same) == expected[user - 2]) << user;
        EXPECT_TRUE(may_write(disk, 1, same));
    }
    // Where no list can be kept, nobody whom it names gets more than by it.
    disk.keep_no_lists();
    const auto copy = disk.open("copy", Access::create_private);
    give_standing(disk, *copy, listed);
    EXPECT_EQ(copy->standing().mode, 0600U);
}

TEST(Real_Disk, a_file_that_nobody_may_write_is_not_opened_for_writing) {
    namespace fs = std::filesystem;
    const support::Temporary_Folder folder;
    replace_file(real_disk(), folder / "file", bytes("old"));
    fs::permissions(folder / "file",
                    fs::perms(0444)); // whoever runs the test, the administrator too
    EXPECT_EQ(failure_of([&] { real_disk().open(folder / "file", Access::read_write); }),
              Failure::denied);
    EXPECT_EQ(failure_of([&] { replace_file(real_disk(), folder / "file", bytes("new")); }),
              Failure::denied);
    EXPECT_EQ(read_file(real_disk(), folder / "file"), bytes("old"));
    EXPECT_THAT(real_disk().files_in(folder.path()), ElementsAre("file"));
}

} // namespace
