#include "main_window.h"

#include "app/one_line.h"
#include "app/ui/frm_Settings.h"
#include "store/undo_library.h"
#include "ui/main/frm_Backups.h"
#include "ui/parts/window_placer.h"

using namespace ui_main;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

const QString copies_folder = QStringLiteral("/home/anna/Dokumente/KELDA/CV-Sets/Sicherungen");

struct Extras_Test : Main_Window_Test {
    void SetUp() override {
        if (samples_missing()) GTEST_SKIP();
        put_template();
        start();
    }
    undo::Content content() { return undo::content(disk, default_path); }
    /// The keys, wherever the focus is.
    void undo(Qt::KeyboardModifiers also = {}) {
        press(Qt::Key_Z, Qt::ControlModifier | also);
        QApplication::processEvents();
    }
    void redo() { undo(Qt::ShiftModifier); }
    void in_dialog(const char* command, const char* name, const char* number) {
        answer_set_dialog(name, number);
        choose(command);
    }
    void paste_cvs(const char* text) {
        desktop.clipboard = {QString::fromUtf8(text), {}};
        choose("mnu_paste");
    }
    /// Both lists are those that another copy of the program would fill now.
    void expect_lists_of_library() {
        struct Lines final : store::List_Filler {
            std::vector<std::string> all;
            void clear() override { all.clear(); }
            void add(const QString& text, std::int32_t) override {
                all.push_back(app::in_one_line(text).toStdString());
            }
        } of_sets, of_cvs;
        elsewhere([&](store::clsDBConn& other) {
            other.Fill_Sets_in_Listbox(of_sets, app::globals.AktResCV);
            other.Fill_CVs_in_Listbox(of_cvs, sets().selected_key());
            return true;
        });
        EXPECT_EQ(rows(sets()), of_sets.all);
        EXPECT_EQ(rows(cvs()), of_cvs.all);
    }
    void delete_elsewhere(std::int32_t SetID) {
        elsewhere([&](store::clsDBConn& other) { return other.DB_Del_CVSet(SetID); });
    }
    void delete_first_cvs(int count) {
        click_row(cvs(), 0);
        click_row(cvs(), count - 1, Qt::ShiftModifier);
        cvs().setFocus();
        press(Qt::Key_Delete);
    }
    void delete_set(std::int32_t SetID) {
        sets().select_row(*sets().row_of(SetID));
        delete_chosen_set();
    }
    std::string caption(const char* action) {
        QMenu& menu = get<QMenu>("mnu_extras");
        Q_EMIT menu.aboutToShow();
        const std::string shown = get<QAction>(action).text().toStdString();
        Q_EMIT menu.aboutToHide();
        return shown;
    }
    std::vector<std::string> copies() {
        if (!disk.folder_exists(copies_folder.toStdString())) return {};
        return disk.files_in(copies_folder.toStdString());
    }
};

} // namespace

TEST_F(Extras_Test, every_command_goes_back_and_forth) {
    const struct {
        const char* name;
        std::function<void()> act;
        const char* step;
    } commands[] = {
        {"add", [&] { in_dialog("mnu_cvset_hinzu", "Neu & schön", "50"); },
         "CV-Set „Neu & schön“ hinzugefügt"},
        {"store", [&] { store_cv("3", "77"); }, "CV 3 gespeichert"},
        {"overwrite", [&] { store_cv("3", "78"); }, "CV 3 gespeichert"},
        {"rename", [&] { in_dialog("mnu_cvset_rename", "Alt", "51"); }, "CV-Set „Alt“ umbenannt"},
        {"paste CVs", [&] { paste_cvs("1;3\n2;4\n3;5\n300;6"); }, "4 CVs gespeichert"},
        {"delete CVs", [&] { delete_first_cvs(2); }, "2 CVs gelöscht"},
        {"paste set", [&] { choose("mnu_cvset_copy"), choose("mnu_cvset_paste"); },
         "CV-Set „Alt“ hinzugefügt (mit 2 CVs)"},
        {"delete set", [&] { delete_set(sets().selected_key()); },
         "CV-Set „Alt“ gelöscht (mit 2 CVs)"},
        {"delete a set with scripts", [&] { click_option("opt_rescv_1"), delete_set(3); },
         "CV-Set „Rhätische Bahn Ge 6/6 »Krokodil«“ gelöscht (mit 82 CVs)"},
    };
    ASSERT_GT(database.DB_Count_Scripts(3), 0);
    std::vector<undo::Content> states{content()};
    for (const auto& command : commands) {
        SCOPED_TRACE(command.name);
        command.act();
        states.push_back(content());
        EXPECT_NE(undo::difference(states[states.size() - 2], states.back()), "") << status();
    }
    for (std::size_t i = std::size(commands); i-- > 0;) {
        SCOPED_TRACE(std::string("undo ") + commands[i].name);
        undo();
        EXPECT_EQ(undo::difference(content(), states[i]), "");
        EXPECT_EQ(status(), std::string("Rückgängig: ") + commands[i].step + ".");
        EXPECT_FALSE(selected(sets()).empty());
        expect_lists_of_library();
    }
    undo();
    EXPECT_EQ(status(), "Es gibt nichts rückgängig zu machen.");
    for (std::size_t i = 0; i < std::size(commands); ++i) {
        SCOPED_TRACE(std::string("redo ") + commands[i].name);
        redo();
        EXPECT_EQ(undo::difference(content(), states[i + 1]), "");
        EXPECT_THAT(status(), HasSubstr("Wiederholt: "));
        expect_lists_of_library();
    }
    redo();
    EXPECT_EQ(status(), "Es gibt nichts zu wiederholen.");
}

TEST_F(Extras_Test, a_field_keeps_the_keys_only_for_what_was_typed_into_it) {
    store_cv("3", "77");
    ASSERT_EQ(focus(), "txt_cv_wert"); // its text was set by the program
    const auto stored = rows(cvs());
    type("12");
    undo();
    EXPECT_NE(text("txt_cv_wert"), "12");
    EXPECT_EQ(rows(cvs()), stored) << "the typing was taken back, not the CV";
    redo();
    EXPECT_EQ(text("txt_cv_wert"), "12");
    EXPECT_EQ(rows(cvs()), stored);
    press(Qt::Key_Return);
    const auto after = rows(cvs());
    EXPECT_NE(after, stored);
    undo();
    EXPECT_EQ(rows(cvs()), stored);
    undo();
    EXPECT_NE(rows(cvs()), stored);
    EXPECT_EQ(status(), "Rückgängig: CV 3 gespeichert.");
    redo();
    redo();
    EXPECT_EQ(rows(cvs()), after);
}

TEST_F(Extras_Test, the_menu_names_the_steps) {
    EXPECT_EQ(caption("mnu_undo"), "&Rückgängig");
    add_set("S&W\trot", "50");
    EXPECT_EQ(caption("mnu_undo"), "&Rückgängig: CV-Set „S&&W rot“ hinzugefügt");
    choose("mnu_undo");
    EXPECT_EQ(status(), "Rückgängig: CV-Set „S&W rot“ hinzugefügt.");
    EXPECT_EQ(caption("mnu_undo"), "&Rückgängig");
    EXPECT_EQ(caption("mnu_redo"), "&Wiederholen: CV-Set „S&&W rot“ hinzugefügt");
}

TEST_F(Extras_Test, undo_shows_the_set_that_it_brings_back) {
    click_option("opt_rescv_1");
    const std::string first = row(sets(), 0);
    delete_chosen_set();
    click_option("opt_rescv_0");
    undo();
    EXPECT_TRUE(get<QRadioButton>("opt_rescv_1").isChecked());
    EXPECT_THAT(selected(sets()), ElementsAre(first));
    EXPECT_GT(cvs().count(), 0);
}

TEST_F(Extras_Test, a_step_that_another_program_changed_is_refused) {
    store_cv("3", "77");
    store_cv("4", "78");
    elsewhere([&](store::clsDBConn& other) {
        other.AktCVSetID(database.AktCVSetID());
        store::CVRec cv{0, 1, 4, 99, 0, false};
        return other.DB_Write_CV(cv);
    });
    undo();
    EXPECT_THAT(status(), HasSubstr("„CV 4 gespeichert“ lässt sich nicht mehr umkehren"));
    EXPECT_THAT(cv_rows(), testing::Contains("CV#4=99"));
    undo();
    EXPECT_EQ(status(), "Es gibt nichts rückgängig zu machen.");
}

TEST_F(Extras_Test, coming_to_the_front_shows_what_another_copy_has_done) {
    sets().select_row(3);
    click_row(cvs(), 1);
    click_row(cvs(), 2, Qt::ControlModifier);
    const auto set = selected(sets());
    const auto chosen = selected(cvs());
    const auto before = rows(sets());
    leave_and_return();
    EXPECT_EQ(selected(cvs()), chosen);
    elsewhere([&](store::clsDBConn& other) {
        std::int16_t number = 99;
        const bool added = other.DB_Add_CVSet(QStringLiteral("Von nebenan"), number, 8) != 0;
        const bool deleted = other.DB_Del_CVSet(sets().key(0));
        other.AktCVSetID(sets().selected_key());
        store::CVRec cv{0, 1, 1000, 5, 0, false};
        return other.DB_Write_CV(cv) && added && deleted;
    });
    leave_and_return();
    EXPECT_THAT(rows(sets()), testing::Contains("99 - Von nebenan"));
    EXPECT_THAT(rows(sets()), testing::Not(testing::Contains(before[0])));
    EXPECT_EQ(selected(sets()), set);
    EXPECT_EQ(selected(cvs()), chosen);
    EXPECT_THAT(cv_rows(), testing::Contains("CV#1000=5"));

    const std::string below = row(sets(), sets().current_row() + 1);
    delete_elsewhere(sets().selected_key());
    leave_and_return();
    EXPECT_THAT(selected(sets()), ElementsAre(below));
    EXPECT_EQ(status(), "CV-Set „" + set[0] + "“ ist nicht mehr vorhanden. Gewählt ist jetzt „" +
                            below + "“.");

    disk.set_bytes("/home/anna/other", disk.bytes(template_path));
    disk.rename("/home/anna/other", default_path);
    leave_and_return();
    EXPECT_THAT(status(), HasSubstr("von außen ersetzt"));
    EXPECT_THAT(rows(sets()), IsEmpty()) << "nothing of a library that is gone is shown as there";
}

TEST_F(Extras_Test, a_set_that_another_copy_has_deleted_leaves_the_view_when_it_is_used) {
    const auto key = [&](Qt::Key pressed, Qt::KeyboardModifiers held = {}) {
        sets().setFocus();
        press(pressed, held);
    };
    const struct {
        const char* what;
        int chosen; ///< row before; 3 goes
        std::function<void()> use;
    } cases[] = {
        {"click", 0, [&] { click_row(sets(), 3); }},
        {"arrow key", 2, [&] { key(Qt::Key_Down); }},
        {"copy", 3, [&] { key(Qt::Key_C, Qt::ControlModifier); }},
        {"delete", 3, [&] { key(Qt::Key_Delete); }},
        {"delete by menu", 3,
         [&] {
             desktop.expect_question(QStringLiteral("Achtung"), QStringLiteral("CV-Set löschen?"),
                                     Answer::yes);
             choose("mnu_cvset_del");
         }},
        {"rename", 3, [&] { choose("mnu_cvset_rename"); }},
        {"store a CV", 3, [&] { store_cv("900", "7"); }},
        {"paste CVs", 3, [&] { paste_cvs("900;7"); }},
        {"click a CV", 3, [&] { click_row(cvs(), 0); }},
        {"delete a CV", 3, [&] { cvs().select_row(0), cvs().setFocus(), press(Qt::Key_Delete); }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        sets().select_row(c.chosen);
        const std::string gone = row(sets(), 3);
        const std::string next = row(sets(), 4);
        delete_elsewhere(sets().key(3));
        c.use();
        QApplication::processEvents();
        EXPECT_EQ(status(), "CV-Set „" + gone + "“ ist nicht mehr vorhanden. Gewählt ist jetzt „" +
                                next + "“.");
        EXPECT_THAT(selected(sets()), ElementsAre(next));
        EXPECT_GT(cvs().count(), 0);
    }
    const std::string gone = row(sets(), 3);
    sets().select_row(3);
    in_set_dialog([&](QDialog& dialog) {
        delete_elsewhere(sets().key(3));
        dialog_field(dialog, "Text1").setText(QStringLiteral("Neu"));
        press_button(dialog, "cmd_ok");
    });
    choose("mnu_cvset_rename");
    EXPECT_THAT(status(), AllOf(HasSubstr(gone), HasSubstr("Gewählt ist jetzt")));
    EXPECT_THAT(rows(sets()), Not(testing::Contains(HasSubstr("Neu"))));
}

TEST_F(Extras_Test, cvs_that_another_copy_has_deleted_leave_the_list_when_they_are_used) {
    const struct {
        const char* what;
        std::function<void()> use; ///< of the first two; the first is gone
        const char* said;
    } cases[] = {
        {"click", [&] { click_row(cvs(), 0); }, "Inzwischen anderswo gelöschte CVs: 1."},
        {"copy", [&] { choose("mnu_copy"); },
         "Inzwischen anderswo gelöschte CVs: 1. Kopierte CVs: 1."},
        {"delete", [&] { cvs().setFocus(), press(Qt::Key_Delete); },
         "Gelöschte CVs: 1. Inzwischen anderswo gelöschte CVs: 1."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        click_row(cvs(), 2);
        const std::string number = text("txt_cv_nummer");
        if (c.what != std::string("click")) {
            click_row(cvs(), 0);
            click_row(cvs(), 1, Qt::ControlModifier);
        }
        const std::string gone = row(cvs(), 0);
        elsewhere([&](store::clsDBConn& other) { return other.DB_Del_CVWert(cvs().key(0)); });
        c.use();
        EXPECT_EQ(status(), c.said);
        EXPECT_NE(row(cvs(), 0), gone);
        if (c.what == std::string("click")) {
            EXPECT_EQ(text("txt_cv_nummer"), number);
        }
    }
}

TEST_F(Extras_Test, a_spoiled_copy_is_not_proposed_and_says_what_it_is) {
    store_cv("3", "77");
    const std::string folder = copies_folder.toStdString() + "/";
    const auto whole = disk.bytes(folder + copies().at(0));
    auto cut = whole;
    cut.resize(80 * 4096);
    disk.set_bytes(folder + "CV-Sets 2099-01-01 00-00-00.mdb", cut);
    const auto look = [&](int proposed, const char* sets, const char* button) {
        in_set_dialog([=](QDialog& dialog) {
            auto& list = *dialog.findChild<QTreeWidget*>();
            EXPECT_EQ(list.currentIndex().row(), proposed);
            EXPECT_EQ(list.topLevelItem(0)->text(1), QString::fromUtf8(sets));
            list.setCurrentItem(list.topLevelItem(0));
            press_button(dialog, button);
        });
        choose("mnu_restore");
    };
    look(1, "45 (unvollständig)", "cmd_cancel");
    EXPECT_EQ(frm_Backups(window.get(), QStringLiteral("/b[*].mdb"), {}).windowTitle(),
              QStringLiteral("Sicherungen von „b[*][*].mdb“"))
        << "Qt shows the half of it";
    disk.remove(folder + copies().at(0));
    look(0, "45 (unvollständig)", "cmd_restore");
    EXPECT_THAT(status(), HasSubstr("wiederhergestellt. Sie ist unvollständig."));
    auto damaged = whole;
    damaged.back() ^= std::byte{0x55};
    damaged.at(damaged.size() - 4096 + 2) ^= std::byte{0x55};
    disk.set_bytes(folder + "CV-Sets 2099-01-01 00-00-00.mdb", damaged);
    look(1, "45 (beschädigt)", "cmd_restore");
    EXPECT_THAT(status(), HasSubstr("wiederhergestellt. Sie ist beschädigt."));
}

TEST_F(Extras_Test, a_copy_is_kept_before_the_first_change_and_can_be_brought_back) {
    const auto untouched = content();
    EXPECT_THAT(copies(), IsEmpty());
    choose("mnu_restore");
    EXPECT_THAT(status(), HasSubstr("keine Sicherungen"));
    const std::string lost = row(sets(), 0);
    delete_chosen_set();
    press(Qt::Key_Delete);
    EXPECT_EQ(copies().size(), 1U);
    const auto after = content();

    in_set_dialog([](QDialog& dialog) { press_button(dialog, "cmd_cancel"); });
    choose("mnu_restore");
    EXPECT_EQ(undo::difference(content(), after), "");

    in_set_dialog([](QDialog& dialog) {
        EXPECT_EQ(dialog.objectName(), QStringLiteral("frm_Backups"));
        auto& list = *dialog.findChild<QTreeWidget*>();
        EXPECT_EQ(list.topLevelItemCount(), 1);
        EXPECT_EQ(list.topLevelItem(0)->text(1), QStringLiteral("45"));
        press_button(dialog, "cmd_restore");
    });
    choose("mnu_restore");
    EXPECT_EQ(undo::difference(content(), untouched), "");
    EXPECT_EQ(row(sets(), 0), lost);
    EXPECT_THAT(status(), HasSubstr("wiederhergestellt"));
    EXPECT_EQ(copies().size(), 2U) << "the state before is a copy now";
    undo();
    EXPECT_EQ(status(), "Es gibt nichts rückgängig zu machen.");
}

TEST_F(Extras_Test, a_damaged_library_can_be_brought_back_too) {
    delete_chosen_set();
    const auto kept = undo::content(disk, (copies_folder + u'/').toStdString() + copies().at(0));
    disk.set_bytes(default_path, std::vector<std::byte>(5000, std::byte{7}));
    choose("mnu_last_files_0");
    ASSERT_FALSE(database.Connection_Active());
    in_set_dialog([](QDialog& dialog) { press_button(dialog, "cmd_restore"); });
    choose("mnu_restore");
    EXPECT_EQ(undo::difference(content(), kept), "");
    EXPECT_GT(sets().count(), 0);
}

TEST_F(Extras_Test, a_library_that_is_overwritten_or_new_is_treated_as_such) {
    put_sample("library_2003", "/home/anna/andere.mdb");
    const auto before = disk.bytes("/home/anna/andere.mdb");
    desktop.expect_save(QStringLiteral("/home/anna/andere.mdb"));
    desktop.expect_question(QStringLiteral("Achtung"),
                            QStringLiteral("Datenbank vorhanden! Überschreiben?"), Answer::yes);
    choose("mnu_create_database");
    const auto kept = disk.files_in("/home/anna/Sicherungen");
    ASSERT_EQ(kept.size(), 1U) << "whoever overwrites a library can have it back";
    EXPECT_EQ(disk.bytes("/home/anna/Sicherungen/" + kept[0]), before);
    add_set("Neu");
    EXPECT_EQ(disk.files_in("/home/anna/Sicherungen").size(), 1U) << "the new one needs none";
}

TEST_F(Extras_Test, a_missing_copy_is_reported_once_and_stops_no_change) {
    disk.protect_folder("/home/anna/Dokumente/KELDA/CV-Sets");
    disk.protect_folder(app::globals.UserDataDir.chopped(1).toStdString());
    const int before = sets().count();
    delete_chosen_set();
    ASSERT_EQ(sets().count(), before - 1) << status();
    const auto with = [](const char* said) {
        return AllOf(HasSubstr("keine Sicherung angelegt"), HasSubstr(said));
    };
    EXPECT_THAT(status(), with("gelöscht"));
    press(Qt::Key_Delete);
    EXPECT_THAT(status(), AllOf(HasSubstr("gelöscht"), Not(HasSubstr("Sicherung"))));

    window.reset();
    start();
    desktop.clipboard.text = QStringLiteral("SetName,") + QString(300, u'a') +
                             QStringLiteral("\r\nObj,Set\r\nCVNr,drei\r\nObj,CV\r\n");
    choose("mnu_cvset_paste");
    EXPECT_THAT(status(), with("gekürzte Namen: 1"));
    EXPECT_THAT(status(), with("Unlesbare Zeilen: 1"));

    window.reset();
    start();
    store_cv("3", "7");
    EXPECT_THAT(status(), with("CV 3 = 7 gespeichert"));
}

TEST_F(Main_Window_Test, the_first_library_of_all_needs_no_copy) {
    put_template();
    start_bare();
    add_set("Neu");
    EXPECT_EQ(sets().count(), 1);
    EXPECT_FALSE(disk.folder_exists(copies_folder.toStdString()));
}

TEST_F(Extras_Test, settings_and_place_come_back) {
    window->move(200, 120);
    window->resize(window->width(), 640);
    in_set_dialog([](QDialog& dialog) {
        EXPECT_EQ(dialog.objectName(), QStringLiteral("frm_Settings"));
        dialog.findChild<QComboBox*>()->setCurrentIndex(6);
        press_button(dialog, "btn_cancel");
    });
    choose("mnu_einstellungen");
    EXPECT_EQ(app::globals.comport, 7) << "a port counts as soon as it is chosen";
    window->close();
    window.reset();
    const auto written = disk.bytes("/home/anna/.local/share/KELDA/TRV/CVSets_Inits.ini");
    app::reset_globals();
    start_bare();
    EXPECT_EQ(app::globals.comport, 7);
    EXPECT_EQ(window->frameGeometry().topLeft(), QPoint(200, 120));
    EXPECT_EQ(window->height(), 640);
    window->close();
    EXPECT_EQ(disk.bytes("/home/anna/.local/share/KELDA/TRV/CVSets_Inits.ini"), written);
}

TEST_F(Main_Window_Test, a_data_folder_that_cannot_be_written_is_said) {
    disk.make_folder("/home/anna/.local");
    disk.protect_folder("/home/anna/.local");
    put_template();
    start_bare();
    EXPECT_THAT(status(), HasSubstr("geöffnet, CV-Sets: 0. In „/home/anna/.local/"));
    EXPECT_THAT(status(), HasSubstr("gehen verloren"));
    const auto stays_in_view = [&] {
        return get<QLabel>("lab_einstellungen_verloren").isVisible();
    };
    choose("mnu_undo");
    EXPECT_THAT(status(), Not(HasSubstr("verloren"))) << "once";
    EXPECT_TRUE(stays_in_view());
    window->close(); // the same for the settings, and nothing is thrown

    disk.remove(template_path);
    disk.remove(default_path);
    start_bare();
    EXPECT_THAT(status(), AllOf(HasSubstr("CV-Sets_leer.mdb“ fehlt"), HasSubstr("gehen verloren"),
                                HasSubstr("„CV-Sets.mdb“ ist nicht")))
        << "none of the sentences of the start takes the place of another";
    EXPECT_TRUE(stays_in_view());
}

TEST_F(Extras_Test, a_window_from_a_larger_desktop_comes_onto_this_one) {
    const struct {
        const char* what;
        app::Window_Place stored;
        QPoint at;
        int height;
    } cases[] = {
        // the frame is two pixels wide on this platform
        {"too far right", {{9000}, {15945}, {60000}, {0}}, {1920 - 1067, 0}, 600},
        {"too high", {{9'000'000}, {15945}, {150}, {150}}, {10, 0}, 1076},
        {"negative", {{9000}, {15945}, {-3000}, {-10}}, {0, 0}, 600},
        {"a width that it never has", {{9000}, {99999}, {1500}, {0}}, {100, 0}, 600},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        window->move_to(c.stored);
        EXPECT_EQ(window->frameGeometry().topLeft(), c.at);
        EXPECT_EQ(window->height(), c.height);
        EXPECT_EQ(window->width(), 1063);
    }
}

TEST_F(Extras_Test, further_windows_come_onto_a_monitor_whenever_they_are_shown) {
    desktop.screens = {{{0, 0, 1280, 720}, {0, 0, 1280, 680}}}; // since the start of the program
    QWidget further;
    const ui_parts::Window_Placer placer(further, desktop);
    further.setGeometry(1000, 600, 1500, 900);
    for (int time = 0; time < 2; ++time) {
        further.show();
        EXPECT_TRUE(QTest::qWaitFor([&] { return further.height() < 900; }));
        EXPECT_EQ(further.frameGeometry(), QRect(0, 0, 1280, 680));
        further.hide();
        further.setGeometry(-100, 600, 1500, 900);
    }
}
