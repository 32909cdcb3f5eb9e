// What the program exports, before a judge that knows the format from its description only.

#include "export/export_project.h"
#include "platform/files/memory_disk.h"
#include "platform/files/replace.h"
#include "scripts/cls_Script_Sets.h"
#include "store/clsDBConn.h"
#include "vqx_dump/project.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

struct Library {
    files::Memory_Disk disk;
    store::cls_Sets_Coll sets;
    scripts::cls_Script_Sets scripts;

    void load(const std::string& sample) {
        const auto path = std::string(CV_SETS_SAMPLES) + "/" + sample + ".mdb";
        disk.set_bytes("/library.mdb", files::read_file(files::real_disk(), path));
        store::clsDBConn connection(disk);
        connection.Connection_Start(QStringLiteral("/library.mdb"));
        connection.Fill_Sets_in_SetObj(sets);
        connection.Fill_Scripts_in_ScriptsObj(scripts);
    }

    vqx_export::Report save(vqx_export::File_Type type) {
        return vqx_export::export_project(sets, scripts, type, disk, "/out.vqx");
    }

    std::vector<std::uint8_t> file() const {
        std::vector<std::uint8_t> numbers;
        for (const auto byte : disk.bytes("/out.vqx"))
            numbers.push_back(std::to_integer<std::uint8_t>(byte));
        return numbers;
    }
};

constexpr vqx_export::File_Type types[] = {vqx_export::File_Type::oem, vqx_export::File_Type::user};

/// Everything that was exported is found again, and nothing is wrong with how it stands there.
void expect_consistent(Library& library, vqx_export::File_Type type) {
    const auto report = library.save(type);
    ASSERT_TRUE(report.written);
    vqx_dump::Findings findings;
    const auto project = vqx_dump::read_project(library.file(), findings);
    EXPECT_EQ(findings.inconsistencies(), 0U) << vqx_dump::findings_text(findings);
    EXPECT_EQ(project.oem, type == vqx_export::File_Type::oem);
    EXPECT_EQ(project.dcc.sets.size(), static_cast<std::size_t>(report.sets));
    EXPECT_EQ(project.blocks.size(), static_cast<std::size_t>(report.sets_with_scripts));
}

TEST(Exported_Files, libraries_become_consistent_files) {
    if (!files::real_disk().folder_exists(CV_SETS_SAMPLES)) GTEST_SKIP() << "no samples";
    for (const auto* sample :
         {"library_2000", "old_library", "partly_numbered", "worn_library", "orphans"})
        for (const auto type : types) {
            SCOPED_TRACE(sample);
            Library library;
            library.load(sample);
            expect_consistent(library, type);
        }
}

TEST(Exported_Files, full_counts_take_the_wide_forms) {
    Library library;
    for (std::int16_t set = 0; set < 300; ++set) {
        library.sets.Add_CVSet({}, set % 2 == 0 ? 8 : 265, set, set + 1);
        auto& added = *library.sets.Item(set + 1);
        for (std::int16_t number = 1; number <= 1024; ++number)
            added.Add_CV(number % 20 * 256 + 4, number, static_cast<std::uint8_t>(set));
        const auto scripts = std::make_shared<scripts::cls_script_coll>();
        for (int script = 0; script < (set < 40 ? 16 : 0); ++script)
            scripts->AddScript().StateCount = script * 17;
        if (scripts->Count() > 0) library.scripts.Add(scripts, QString::number(set + 1));
    }
    for (const auto type : types) expect_consistent(library, type);
}

} // namespace
