#include "store/script_import.h"

#include "app/mod_main.h"
#include "scripts/catalogue/commands.h"
#include "scripts/cls_Script_Sets.h"
#include "scripts/script_file.h"
#include "store/library.h"
#include "store/undo_library.h"

#include <gmock/gmock.h>

using namespace store;
using scripts::AktScripts;

namespace {

class Script_Import : public testing::Test {
protected:
    void SetUp() override {
        if (library::names().empty()) GTEST_SKIP();
        library::put(disk, "orphans", "a.mdb");
        clsDBConn(disk).Connection_Start(QStringLiteral("a.mdb"));
    }
    ~Script_Import() override { AktScripts().Clear(); }

    static std::vector<std::shared_ptr<scripts::cls_script>> long_ones() {
        QByteArray file = "Scripts\n";
        for (const char* name : {"A", "B"}) {
            file += QByteArray("Script\nName,") + name + QByteArray(300, 'n') + '\n';
            for (int line = 0; line < 6; ++line)
                file += "State," + QByteArray::number(line) +
                        "\nCommand,30\nParameter,5,1\nInfo,\"" + QByteArray(256, 'i') + "\"\n";
        }
        return scripts::read_script_file(file + "/Scripts").scripts;
    }
    static void choose_set(clsDBConn& db) {
        db.Connection_Start(QStringLiteral("a.mdb"));
        const auto sets = library::sets(db, 8);
        if (sets.empty()) throw std::runtime_error("not opened");
        db.AktCVSetID(sets.back().second);
        db.take_trouble();
        db.DB_Load_Scripts();
        if (db.last_trouble()) throw std::runtime_error("not loaded whole");
    }

    files::Memory_Disk disk;
};

} // namespace

TEST_F(Script_Import, cuts_what_has_no_room_and_counts_it) {
    clsDBConn db(disk);
    choose_set(db);
    const int before = AktScripts().Count();
    const Script_Import_Report report = import_scripts(db, long_ones());
    EXPECT_TRUE(report.kept);
    EXPECT_EQ(report.scripts, 2);
    EXPECT_EQ(report.texts_cut, 2 + 12);
    EXPECT_EQ(report.sources_lost, 12);
    EXPECT_EQ(AktScripts().Count(), before + 2);
    EXPECT_EQ(AktScripts().Item(before + 1)->GetState(5).Info.size(), 255);
    EXPECT_TRUE(db.DB_Save_Script_States(before + 1)) << "it counts as just loaded";
    EXPECT_EQ(library::faults(disk, "a.mdb"), std::vector<std::string>());
}

// Nobody knows then how many more there may be, nor which CVs the others use.
TEST_F(Script_Import, does_nothing_beside_scripts_that_were_not_loaded) {
    clsDBConn db(disk);
    choose_set(db);
    ASSERT_TRUE(import_scripts(db, long_ones()).kept);
    const auto before = undo::content(disk);
    const int count = AktScripts().Count();
    AktScripts().Remove(1);
    EXPECT_FALSE(import_scripts(db, long_ones()).kept);
    EXPECT_EQ(library::trouble(db), "changed");
    EXPECT_EQ(undo::content(disk), before);
    EXPECT_EQ(AktScripts().Count(), count) << "now they are loaded";
}

TEST_F(Script_Import, happens_whole_or_not_at_all) {
    const auto before = undo::content(disk);
    files::Memory_Disk changed = disk.copy();
    {
        clsDBConn db(changed);
        choose_set(db);
        ASSERT_TRUE(import_scripts(db, long_ones()).kept);
    }
    const auto act = [](files::Disk& on) {
        clsDBConn db(on);
        choose_set(db);
        const int count = AktScripts().Count();
        if (import_scripts(db, long_ones()).kept) return;
        EXPECT_TRUE(AktScripts().Count() == count || AktScripts().Count() == 0);
        throw std::runtime_error("not imported");
    };
    const auto whole = undo::whole_or_not(before, undo::content(changed));
    EXPECT_GT(support::sweep_refusals(disk, act, whole), 20);
    EXPECT_GT(support::sweep_crashes(disk, act, whole), 20);
}

// Every script of every library goes through the editor's form and through a file, and comes back.
TEST_F(Script_Import, the_scripts_of_all_samples_come_back_from_editor_and_file) {
    int lines = 0;
    for (const std::string& sample : library::names()) {
        SCOPED_TRACE(sample);
        library::put(disk, sample, "b.mdb");
        clsDBConn db(disk);
        db.Connection_Start(QStringLiteral("b.mdb"));
        scripts::cls_Script_Sets sets;
        db.Fill_Scripts_in_ScriptsObj(sets);
        for (const auto& set : sets.NewEnum())
            for (const auto& stored : *set) {
                scripts::cls_script editor, through_editor, file;
                editor.Import_vqx_2_Listindex(*stored);
                through_editor.Import_Listindex_2_vqx(editor);
                file.Import_vqx_2_vqr(*stored);
                int replaced = 0;
                const auto read =
                    scripts::read_script_file(scripts::script_file_of(file, replaced));
                ASSERT_EQ(read.scripts.size(), 1U);
                scripts::cls_script through_file;
                through_file.Import_vqr_2_vqx(*read.scripts[0]);
                ASSERT_EQ(through_file.StateCount, stored->StateCount);
                for (int i = 0; i < stored->StateCount; ++i, ++lines) {
                    scripts::cls_Scriptstate line = stored->GetState(i);
                    const bool has_step = line.GetCommand() == 1 && (line.GetPar(3) & 1) == 0 &&
                                          line.GetPar(1) >= 1 && line.GetPar(1) <= 9;
                    if (has_step)
                        line.SetPar(1, app::globals.VolumeSteps.at(
                                           static_cast<std::size_t>(line.GetPar(1))));
                    EXPECT_EQ(through_editor.GetState(i), line) << i;
                    for (int par = scripts_catalogue::ParameterCount(line.GetCommand()); par < 7;
                         ++par)
                        line.SetPar(par, 0); // a file does not hold them
                    // nor what its code page does not have
                    if (replaced > 0) line.Info = through_file.GetState(i).Info;
                    EXPECT_EQ(through_file.GetState(i), line) << i;
                }
            }
    }
    EXPECT_GT(lines, 100);
}
