#include "mdb_check/checking.h"

#include "platform/files/memory_disk.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <sys/wait.h>

namespace mdb_check {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using Bytes = files::Memory_Disk::Bytes;

Bytes sample() {
    std::ifstream in(std::string(CV_SETS_SAMPLES) + "/adox_jet4.mdb", std::ios::binary);
    const std::string all{std::istreambuf_iterator<char>(in), {}};
    const auto* first = reinterpret_cast<const std::byte*>(all.data());
    return {first, first + all.size()};
}

Bytes changed(Bytes bytes, std::size_t at, int value) {
    bytes.at(at) = static_cast<std::byte>(value);
    return bytes;
}

// Page 7 is an index page, byte 2 its free field; 0x14 the version; 0xE04 commit bytes of a user.
Bytes damaged() { return changed(sample(), 7 * 4096 + 2, 1); }
Bytes of_another_version() { return changed(sample(), 0x14, 2); }
Bytes with_a_warning() { return changed(sample(), 0xE05, 0); }

class Mdb_Check : public testing::Test {
protected:
    void SetUp() override {
        if (sample().empty()) GTEST_SKIP() << "no samples";
        disk.set_bytes("sound.mdb", sample());
        disk.set_bytes("damaged.mdb", damaged());
        disk.set_bytes("other.mdb", of_another_version());
        disk.set_bytes("warning.mdb", with_a_warning());
    }

    Status run(const std::vector<std::string>& paths, bool quiet = false) {
        out.str("");
        return check_files(disk, paths, quiet, out);
    }

    files::Memory_Disk disk;
    std::ostringstream out;
};

TEST_F(Mdb_Check, status_is_that_of_the_worst_file) {
    const struct {
        std::vector<std::string> paths;
        Status status;
    } cases[] = {{{"sound.mdb"}, sound},
                 {{"warning.mdb"}, sound},
                 {{"damaged.mdb"}, faulty},
                 {{"other.mdb"}, unreadable},
                 {{"absent.mdb"}, unreadable},
                 {{"sound.mdb", "damaged.mdb", "warning.mdb"}, faulty},
                 {{"absent.mdb", "damaged.mdb"}, unreadable}};
    for (const auto& c : cases) EXPECT_EQ(run(c.paths), c.status) << out.str();
}

TEST_F(Mdb_Check, says_what_is_wrong_file_by_file) {
    run({"sound.mdb", "damaged.mdb", "absent.mdb", "warning.mdb"});
    EXPECT_THAT(
        out.str(),
        AllOf(HasSubstr("sound.mdb: sound (0 faults, 0 warnings)\n"),
              HasSubstr("damaged.mdb: fault: Page 7 of index 'ParentIdName' of table "
                        "'MSysObjects' has 3439 free bytes, but says 3329.\n"
                        "damaged.mdb: damaged (1 fault, 0 warnings)\n"),
              HasSubstr("not readable: absent.mdb: "),
              HasSubstr("warning.mdb: warning: The commit bytes of 1 of 256 users are zero"),
              HasSubstr("warning.mdb: sound (0 faults, 1 warning)\n")));
    run({"warning.mdb"}, true);
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
    for (const auto& [name, status] : {std::pair("sound.mdb", 0), std::pair("damaged.mdb", 1),
                                       std::pair("other.mdb", 2), std::pair("-q", 2)}) {
        const std::string path = name[0] == '-' ? name : folder / name;
        if (name[0] != '-') {
            const Bytes bytes = disk.bytes(name);
            std::ofstream(path, std::ios::binary)
                .write(reinterpret_cast<const char*>(bytes.data()),
                       static_cast<std::streamsize>(bytes.size()));
        }
        const std::string command =
            std::string(CV_SETS_BIN) + "/mdb_check '" + path + "' >/dev/null 2>&1";
        const int result = std::system(command.c_str());
        EXPECT_EQ(WEXITSTATUS(result), status) << name;
    }
}

} // namespace
} // namespace mdb_check
