#include "main_window.h"

#include <QMenu>
#include <algorithm>

using namespace ui_main;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

const QString attention = QStringLiteral("Achtung");
const QString overwrite_database = QStringLiteral("Datenbank vorhanden! Überschreiben?");
const QString overwrite_file = QStringLiteral("Datei vorhanden! Überschreiben?");

struct Files_Test : Main_Window_Test {
    void SetUp() override {
        if (samples_missing()) GTEST_SKIP();
        put_template();
        put_sample("library_2003", "/home/anna/andere.mdb");
        start();
    }
    std::vector<std::string> recent() {
        std::vector<std::string> all;
        for (const QAction* action : get<QMenu>("mnu_open_last").actions()) {
            all.push_back(action->text().toStdString());
        }
        return all;
    }
    std::string title() { return window->windowTitle().toStdString(); }
};

} // namespace

TEST_F(Files_Test, opening_proposes_the_current_library_and_cancelling_keeps_it) {
    desktop.expect_open({});
    choose("mnu_open_database");
    EXPECT_EQ(desktop.last_choice.file, QStringLiteral("CV-Sets.mdb"));
    EXPECT_EQ(desktop.last_choice.folder, app::globals.StdSetPath);
    EXPECT_EQ(desktop.last_choice.extension, QStringLiteral(".mdb"));
    EXPECT_EQ(desktop.last_choice.filter, QStringLiteral("Datenbank (*.mdb)"));
    EXPECT_THAT(title(), HasSubstr(default_path));

    desktop.expect_open(QStringLiteral("/home/anna/andere.mdb"));
    choose("mnu_open_database");
    EXPECT_EQ(title(), "CV-Sets Datenbank: /home/anna/andere.mdb");
    EXPECT_EQ(row(sets(), 0), "10 - Grundeinstellung Lokdecoder");
    EXPECT_THAT(recent(), ElementsAre("/home/anna/andere.mdb", default_path));
}

TEST_F(Files_Test, a_file_that_cannot_be_opened_leaves_nothing_open_but_is_recent) {
    const std::string words = "kein Jet";
    const auto view = std::as_bytes(std::span(words));
    disk.set_bytes("/home/anna/text.mdb", {view.begin(), view.end()});
    auto damaged = disk.bytes("/home/anna/andere.mdb");
    std::fill_n(damaged.begin() + 2 * 4096, 600, std::byte{9}); // the catalogue's definition
    disk.set_bytes("/home/anna/kaputt.mdb", damaged);
    const struct {
        const char* path;
        const char* said;
    } cases[] = {{"/home/anna/text.mdb", "keine Datenbank"},
                 {"/home/anna/kaputt.mdb", "„kaputt.mdb“ ist beschädigt"},
                 {"/home/anna/weg.mdb", "vorhanden"}};
    for (const auto& c : cases) {
        desktop.expect_open(QString::fromUtf8(c.path));
        choose("mnu_open_database");
        EXPECT_EQ(title(), "CV-Sets (keine Datenbank geöffnet)");
        EXPECT_THAT(status(), HasSubstr(c.said));
        EXPECT_EQ(sets().count(), 0);
        EXPECT_EQ(cvs().count(), 0);
        EXPECT_EQ(database.AktCVSetID(), 0);
        EXPECT_EQ(recent().front(), c.path);
    }
    for (const char* command : {"mnu_cvset_hinzu", "mnu_export_oem"}) {
        choose(command); // no dialog for what cannot be done
        EXPECT_THAT(status(), HasSubstr("keine Datenbank geöffnet")) << command;
    }
}

TEST_F(Files_Test, a_recent_library_opens_and_moves_to_the_top) {
    desktop.expect_open(QStringLiteral("/home/anna/andere.mdb"));
    choose("mnu_open_database");
    choose("mnu_last_files_1");
    EXPECT_THAT(title(), HasSubstr(default_path));
    EXPECT_THAT(recent(), ElementsAre(default_path, "/home/anna/andere.mdb"));
    choose("mnu_last_files_0");
    EXPECT_THAT(recent(), ElementsAre(default_path, "/home/anna/andere.mdb"));

    app::globals.LastFiles.append(QStringLiteral("/home/anna/S&W.vqx"));
    window->Fill_Last_Files_Menu();
    EXPECT_EQ(recent().front(), "/home/anna/S&&W.vqx") << "no mnemonic";
    choose("mnu_last_files_0");
    EXPECT_THAT(title(), HasSubstr(default_path));
    EXPECT_THAT(status(), HasSubstr("S&W.vqx"));
}

TEST_F(Files_Test, creating_copies_the_template_and_asks_before_overwriting) {
    desktop.expect_save({});
    choose("mnu_create_database");
    EXPECT_EQ(desktop.last_choice.file, QString());

    desktop.expect_save(QStringLiteral("/home/anna/andere.mdb"));
    desktop.expect_question(attention, overwrite_database, Answer::no);
    const auto before = disk.bytes("/home/anna/andere.mdb");
    choose("mnu_create_database");
    EXPECT_THAT(title(), HasSubstr(default_path));
    EXPECT_EQ(disk.bytes("/home/anna/andere.mdb"), before);

    desktop.expect_save(QStringLiteral("/home/anna/neu.mdb"));
    choose("mnu_create_database");
    EXPECT_THAT(title(), HasSubstr("/home/anna/neu.mdb"));
    EXPECT_EQ(sets().count(), 0);

    disk.remove(template_path);
    desktop.expect_save(QStringLiteral("/home/anna/andere.mdb"));
    desktop.expect_question(attention, overwrite_database, Answer::yes);
    choose("mnu_create_database");
    EXPECT_THAT(title(), HasSubstr("/home/anna/neu.mdb")) << "the old library stays open";
    EXPECT_EQ(disk.bytes("/home/anna/andere.mdb"), before) << "the old file stays";
    EXPECT_THAT(status(), HasSubstr("CV-Sets_leer.mdb“ fehlt"));
}

TEST_F(Files_Test, the_open_library_can_be_created_anew_or_stays) {
    disk.remove(template_path);
    desktop.expect_save(QString::fromUtf8(default_path));
    desktop.expect_question(attention, overwrite_database, Answer::yes);
    choose("mnu_create_database");
    EXPECT_GT(sets().count(), 0);
    EXPECT_TRUE(database.Connection_Active());

    put_template();
    desktop.expect_save(QString::fromUtf8(default_path));
    desktop.expect_question(attention, overwrite_database, Answer::yes);
    choose("mnu_create_database");
    EXPECT_EQ(sets().count(), 0);
    EXPECT_TRUE(database.Connection_Active());
}

TEST_F(Files_Test, exporting_asks_for_the_file_and_reports) {
    desktop.expect_save({});
    choose("mnu_export_oem");
    EXPECT_EQ(desktop.last_choice.file, QStringLiteral("CV-Sets.vqx"));
    EXPECT_EQ(desktop.last_choice.filter, QStringLiteral("VQX Datei (*.vqx)"));

    const std::string path = "/home/anna/projekt.vqx";
    desktop.expect_save(QString::fromStdString(path));
    choose("mnu_export_oem");
    ASSERT_TRUE(disk.file_exists(path)) << status();
    const auto oem = disk.bytes(path);
    EXPECT_EQ(std::to_integer<char>(oem.at(0)), 'Q');
    EXPECT_THAT(status(), HasSubstr("projekt.vqx“ gespeichert: CV-Sets 45"));

    desktop.expect_save(QString::fromStdString(path));
    desktop.expect_question(attention, overwrite_file, Answer::no);
    choose("mnu_export_user");
    EXPECT_EQ(disk.bytes(path), oem);

    desktop.expect_save(QString::fromStdString(path));
    desktop.expect_question(attention, overwrite_file, Answer::yes);
    choose("mnu_export_user");
    EXPECT_EQ(std::to_integer<char>(disk.bytes(path).at(0)), 'L');
}

TEST_F(Files_Test, a_library_replaced_from_outside_is_closed_and_left_alone) {
    disk.set_bytes("/home/anna/other", disk.bytes("/home/anna/andere.mdb"));
    disk.rename("/home/anna/other", default_path);
    sets().setFocus();
    press(Qt::Key_Delete);
    EXPECT_THAT(status(), HasSubstr("von außen ersetzt"));
    EXPECT_EQ(title(), "CV-Sets (keine Datenbank geöffnet)");
    EXPECT_EQ(sets().count(), 0);
    EXPECT_EQ(cvs().count(), 0);
    EXPECT_EQ(disk.bytes(default_path), disk.bytes("/home/anna/andere.mdb"));
}

TEST_F(Files_Test, closing_the_window_closes_the_library_once) {
    ASSERT_TRUE(database.Connection_Active());
    window->close();
    EXPECT_FALSE(database.Connection_Active());
    database.Connection_Start(QString::fromUtf8(default_path));
    window->unload(); // the end of the session comes after the window has gone
    EXPECT_TRUE(database.Connection_Active());
}

TEST_F(Main_Window_Test, the_first_start_says_what_is_missing) {
    start_bare();
    EXPECT_THAT(status(), HasSubstr("CV-Sets_leer.mdb“ fehlt"));
    EXPECT_EQ(window->windowTitle().toStdString(), "CV-Sets (keine Datenbank geöffnet)");
}
