#include "export/library.h"

#include "platform/files/replace.h"
#include "support/crash_sweep.h"

#include <gmock/gmock.h>

namespace vqx_export {
namespace {

using support::Outcome;

TEST(Saving_A_Project_File, leaves_the_old_or_the_new_one_whole_whatever_fails) {
    Library library;
    library.add_set(1, 8, 10).Add_CV(1, 1, 3);
    library.add_scripts(1, 1, 5);
    library.save();
    files::Memory_Disk disk = library.disk.copy();
    const auto before = disk.bytes(Library::path);
    library.add_set(2, 8, 11);
    library.save();
    const auto after = library.disk.bytes(Library::path);
    const auto report_of = [&](files::Disk& on, const char* path) {
        return export_project(library.sets, library.script_sets, File_Type::user, on, path);
    };
    const auto save = [&](files::Disk& on) {
        const auto report = report_of(on, Library::path);
        EXPECT_EQ(report.written, !report.failure);
        if (report.failure) throw *report.failure;
    };
    const auto whole = [&](files::Disk& found, Outcome outcome) {
        const auto left = files::read_file(found, Library::path);
        EXPECT_TRUE(left == after || (left == before && outcome != Outcome::finished));
        if (outcome != Outcome::refused) return;
        EXPECT_THAT(dynamic_cast<files::Memory_Disk&>(found).paths(),
                    testing::ElementsAre(Library::path));
    };
    EXPECT_GT(support::sweep_crashes(disk, save, whole, true), 10);
    EXPECT_GT(support::sweep_refusals(disk, save, whole), 5);
    const auto report = report_of(disk, "/nowhere/out.vqx");
    EXPECT_EQ(report.failure.value().kind, files::Failure::not_found);
    EXPECT_THAT(report.failure->subject, testing::HasSubstr("/nowhere/out.vqx"));
}

} // namespace
} // namespace vqx_export
