#include "mdb_check/checking.h"

#include "platform/files/memory_disk.h"
#include "platform/files/replace.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <sstream>
#include <sys/wait.h>

namespace mdb_check {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using Bytes = files::Memory_Disk::Bytes;

Bytes changed(Bytes bytes, std::size_t at, int value) {
    bytes.at(at) = static_cast<std::byte>(value);
    return bytes;
}

struct Mdb_Check : testing::Test {
    void SetUp() override {
        const std::string sample = CV_SETS_SAMPLES "/adox_jet4.mdb";
        if (!files::real_disk().file_exists(sample)) GTEST_SKIP() << "no samples";
        const Bytes bytes = files::read_file(files::real_disk(), sample);
        disk.set_bytes("sound.mdb", bytes);
        disk.set_bytes("damaged.mdb",
                       changed(bytes, 7 * 4096 + 2, 1));         // free field of an index page
        disk.set_bytes("other.mdb", changed(bytes, 0x14, 2));    // the version
        disk.set_bytes("warning.mdb", changed(bytes, 0xE05, 0)); // commit bytes of a user
    }

    Status run(const std::vector<std::string>& paths, bool quiet = false) {
        out.str("");
        return check_files(disk, paths, quiet, out);
    }

    files::Memory_Disk disk;
    std::ostringstream out;
};

TEST_F(Mdb_Check, says_what_is_wrong_file_by_file_and_has_the_status_of_the_worst) {
    EXPECT_EQ(run({"sound.mdb", "damaged.mdb", "warning.mdb"}), faulty);
    EXPECT_EQ(run({"sound.mdb", "absent.mdb", "damaged.mdb", "warning.mdb"}), unreadable);
    EXPECT_THAT(
        out.str(),
        AllOf(HasSubstr("sound.mdb: sound (0 faults, 0 warnings)\n"),
              HasSubstr("damaged.mdb: fault: Page 7 of index 'ParentIdName' of table "
                        "'MSysObjects' has 3439 free bytes, but says 3329.\n"
                        "damaged.mdb: damaged (1 fault, 0 warnings)\n"),
              HasSubstr("not readable: absent.mdb: "),
              HasSubstr("warning.mdb: warning: The commit bytes of 1 of 256 users are zero"),
              HasSubstr("warning.mdb: sound (0 faults, 1 warning)\n")));
    EXPECT_EQ(run({"warning.mdb"}, true), sound);
    EXPECT_EQ(out.str(), "warning.mdb: sound (0 faults, 1 warning)\n");
}

TEST_F(Mdb_Check, mentions_a_journal_only_with_an_open_change) {
    Bytes journal(512);
    std::ranges::transform(std::string_view("CVSETJ01"), journal.begin(),
                           [](char sign) { return static_cast<std::byte>(sign); });
    const auto note = HasSubstr("a change was not finished");
    disk.set_bytes("sound.mdb-journal", journal);
    run({"sound.mdb"});
    EXPECT_THAT(out.str(), Not(note));
    for (const int state : {0x5A, 0xA5}) {
        disk.set_bytes("sound.mdb-journal", changed(journal, 504, state));
        EXPECT_EQ(run({"sound.mdb"}), sound);
        EXPECT_THAT(out.str(), AllOf(note, HasSubstr("sound.mdb-journal")));
    }
    disk.set_bytes("sound.mdb-journal", changed(changed(journal, 504, 0x5A), 0, 'X'));
    run({"sound.mdb"});
    EXPECT_THAT(out.str(), Not(note));
}

TEST_F(Mdb_Check, leaves_alone_what_another_program_writes) {
    const auto writer = disk.open("sound.mdb", files::Access::read_write);
    ASSERT_TRUE(writer->lock(files::Lock::exclusive, {}));
    EXPECT_EQ(run({"sound.mdb"}), unreadable);
    EXPECT_THAT(out.str(), HasSubstr("another program is writing"));
}

TEST_F(Mdb_Check, the_program_ends_with_the_status) {
    const support::Temporary_Folder folder;
    for (const auto& [name, status] :
         {std::pair("sound.mdb", 0), {"damaged.mdb", 1}, {"other.mdb", 2}, {"-q", 2}}) {
        const std::string path = name[0] == '-' ? name : folder / name;
        if (name[0] != '-') files::replace_file(files::real_disk(), path, disk.bytes(name));
        const std::string command =
            std::string(CV_SETS_BIN) + "/mdb_check '" + path + "' >/dev/null 2>&1";
        const int result = std::system(command.c_str());
        EXPECT_EQ(WEXITSTATUS(result), status) << name;
    }
}

} // namespace
} // namespace mdb_check
