#include "app/diagnostic_log.h"
#include "app/mod_fileverwaltung.h"
#include "app/mod_main.h"
#include "app/mod_save_settings.h"
#include "app/sequences.h"

#include "platform/files/faulty_disk.h"
#include "platform/files/memory_disk.h"
#include "platform/files/replace.h"
#include "platform/timing/virtual_time.h"
#include "support/crash_sweep.h"
#include "support/scripted_desktop.h"

#include <gmock/gmock.h>

using namespace app;
using testing::ElementsAre;

namespace {

files::Memory_Disk::Bytes bytes(std::string_view text) {
    const auto view = std::as_bytes(std::span(text));
    return {view.begin(), view.end()};
}

std::string text(const files::Memory_Disk& disk, const std::string& path) {
    const auto content = disk.bytes(path);
    return {reinterpret_cast<const char*>(content.data()), content.size()};
}

const std::string template_path = "/usr/share/KELDA/TRV/CV-Sets_leer.mdb";
const std::string default_path = "/home/anna/Dokumente/KELDA/CV-Sets/CV-Sets.mdb";

struct Start : testing::Test {
    Start() {
        for (const char* folder : {"/home", "/home/anna", "/home/anna/Dokumente", "/usr",
                                   "/usr/share", "/usr/share/KELDA", "/usr/share/KELDA/TRV"})
            disk.make_folder(folder);
    }
    ~Start() override { reset_globals(); }

    files::Memory_Disk disk;
    support::Scripted_Desktop desktop;
};

struct Noting_Window : Main_Window {
    std::vector<std::string> calls;
    Window_Place now{{8000}, {15945}, {10}, {20}};
    Window_Place place() override { return now; }
    void move_to(const Window_Place& place) override {
        calls.push_back("move to " + std::to_string(place.left.value));
        now = place;
    }
    void default_database_made() override { calls.emplace_back("made"); }
    void Fill_Last_Files_Menu() override { calls.emplace_back("recent files"); }
    void Redraw_Script_List() override { calls.emplace_back("scripts"); }
    void Open_Database() override { calls.push_back("open " + current_database().toStdString()); }
    void choose_decoder_family(int i) override { calls.push_back("family " + std::to_string(i)); }
    void close_other_windows() override { calls.emplace_back("close windows"); }
    void Connection_Close() override { calls.emplace_back("close database"); }
    void no_default_database(const files::Error& e) override { calls.push_back("no " + e.subject); }
};

} // namespace

TEST_F(Start, the_first_makes_a_library_and_the_next_finds_what_the_run_before_has_kept) {
    disk.set_bytes(template_path, bytes("template"));
    disk.set_bytes("/home/anna/Anlage.mdb", bytes("mine"));
    Noting_Window window;
    start_up(window, desktop, disk);
    EXPECT_EQ(text(disk, default_path), "template");
    EXPECT_THAT(window.calls, ElementsAre("move to 10", "recent files", "scripts", "made",
                                          "open " + default_path, "family 0"));
    EXPECT_EQ(globals.EmptyDBTemplate.toStdString(), template_path); // not the first data folder
    EXPECT_EQ(globals.FKeyNames[29], QStringLiteral("MAN"));
    window.calls.clear();
    set_current_database(QStringLiteral("/home/anna/Anlage.mdb"));
    globals.comport = 7;
    window.now.left = {4500};
    EXPECT_FALSE(shut_down(window, disk));
    EXPECT_THAT(window.calls, ElementsAre("close windows", "close database"));
    reset_globals();
    Noting_Window next;
    start_up(next, desktop, disk);
    EXPECT_EQ(globals.comport, 7);
    EXPECT_EQ(globals.MonitorCount, 1);
    EXPECT_THAT(next.calls, ElementsAre("move to 4500", "recent files", "scripts",
                                        "open /home/anna/Anlage.mdb", "family 0"));
}

TEST_F(Start, neither_a_crash_nor_a_failing_disk_loses_the_settings) {
    Noting_Window window;
    start_up(window, desktop, disk);
    ASSERT_FALSE(shut_down(window, disk));
    const std::string path = IniFile().toStdString();
    const auto before = disk.bytes(path);
    globals.comport = 9;
    files::Memory_Disk changed = disk.copy();
    ASSERT_FALSE(shut_down(window, changed));
    const auto after = changed.bytes(path);
    const auto save = [&](files::Disk& on) {
        if (const auto trouble = shut_down(window, on)) throw *trouble;
    };
    const auto whole = [&](files::Disk& found, support::Outcome outcome) {
        const auto left = files::read_file(found, path);
        EXPECT_TRUE(left == after || (left == before && outcome != support::Outcome::finished));
    };
    EXPECT_GT(support::sweep_crashes(disk, save, whole, true), 10);
    EXPECT_GT(support::sweep_refusals(disk, save, whole), 5);
}

TEST_F(Start, goes_on_without_a_database_and_says_why) {
    Noting_Window window;
    start_up(window, desktop, disk); // no template anywhere
    EXPECT_THAT(window.calls, ElementsAre("move to 10", "recent files", "scripts",
                                          "no /opt/share/KELDA/TRV/CV-Sets_leer.mdb",
                                          "open " + default_path, "family 0"))
        << "the cause stands before what follows from it";

    disk.set_bytes(template_path, bytes("template"));
    files::Faulty_Disk full(disk);
    full.limit_room(4);
    Window_Place place;
    EXPECT_EQ(Init_Globals(desktop, full, place).trouble.value().kind, files::Failure::disk_full);
    disk.protect_folder("/home/anna/Dokumente/KELDA/CV-Sets");
    window.calls.clear();
    start_up(window, desktop, disk);
    EXPECT_THAT(window.calls.at(3), testing::StartsWith("no /home/anna/Dokumente/KELDA"));
    EXPECT_THAT(disk.paths(), ElementsAre(template_path)) << "a half copy stayed behind";
}

TEST_F(Start, falls_back_to_the_standard_folder_and_overwrites_nothing) {
    disk.set_bytes(template_path, bytes("template"));
    Init_Paths(desktop, disk);
    for (const std::string folder : {"", "/home/anna/neu/tief/"}) {
        const std::string found = folder.empty() ? default_path : folder + "CV-Sets.mdb";
        globals.StdSetdir = QString::fromStdString(folder);
        for (const std::string content : {"template", "mine"}) {
            if (content == "mine") disk.set_bytes(found, bytes(content));
            set_current_database(QStringLiteral("/home/anna/weg/Anlage.mdb"));
            EXPECT_EQ(Check_Database_File(disk).made, content == "template");
            EXPECT_EQ(current_database().toStdString(), found);
            EXPECT_EQ(text(disk, found), content);
        }
    }
}

TEST_F(Start, folders_are_made_with_those_above_them) {
    disk.set_bytes("/home/datei", bytes("x"));
    for (const char* made : {"/home/a/b/c", "/home/a/b/d/", "/"})
        EXPECT_TRUE(EnsureFolder(disk, QString::fromUtf8(made))) << made;
    for (const char* refused : {"/home/datei", "/home/datei/unter", "ohne_wurzel"})
        EXPECT_FALSE(EnsureFolder(disk, QString::fromUtf8(refused))) << refused;
    EXPECT_TRUE(disk.folder_exists("/home/a/b/c"));
    EXPECT_FALSE(FileExists(disk, QStringLiteral("/home/a"))) << "a folder is no file";
    EXPECT_EQ(FileOf(QStringLiteral("b.mdb")), QStringLiteral("b.mdb"));
    EXPECT_EQ(PathOf(QStringLiteral("b.mdb")), QString());
}

TEST_F(Start, a_recent_file_moves_to_the_end_and_is_there_once) {
    const auto path = [](const char* name) { return QString::fromUtf8(name); };
    globals.LastFiles = {path("/a.mdb"), path("/A.mdb"), path("/a.mdb"), path("/b.mdb")};
    Add_Last_File(path("/a.mdb"));
    EXPECT_EQ(globals.LastFiles, QStringList({path("/A.mdb"), path("/b.mdb"), path("/a.mdb")}));
    EXPECT_EQ(last_files_newest_first().first(), path("/a.mdb"));
    EXPECT_TRUE(is_database_name(path("/X.Mdb")));
    EXPECT_FALSE(is_database_name(path("/x.vqx")));
}

TEST_F(Start, the_log_keeps_its_newer_half_and_whole_lines) {
    const std::string path = "/home/anna/log.txt";
    timing::Virtual_Time time(QDateTime({2026, 5, 4}, {3, 2, 1}));
    Diagnostic_Log log(disk, QString::fromStdString(path), time);
    log.write(QStringLiteral("ein\nSatz"));
    EXPECT_EQ(text(disk, path), "2026-05-04 03:02:01 ein Satz\n");
    const QString filler(1000, u'ä');
    for (int i = 0; i < 600; ++i) log.write(QString::number(i) + u' ' + filler);
    const std::string kept = text(disk, path);
    EXPECT_LE(kept.size(), Diagnostic_Log::max_size);
    EXPECT_GT(kept.size(), Diagnostic_Log::max_size / 2);
    EXPECT_THAT(kept, testing::StartsWith("2026-05-04 03:02:01 "));
    EXPECT_THAT(kept, testing::HasSubstr(" 599 "));
    EXPECT_THAT(kept, testing::Not(testing::HasSubstr(" ein Satz")));
    disk.protect(path);
    EXPECT_FALSE(log.write(QStringLiteral("nobody hears this"))); // and nothing is thrown
}
