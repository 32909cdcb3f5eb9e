// Whole libraries on their way from the database to the project file. What the model holds of them
// is held against independent readers by the tests of the store.
#include "export/library.h"
#include "export/read_vqx.h"

#include "platform/files/replace.h"
#include "scripts/script_session.h"
#include "store/clsDBConn.h"

namespace vqx_export {
namespace {

TEST(Sample_Libraries, come_out_with_every_cv_and_script_or_tell_what_is_missing) {
    const std::string folder = CV_SETS_SAMPLES;
    if (!files::real_disk().folder_exists(folder)) GTEST_SKIP() << "no samples";
    for (const std::string sample : {"library_2000", "library_2003", "old_library",
                                     "partly_numbered", "worn_library", "orphans"}) {
        SCOPED_TRACE(sample);
        Library library;
        library.disk.set_bytes(
            "/in.mdb", files::read_file(files::real_disk(), folder + "/" + sample + ".mdb"));
        store::clsDBConn connection(library.disk);
        connection.Connection_Start(QStringLiteral("/in.mdb"));
        connection.Fill_Sets_in_SetObj(library.sets);
        connection.Fill_Scripts_in_ScriptsObj(library.script_sets);
        const auto report = library.save(File_Type::oem);
        ASSERT_EQ(report.written, sample != "library_2003") << "a parameter above 255";
        if (!report.written) continue;
        const auto written = library.file();
        for (const auto& set : library.script_sets.NewEnum()) {
            connection.AktCVSetID(set->SetID);
            connection.DB_Load_Scripts();
            for (int i = 1; i <= scripts::AktScripts().Count(); ++i) {
                const auto script = scripts::AktScripts().Item(i);
                scripts::Script_Session(*script).write_back(*script);
                EXPECT_TRUE(connection.DB_Save_Script_States(i));
            }
        }
        connection.Fill_Scripts_in_ScriptsObj(library.script_sets);
        library.disk.set_bytes(Library::path, {});
        EXPECT_TRUE(library.save(File_Type::oem).written);
        EXPECT_EQ(library.file() == written, true) << "scripts stored without an edit";
        const Read_Vqx read(written);
        ASSERT_EQ(read.sets.size(), static_cast<std::size_t>(library.sets.Count()));
        const auto& left = report.left_out_cvs;
        auto cvs = left.out_of_range + left.covered + left.repeated - library.sets.CVs_Left_Out;
        for (const auto& set : read.sets)
            for (const auto& page : set.second) cvs += std::ssize(page.second) / 2;
        for (const auto& set : library.sets)
            for (const auto& page : *set) cvs -= page->Count();
        EXPECT_EQ(cvs, 0);
        EXPECT_EQ(read.blocks.value_or(Read_Vqx::Blocks()).size(),
                  std::size_t(report.sets_with_scripts));
    }
}

} // namespace
} // namespace vqx_export
