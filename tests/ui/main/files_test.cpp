#include "main_window.h"
#include "ui/parts/status_line.h"

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
    void open(const std::string& path) {
        desktop.expect_open(QString::fromStdString(path));
        choose("mnu_open_database");
    }
    static std::string hint(QAbstractItemView& list) {
        return list.accessibleDescription().toStdString();
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
                 {"/home/anna/weg.mdb", "vorhanden"},
                 {"/home/anna/ordner.mdb", "„ordner.mdb“ ist keine Datei, sondern ein Ordner"},
                 {"/home/anna/pipe.mdb", "„pipe.mdb“ ist keine Datei"}};
    disk.make_folder("/home/anna/ordner.mdb");
    disk.set_bytes("/home/anna/pipe.mdb", {});
    disk.make_special("/home/anna/pipe.mdb");
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

TEST_F(Files_Test, a_database_of_another_kind_says_so_whatever_is_tried) {
    for (const char* sample : {"indexTestV2000", "testV1997"}) {
        const bool writable = std::string(sample) == "indexTestV2000";
        for (const bool protect : {false, true}) {
            SCOPED_TRACE(std::string(sample) + (protect ? ", protected" : ""));
            const std::string path = "/home/anna/" + std::string(sample) + (protect ? "2" : "1");
            put_sample(sample, (path + ".mdb").c_str());
            if (protect) disk.protect(path + ".mdb");
            open(path + ".mdb");
            const std::string opened = status();
            EXPECT_THAT(opened, HasSubstr("enthält keine CV-Sets"));
            leave_and_return();
            EXPECT_EQ(status(), opened);
            EXPECT_EQ(get<QLabel>("lab_schreibschutz").isVisible(), protect || !writable);
            for (const char* command :
                 {"mnu_cvset_hinzu", "mnu_cvset_rename", "mnu_cvset_del", "mnu_cvset_copy",
                  "mnu_cvset_paste", "mnu_paste", "mnu_cvset_export_txt", "mnu_export_oem"}) {
                desktop.clipboard = {QStringLiteral("SetName,x\r\nObj,Set\r\n"), {}};
                if (std::string(command) == "mnu_paste")
                    desktop.clipboard.text = QStringLiteral("1;3");
                get<ui_parts::Status_Line>("lab_status").say({});
                choose(command);
                EXPECT_THAT(status(), HasSubstr("enthält keine CV-Sets")) << command;
            }
        }
    }
}

TEST_F(Files_Test, a_library_without_its_end_says_so_at_opening_and_is_not_exported) {
    const struct {
        std::size_t pages;
        const char *opened, *lost, *exported, *copied;
    } cases[] = {{80, "geöffnet, CV-Sets: 45.", "mindestens 132 von 452 KB. Davon betroffen: CVs.",
                  "keine Datei geschrieben. Der Datei fehlt das Ende",
                  "Es wurde nichts kopiert. Der Datei fehlt das Ende"},
                 {40, "geöffnet; die CV-Sets fehlen.",
                  "mindestens 292 von 452 KB. Davon betroffen: CV-Sets, CVs",
                  "Der Datei „kurz40.mdb“ fehlt das Ende mit den CV-Sets",
                  "Der Datei „kurz40.mdb“ fehlt das Ende mit den CV-Sets"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.pages);
        auto bytes = disk.bytes("/home/anna/andere.mdb");
        bytes.resize(c.pages * 4096);
        const std::string path = "/home/anna/kurz" + std::to_string(c.pages) + ".mdb";
        disk.set_bytes(path, bytes);
        open(path);
        EXPECT_EQ(title(), "CV-Sets Datenbank: " + path + " – unvollständig, schreibgeschützt");
        EXPECT_THAT(status(), HasSubstr("Der Datei fehlt das Ende; bitte eine vollständige Kopie"));
        EXPECT_THAT(status(), HasSubstr(c.opened));
        EXPECT_THAT(status(), HasSubstr(c.lost));
        choose("mnu_export_oem"); // no dialog
        EXPECT_THAT(status(), HasSubstr(c.exported));
        for (const char* command : {"mnu_cvset_copy", "mnu_cvset_export_txt"}) {
            choose(command);
            EXPECT_THAT(status(), HasSubstr(c.copied)) << command;
        }
        EXPECT_EQ(desktop.clipboard.text, QString());
        if (sets().count() == 0) continue;
        click_row(cvs(), 0);
        choose("mnu_copy");
        EXPECT_THAT(status(), HasSubstr("Kopierte CVs: 1. Vielleicht nicht alle: Der Datei fehlt"));
        desktop.clipboard = {};
    }
}

TEST_F(Files_Test, what_cannot_be_read_is_not_called_empty) {
    const std::string advice = " nicht lesbar: Sicherung oder neue Kopie benutzen";
    const struct {
        std::size_t spoiled, pages; ///< the page of the rows of Sets; how much there is of the file
        const char* said;
        std::string sets, cvs;
    } cases[] = {{68, 113, "geöffnet; die CV-Sets sind nicht lesbar. schreibgeschützt: Die Datei",
                  "CV-Sets" + advice, "Hier stehen die CVs des gewählten CV-Sets"},
                 {0, 40, "die CV-Sets fehlen", "CV-Sets" + advice,
                  "Hier stehen die CVs des gewählten CV-Sets"},
                 {0, 80, "CV-Sets: 45.", "", "CVs" + advice}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.said);
        auto bytes = disk.bytes("/home/anna/andere.mdb");
        bytes.resize(c.pages * 4096);
        if (c.spoiled != 0) std::fill_n(&bytes[c.spoiled * 4096], 4096, std::byte{0xFF});
        const std::string path = "/home/anna/b" + std::to_string(c.pages) + ".mdb";
        disk.set_bytes(path, bytes);
        open(path);
        EXPECT_THAT(status(), HasSubstr(c.said));
        EXPECT_EQ(hint(sets()), c.sets);
        if (c.sets.empty()) sets().select_row(sets().count() - 1);
        EXPECT_EQ(hint(cvs()), c.cvs);
        if (c.sets.empty()) {
            EXPECT_EQ(hint(get<QAbstractItemView>("lvw_Scripts")), "Scripte" + advice);
        }
    }
}

TEST_F(Files_Test, damage_met_late_shows_in_the_title) {
    auto bytes = disk.bytes("/home/anna/andere.mdb");
    bytes.back() ^= std::byte{0x55};
    bytes.at(bytes.size() - 4096 + 2) ^= std::byte{0x55};
    disk.set_bytes("/home/anna/alt.mdb", bytes);
    open("/home/anna/alt.mdb");
    EXPECT_EQ(title(), "CV-Sets Datenbank: /home/anna/alt.mdb");
    delete_chosen_set();
    EXPECT_EQ(title(), "CV-Sets Datenbank: /home/anna/alt.mdb – beschädigt, schreibgeschützt");
    EXPECT_TRUE(get<QLabel>("lab_schreibschutz").isVisible());
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

    const std::string long_name(251, 'n');
    for (const auto& [command, extension] :
         {std::pair("mnu_create_database", ".mdb"), std::pair("mnu_export_oem", ".vqx")}) {
        desktop.expect_save(QString::fromStdString("/home/anna/" + long_name + extension));
        choose(command);
        EXPECT_THAT(status(), HasSubstr("Der Name ist zu lang"));
        EXPECT_THAT(status(), HasSubstr("„" + long_name.substr(0, 59) + "…“ konnte nicht"));
    }

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

TEST_F(Files_Test, odd_file_names_are_shown_as_they_are) {
    const struct {
        const char *name, *project, *title;
    } cases[] = {{"Ganz%1 50%2 [*].mdb", "Ganz%1 50%2 [*].vqx", "/Ganz%1 50%2 [*][*].mdb"},
                 {"a", "a.vqx", "/a"},
                 {"CV.db", "CV.vqx", "/CV.db"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string path = std::string("/home/anna/") + c.name;
        disk.set_bytes(path, disk.bytes(default_path));
        open(path);
        EXPECT_THAT(status(), HasSubstr(std::string("„") + c.name + "“ geöffnet, CV-Sets: 45."));
        EXPECT_EQ(title(), std::string("CV-Sets Datenbank: /home/anna") + c.title);
        desktop.expect_save(QStringLiteral("/home/anna/5%1 %2.vqx"));
        choose("mnu_export_oem");
        EXPECT_EQ(desktop.last_choice.file, QString::fromUtf8(c.project));
        EXPECT_THAT(status(), HasSubstr("„5%1 %2.vqx“ gespeichert: CV-Sets 45"));
        disk.remove("/home/anna/5%1 %2.vqx");
    }
}

TEST_F(Files_Test, script_lines_that_have_no_place_are_told_wherever_they_are_loaded) {
    click_option("opt_rescv_1");
    const std::int32_t set = sets().key(0);
    const std::int32_t script =
        put_row(u"Scripte", {{u"SetID", set}, {u"ScriptName", std::u16string(u"Licht\nhinten")}});
    const auto line = [&](std::int32_t state, std::int32_t value) {
        put_row(u"Scriptstates",
                {{u"ScriptID", script}, {u"State", state}, {u"Command", 1}, {u"Par1", value}});
    };
    line(300, 0);
    const auto left_out = HasSubstr("Script-Zeilen außerhalb 0 bis 255, nicht geladen: 1.");
    click_option("opt_rescv_0");
    click_option("opt_rescv_1");
    EXPECT_THAT(status(), left_out);
    const QAbstractItemModel& shown = *get<QAbstractItemView>("lvw_Scripts").model();
    EXPECT_EQ(shown.index(shown.rowCount() - 1, 1).data(), QStringLiteral("Licht hinten"));
    answer_set_dialog("Anders", "");
    choose("mnu_cvset_rename");
    EXPECT_THAT(status(), testing::AllOf(HasSubstr("umbenannt"), left_out));
    get<ui_parts::Status_Line>("lab_status").say(QStringLiteral("bleibt"));
    leave_and_return([&] { line(2, 0); }); // loaded again, and nothing new is left out
    EXPECT_EQ(status(), "bleibt");
    desktop.expect_save(QStringLiteral("/home/anna/a.vqx"));
    choose("mnu_export_oem");
    EXPECT_THAT(status(), HasSubstr("Script-Zeilen außerhalb 0 bis 255, weggelassen: 1."));
    line(0, 999);
    const QString number = QString::number(database.Get_Set_Nummer(set));
    const QString position = QString::number(database.DB_Count_Scripts(set));
    desktop.expect_save(QStringLiteral("/home/anna/b.vqx"));
    desktop.expect_information(
        QStringLiteral("Information"),
        QStringLiteral(
            "Es wurde keine Datei geschrieben.\nSet %1 „Anders“, Script %2 „Licht hinten“, "
            "Zeile 0: der Parameter 1 ist 999, erlaubt ist 0 bis 255.")
            .arg(number, position));
    choose("mnu_export_oem");
    EXPECT_FALSE(disk.file_exists("/home/anna/b.vqx"));
}

TEST_F(Files_Test, a_library_replaced_from_outside_is_closed_and_left_alone) {
    disk.set_bytes("/home/anna/other", disk.bytes("/home/anna/andere.mdb"));
    disk.rename("/home/anna/other", default_path);
    delete_chosen_set();
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
