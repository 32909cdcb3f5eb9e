// Copies of the program as real processes on a real disk.

#include "platform/jet/pages/pager_support.h"
#include "support/crash_sweep.h"
#include "support/temporary_folder.h"

#include "platform/files/replace.h"
#include "platform/jet/pages/journal_format.h"

#include <csignal>
#include <functional>
#include <grp.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace pager_tests;

namespace {

constexpr Page_Number pages = 24;

/// A process that runs the step and ends with 0 if it returned true.
pid_t start(const std::function<bool()>& step) {
    const pid_t child = ::fork();
    if (child != 0) return child;
    int result = 2;
    try {
        result = step() ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
    }
    ::_exit(result);
}

bool ends_well(pid_t child) {
    int status = 0;
    return ::waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

std::uint32_t state_of(jet::Pager& pager, Page_Number number) {
    const jet::Page page = pager.read(number);
    std::uint32_t value = 0;
    std::memcpy(&value, page->data(), 4);
    return value;
}

/// Every second page holds one number; a transaction raises it in all of them. They are no
/// neighbours, so each is written on its own.
void raise_all(jet::Pager& pager) {
    pager.begin_write();
    const std::uint32_t next = state_of(pager, 1) + 1;
    for (Page_Number n = 1; n < pages; n += 2)
        for (const std::size_t at : {0U, 2048U, 4092U}) std::memcpy(&pager.change(n)[at], &next, 4);
    pager.commit();
}

/// @return the number, or nothing when the pages do not agree.
std::optional<std::uint32_t> common_state(jet::Pager& pager) {
    pager.begin_read();
    const std::uint32_t state = state_of(pager, 1);
    bool same = true;
    for (Page_Number n = 3; n < pages; n += 2) same = same && state_of(pager, n) == state;
    pager.end_read();
    return same ? std::optional(state) : std::nullopt;
}

class Pager_Process : public testing::Test {
protected:
    Pager_Process() {
        auto bytes = header_page();
        bytes.resize(pages * std::size_t{4096});
        files::replace_file(files::real_disk(), path, bytes);
    }
    std::unique_ptr<jet::Pager> open(Open_Mode mode = Open_Mode::read_write) {
        return open_pager(files::real_disk(), path, mode, std::chrono::seconds(30));
    }

    support::Temporary_Folder folder;
    std::string path = folder / name;
};

TEST_F(Pager_Process, two_write_in_turn_and_a_third_never_sees_half) {
    const std::uint32_t rounds = support::long_tests() ? 3000 : 60;
    const auto write = [&] {
        std::unique_ptr<jet::Pager> pager;
        for (std::uint32_t i = 0; i < rounds; ++i) {
            if (i % 40 == 0) pager = open(); // copies come and go
            raise_all(*pager);
        }
        return true;
    };
    const auto watch = [&] {
        const auto pager = open(Open_Mode::read_only);
        std::uint32_t last = 0;
        while (last < 2 * rounds) {
            const auto found = common_state(*pager);
            if (!found || *found < last) return false;
            last = *found;
        }
        return true;
    };
    const pid_t children[] = {start(write), start(write), start(watch)};
    for (const pid_t child : children) EXPECT_TRUE(ends_well(child));
    EXPECT_EQ(common_state(*open()), 2 * rounds);
    EXPECT_FALSE(std::filesystem::exists(path + "-journal"));
}

TEST_F(Pager_Process, killed_at_any_time_it_leaves_whole_states) {
    std::mt19937 random(7);
    std::uint32_t last = 0;
    int recovered = 0;
    unsigned patience = 1; // a busy machine may take long to finish the first operation
    for (int round = 0; round < (support::long_tests() ? 1000 : 40); ++round) {
        const pid_t child = start([&] {
            const auto pager = open();
            for (;;) raise_all(*pager);
            return true;
        });
        std::this_thread::sleep_for(
            std::chrono::microseconds(patience * (5000 + random() % 20000)));
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        const auto pager = open();
        const auto found = common_state(*pager);
        ASSERT_TRUE(found) << round;
        if (*found == 0 && patience < 64) patience *= 2;
        ASSERT_GE(*found, last);
        ASSERT_FALSE(pager->report().foreign_journal);
        last = *found;
        recovered += pager->report().recovery != jet::Pager_Report::Recovery::none;
    }
    EXPECT_GT(last, 0U);
    RecordProperty("taken_back", recovered);
}

/// Runs the step as a user without rights; only the administrator can become one.
bool as_nobody(const std::function<bool()>& step) {
    return ends_well(start([&] {
        constexpr unsigned nobody = 65534;
        if (::setgroups(0, nullptr) != 0 || ::setgid(nobody) != 0 || ::setuid(nobody) != 0)
            return false;
        return step();
    }));
}

TEST_F(Pager_Process, without_rights_the_library_is_shown_and_says_why) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "needs the administrator to become somebody without rights";
    const auto refused = [&](jet::Failure kind) {
        return as_nobody([&] {
            const auto pager = open();
            const auto report = pager->report();
            return report.refusal && report.refusal->kind == kind && common_state(*pager) == 0U;
        });
    };
    ::chmod(folder.path().c_str(), 0755);
    ::chmod(path.c_str(), 0644); // may be read only
    EXPECT_TRUE(refused(jet::Failure::read_only));
    ::chmod(path.c_str(), 0666); // may be written, but not the folder
    EXPECT_TRUE(refused(jet::Failure::read_only));
    ::chmod(folder.path().c_str(), 0733); // may be written, but not opened
    EXPECT_TRUE(refused(jet::Failure::read_only));
    ::chmod(folder.path().c_str(), 0777);
    EXPECT_TRUE(as_nobody([&] {
        raise_all(*open());
        return true;
    }));
    ::chmod(path.c_str(), 0600); // not even to be read
    EXPECT_TRUE(as_nobody([&] {
        try {
            open();
        } catch (const jet::Error& error) {
            return error.kind == jet::Failure::denied;
        }
        return false;
    }));
    EXPECT_EQ(common_state(*open()), 1U);
}

TEST_F(Pager_Process, the_journal_has_the_rights_of_its_database) {
    for (const mode_t mode : {0664U, 0600U}) {
        ::chmod(path.c_str(), mode);
        const auto pager = open();
        raise_all(*pager);
        struct stat found {};
        ASSERT_EQ(::stat((path + "-journal").c_str(), &found), 0);
        EXPECT_EQ(found.st_mode & 0777, mode);
    }
}

TEST_F(Pager_Process, what_lies_in_the_place_of_the_journal_is_not_used) {
    using jet::Blocked;
    namespace fs = std::filesystem;
    const std::string journal = path + "-journal";
    const std::string other = folder / "other";
    files::replace_file(files::real_disk(), other, Page_Bytes(512));
    struct Case {
        const char* what;
        std::function<void()> lay;
        Blocked blocked;
    };
    const Case cases[] = {
        {"pipe", [&] { ::mkfifo(journal.c_str(), 0666); }, Blocked::journal_no_file},
        {"folder", [&] { fs::create_directory(journal); }, Blocked::journal_no_file},
        {"link", [&] { fs::create_symlink(other, journal); }, Blocked::journal_no_file},
        {"link to nothing", [&] { fs::create_symlink(other + "2", journal); },
         Blocked::journal_no_file},
        {"sparse",
         [&] {
             files::replace_file(files::real_disk(), journal, {});
             fs::resize_file(journal, std::uintmax_t{1} << 42);
         },
         Blocked::no},
        {"sparse, of four thousand million entries",
         [&] {
             jet::Journal_Head head;
             head.state = jet::Journal_State::operation;
             head.page_size = 4096;
             head.entries = 4'000'000'000;
             head.size_before = pages * 4096;
             head.size_after = std::uint64_t{1} << 50;
             files::replace_file(files::real_disk(), journal, encode(head));
             fs::resize_file(journal, std::uintmax_t{1} << 42);
         },
         Blocked::no},
        {"second name", [&] { fs::create_hard_link(path, folder / "second.mdb"); },
         Blocked::second_name},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        c.lay();
        {
            const auto pager = open();
            const auto report = pager->report();
            EXPECT_EQ(report.refusal ? report.refusal->blocked : Blocked::no, c.blocked);
            EXPECT_EQ(common_state(*pager), 0U);
        }
        fs::remove(journal);
        EXPECT_EQ(files::read_file(files::real_disk(), other), Page_Bytes(512));
        EXPECT_FALSE(fs::exists(other + "2"));
    }
}

TEST_F(Pager_Process, links_lead_to_one_journal) {
    std::filesystem::create_symlink(name, folder / "link.mdb");
    const auto one = open();
    const auto two = open_pager(files::real_disk(), folder / "link.mdb", Open_Mode::read_write);
    raise_all(*one);
    raise_all(*two);
    EXPECT_EQ(common_state(*one), 2U);
    EXPECT_EQ(common_state(*two), 2U);
    EXPECT_FALSE(std::filesystem::exists(folder / "link.mdb-journal"));
}

TEST_F(Pager_Process, a_link_that_leads_elsewhere_is_a_replaced_file) {
    std::filesystem::create_symlink(name, folder / "link.mdb");
    const auto pager = open_pager(files::real_disk(), folder / "link.mdb", Open_Mode::read_write);
    raise_all(*pager);
    std::filesystem::rename(path, folder / "moved.mdb");
    std::filesystem::remove(folder / "link.mdb");
    std::filesystem::create_symlink("moved.mdb", folder / "link.mdb");
    EXPECT_THROW(pager->begin_write(), jet::Error); // its journal lies beside the old name
}

} // namespace
