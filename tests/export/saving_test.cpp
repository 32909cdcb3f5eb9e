#include "export/library.h"

#include "platform/files/faulty_disk.h"

#include <gmock/gmock.h>

namespace vqx_export {
namespace {

using testing::ElementsAre;
using Bytes = std::vector<std::uint8_t>;

/// A library whose project file was saved before its last change, saved again on a disk that fails.
struct Saving {
    Library library;
    Bytes old_file, new_file;
    files::Faulty_Disk faulty{library.disk};

    Saving() {
        library.add_set(1, 8, 10).Add_CV(1, 1, 3);
        library.add_scripts(1, 1, 5);
        library.save();
        old_file = library.file();
        for (int i = 0; i < 200; ++i) library.sets.Item(1)->Add_CV(300, 300, 7);
        library.add_set(2, 8, 11);
        library.save();
        new_file = library.file();
        library.disk.set_bytes(Library::path, as_bytes(old_file));
    }

    static files::Memory_Disk::Bytes as_bytes(const Bytes& numbers) {
        files::Memory_Disk::Bytes bytes;
        for (const auto number : numbers) bytes.push_back(std::byte{number});
        return bytes;
    }

    Report save() {
        return export_project(library.sets, library.script_sets, File_Type::user, faulty,
                              Library::path);
    }
};

TEST(Saving_A_Project_File, leaves_the_old_or_the_new_one_whole_whatever_call_is_refused) {
    for (const bool lasting : {false, true}) {
        int refused = 0;
        for (int nth = 1;; ++nth) {
            SCOPED_TRACE(testing::Message() << "call " << nth << (lasting ? " and all later" : ""));
            Saving saving;
            files::Faulty_Disk::Fault fault;
            fault.nth = nth;
            fault.lasting = lasting;
            saving.faulty.set_fault(fault);
            const auto report = saving.save();
            if (!saving.faulty.struck()) {
                EXPECT_TRUE(report.written);
                EXPECT_EQ(saving.library.file(), saving.new_file);
                break;
            }
            ++refused;
            EXPECT_FALSE(report.written);
            ASSERT_TRUE(report.failure);
            EXPECT_EQ(report.failure->kind, files::Failure::device);
            const bool in_place = saving.faulty.calls(files::Faulty_Disk::Call::sync_folder) > 0;
            EXPECT_EQ(saving.library.file(), in_place ? saving.new_file : saving.old_file);
            if (!lasting) {
                EXPECT_THAT(saving.library.disk.paths(), ElementsAre(Library::path));
            }
        }
        EXPECT_GE(refused, 6) << "open, two writes, sync, rename, sync of the folder";
    }
}

TEST(Saving_A_Project_File, on_a_full_disk_keeps_the_old_one) {
    for (const auto room : {0U, 1U, 127U, 128U, 140U}) {
        Saving saving;
        saving.faulty.limit_room(room);
        const auto report = saving.save();
        ASSERT_TRUE(report.failure);
        EXPECT_EQ(report.failure->kind, files::Failure::disk_full);
        EXPECT_EQ(saving.library.file(), saving.old_file);
        EXPECT_THAT(saving.library.disk.paths(), ElementsAre(Library::path));
    }
}

TEST(Saving_A_Project_File, tells_which_file_could_not_be_written) {
    Saving saving;
    const auto report = export_project(saving.library.sets, saving.library.script_sets,
                                       File_Type::user, saving.faulty, "/nowhere/out.vqx");
    ASSERT_TRUE(report.failure);
    EXPECT_EQ(report.failure->kind, files::Failure::not_found);
    EXPECT_THAT(report.failure->subject, testing::HasSubstr("/nowhere/out.vqx"));
}

} // namespace
} // namespace vqx_export
