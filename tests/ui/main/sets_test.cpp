#include "main_window.h"

#include "ui/main/frm_get_2_string.h"

#include <limits>

using namespace ui_main;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

struct Sets_Test : Main_Window_Test {
    void SetUp() override {
        if (samples_missing()) GTEST_SKIP();
        start();
    }
    bool nothing_current() {
        return database.AktCVSetID() == 0 && cvs().count() == 0 && sets().selected_key() == 0 &&
               scripts::AktScripts().Count() == 0;
    }
};

} // namespace

TEST_F(Sets_Test, the_first_set_is_shown_at_the_start) {
    EXPECT_EQ(row(sets(), 0), "10 - Grundeinstellung Lokdecoder");
    EXPECT_THAT(sets().selected_rows(), ElementsAre(0));
    EXPECT_EQ(database.AktCVSetID(), sets().key(0));
    EXPECT_EQ(count_label(), std::to_string(cvs().count()));
    EXPECT_GT(cvs().count(), 0);
    EXPECT_EQ(window->windowTitle().toStdString(),
              std::string("CV-Sets Datenbank: ") + default_path);
    EXPECT_THAT(app::globals.LastFiles, ElementsAre(QString::fromUtf8(default_path)));
    EXPECT_THAT(status(), HasSubstr("CV-Sets: 45"));
}

TEST_F(Sets_Test, another_reset_cv_shows_other_sets_and_their_scripts) {
    click_option("opt_rescv_1");
    EXPECT_EQ(app::globals.AktResCV, 265);
    EXPECT_EQ(row(sets(), 0), "1 - Soundprojekt BR 64, Zweizylinder");
    EXPECT_THAT(sets().selected_rows(), ElementsAre(0));
    sets().select_row(*sets().row_of(3));
    EXPECT_EQ(scripts::AktScripts().Count(), 16);
    EXPECT_EQ(get<QAbstractItemView>("lvw_Scripts").model()->rowCount(), 16);
    click_option("opt_dec_1"); // QD has the sets of CV 8 only
    EXPECT_EQ(app::globals.AktResCV, 8);
    EXPECT_TRUE(get<QRadioButton>("opt_rescv_0").isChecked());
    EXPECT_EQ(row(sets(), 0), "10 - Grundeinstellung Lokdecoder");
    EXPECT_EQ(text("txt_cv_page_0"), "0");
    EXPECT_EQ(text("txt_cv_page_1"), "1");
}

TEST_F(Sets_Test, a_new_set_is_selected_by_its_key) {
    add_set("Neue Lok");
    ASSERT_EQ(selected(sets()).size(), 1U);
    EXPECT_THAT(selected(sets()).front(), HasSubstr(" - Neue Lok"));
    EXPECT_EQ(database.AktCVSetID(), sets().selected_key());
    EXPECT_EQ(cvs().count(), 0);
    add_set("Mit Nummer", "77");
    EXPECT_THAT(selected(sets()), ElementsAre("77 - Mit Nummer"));
}

TEST_F(Sets_Test, a_cancelled_dialog_changes_nothing) {
    const auto before = rows(sets());
    in_set_dialog([](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Neues CV-Set"));
        dialog_field(dialog, "Text1").setText(QStringLiteral("verworfen"));
        press_button(dialog, "cmd_cancel");
    });
    choose("mnu_cvset_hinzu");
    answer_set_dialog("", "5"); // OK without a name
    choose("mnu_cvset_hinzu");
    EXPECT_EQ(rows(sets()), before);
    EXPECT_THAT(sets().selected_rows(), ElementsAre(0));
}

TEST_F(Sets_Test, renaming_keeps_the_number_unless_another_is_given) {
    const std::int32_t set = sets().selected_key();
    const struct {
        const char* number;
        const char* shown;
    } cases[] = {
        {"10", "10 - Anders"}, {"0", "10 - Anders"}, {"", "10 - Anders"}, {"11", "11 - Anders"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.number);
        answer_set_dialog("Anders", c.number);
        choose("mnu_cvset_rename");
        EXPECT_THAT(selected(sets()), ElementsAre(c.shown));
        EXPECT_EQ(sets().selected_key(), set);
        EXPECT_GT(cvs().count(), 0);
    }
    in_set_dialog([](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("CV-Set umbenennen"));
        EXPECT_EQ(dialog_field(dialog, "Text1").text(), QStringLiteral("Anders"));
        EXPECT_EQ(dialog_field(dialog, "Text2").text(), QStringLiteral("11"));
        EXPECT_EQ(dialog.focusWidget(), &dialog_field(dialog, "Text1"));
        EXPECT_EQ(dialog_field(dialog, "Text1").cursorPosition(), 6);
        press_button(dialog, "cmd_cancel");
    });
    const QModelIndex index = sets().model()->index(sets().current_row(), 0);
    const QPoint place = sets().visualRect(index).center();
    QTest::mouseClick(sets().viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(sets().viewport(), Qt::LeftButton, {}, place);
}

TEST_F(Sets_Test, a_number_that_nobody_could_enter_is_kept_unless_it_is_changed) {
    const QString name = QStringLiteral("Fremd\nund alt");
    for (const int stored : {-5, 40'000, std::numeric_limits<int>::min()}) {
        const std::int32_t set = put_row(
            u"Sets", {{u"Name", name.toStdU16String()}, {u"Nummer", stored}, {u"ResCV", 8}});
        window->Refresh_Sets();
        sets().select_row(*sets().row_of(set));
        const std::string number = std::to_string(stored);
        for (const char* changed : {"", "32767"}) {
            in_set_dialog([&](QDialog& dialog) {
                QLineEdit& field = dialog_field(dialog, "Text2");
                EXPECT_EQ(field.text().toStdString(), number);
                field.selectAll();
                QTest::keyClicks(&field, QString::fromUtf8(changed));
                press_button(dialog, "cmd_ok");
            });
            choose("mnu_cvset_rename");
            EXPECT_THAT(selected(sets()),
                        ElementsAre((*changed == 0 ? number : changed) + " - Fremd und alt"));
            EXPECT_EQ(database.Get_Set_Name(set), name) << "nobody has changed it";
        }
    }
}

// A desktop activates a window some time after it is shown. Here only tool tips are not active at
// once.
TEST_F(Sets_Test, the_name_is_not_selected_when_the_dialog_is_activated) {
    frm_get_2_string dialog(window.get(), 100);
    dialog.set_texts({}, QStringLiteral("Anders"), 11);
    dialog.setWindowFlags(Qt::ToolTip);
    dialog.show();
    ASSERT_FALSE(dialog.isActiveWindow());
    QApplication::setActiveWindow(&dialog);
    ASSERT_EQ(focus(), "Text1");
    type("!");
    EXPECT_EQ(dialog_field(dialog, "Text1").text(), QStringLiteral("Anders!"));
}

TEST_F(Sets_Test, one_set_stays_selected) {
    window->resize(window->width(), 1050);
    QWidget* view = sets().viewport();
    const auto middle = [&](int row) {
        return sets().visualRect(sets().model()->index(row, 0)).center();
    };
    const QPoint below(20, view->height() - 3);
    const auto drag_to = [&](const QPoint& end) {
        QTest::mousePress(view, Qt::LeftButton, {}, middle(2));
        QTest::mouseMove(view, end);
        QTest::mouseRelease(view, Qt::LeftButton, {}, end);
    };
    const struct {
        const char* name;
        std::function<void()> act;
        int then;
    } cases[] = {
        {"search", [] { type("1"); }, 3},
        {"click below", [&] { QTest::mouseClick(view, Qt::LeftButton, {}, below); }, 2},
        {"the other button below", [&] { QTest::mouseClick(view, Qt::RightButton, {}, below); }, 2},
        {"Ctrl+click", [&] { click_row(sets(), 2, Qt::ControlModifier); }, 2},
        {"Ctrl+Space", [] { press(Qt::Key_Space, Qt::ControlModifier); }, 2},
        {"Ctrl+A", [] { press(Qt::Key_A, Qt::ControlModifier); }, 2},
        {"Escape", [] { press(Qt::Key_Escape); }, 2},
        {"drag to below", [&] { drag_to(below); }, 2},
        {"drag to another", [&] { drag_to(middle(4)); }, 4},
        {"Shift+click", [&] { click_row(sets(), 4, Qt::ShiftModifier); }, 4},
        {"Shift+Down", [] { press(Qt::Key_Down, Qt::ShiftModifier); }, 3},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        click_row(sets(), 2);
        sets().setFocus();
        ASSERT_FALSE(sets().indexAt(below).isValid());
        c.act();
        EXPECT_THAT(sets().selected_rows(), ElementsAre(c.then));
        EXPECT_EQ(database.AktCVSetID(), sets().key(c.then));
        EXPECT_GT(cvs().count(), 0);
        EXPECT_EQ(count_label(), std::to_string(cvs().count()));
    }
}

TEST_F(Sets_Test, names_and_numbers_keep_within_the_column) {
    in_set_dialog([](QDialog& dialog) {
        QLineEdit& name = dialog_field(dialog, "Text1");
        name.setText(QString(99, u'a') + QStringLiteral("\U0001F682 und mehr"));
        EXPECT_EQ(name.text(), QString(99, u'a')); // not half a locomotive
        QLineEdit& number = dialog_field(dialog, "Text2");
        number.setFocus();
        QTest::keyClicks(&number, QStringLiteral("-3x27689"));
        EXPECT_EQ(number.text(), QStringLiteral("3276"));
        number.selectAll();
        QApplication::clipboard()->setText(QStringLiteral("32768"));
        dialog.findChild<QLabel*>(QStringLiteral("lab_hint"))->clear();
        QTest::keyClick(&number, Qt::Key_V, Qt::ControlModifier);
        EXPECT_EQ(number.selectedText(), QStringLiteral("3276"));
        EXPECT_THAT(dialog.findChild<QLabel*>(QStringLiteral("lab_hint"))->text().toStdString(),
                    HasSubstr("bis 32767"));
        number.setText(QStringLiteral("32767"));
        press_button(dialog, "cmd_ok");
    });
    choose("mnu_cvset_hinzu");
    EXPECT_THAT(selected(sets()), ElementsAre("32767 - " + std::string(99, 'a')));
    EXPECT_EQ(status(), "CV-Set „32767 - " + std::string(51, 'a') +
                            "…“ hinzugefügt. Der Name wurde auf 100 Zeichen gekürzt.");
    choose("mnu_undo");
    EXPECT_EQ(status(), "Rückgängig: CV-Set „" + std::string(59, 'a') + "…“ hinzugefügt.");
}

TEST_F(Sets_Test, what_has_no_room_in_the_name_is_refused_and_moves_nothing) {
    frm_get_2_string dialog(window.get(), 6);
    dialog.set_texts({}, QStringLiteral("Lok"), 11);
    dialog.show();
    QLineEdit& name = dialog_field(dialog, "Text1");
    QLineEdit& number = dialog_field(dialog, "Text2");
    const auto paste = [&](const char* text) {
        QApplication::clipboard()->setText(QString::fromUtf8(text));
        QTest::keyClick(&name, Qt::Key_V, Qt::ControlModifier);
    };
    const auto undo = [&] { QTest::keyClick(&name, Qt::Key_Z, Qt::ControlModifier); };
    const char *full = "höchstens 6", *cut = "auf 6 Zeichen gekürzt";
    const struct {
        const char* what;
        std::function<void()> act;
        const char *name, *hint;
        bool was_cut = false;
    } steps[] = {
        {"typing",
         [&] { name.setCursorPosition(0), QTest::keyClicks(&name, QStringLiteral("ab")); }, "abLok",
         ""},
        {"half of one", [&] { paste("\U0001F682"); }, "abLok", full},
        {"the last room", [&] { QTest::keyClicks(&name, QStringLiteral("c")); }, "abcLok", ""},
        {"a full field", [&] { QTest::keyClicks(&name, QStringLiteral("x")); }, "abcLok", full},
        {"paste", [&] { name.setSelection(1, 2), paste("12345"); }, "a12Lok", cut, true},
        {"number", [&] { number.selectAll(), QTest::keyClicks(&number, QStringLiteral("99999")); },
         "a12Lok", "auf 6 Zeichen gekürzt.\nDie Set-Nummer geht bis 32767.", true},
        {"right again", [&] { QTest::keyClick(&number, Qt::Key_Backspace); }, "a12Lok", cut, true},
        {"change", [&] { QTest::keyClick(&name, Qt::Key_Backspace); }, "a1Lok", ""},
        {"undo", undo, "a12Lok", ""},
        {"undo more", undo, "abcLok", ""},
        {"lines", [&] { name.selectAll(), paste("1\r2\r\n"); }, "1 2", ""},
        {"undo lines", undo, "abcLok", ""},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(step.what);
        step.act();
        EXPECT_EQ(name.text().toStdString(), step.name);
        const std::string hint =
            dialog.findChild<QLabel*>(QStringLiteral("lab_hint"))->text().toStdString();
        EXPECT_THAT(hint, *step.hint == 0 ? testing::Matcher<std::string>(IsEmpty())
                                          : HasSubstr(step.hint));
        EXPECT_EQ(dialog.name_was_cut(), step.was_cut);
    }
}

TEST_F(Sets_Test, what_was_said_of_a_set_goes_when_another_is_chosen) {
    const struct {
        const char* what;
        std::function<void()> choose_other;
    } ways[] = {{"click", [&] { click_row(sets(), 1); }},
                {"key", [&] { sets().setFocus(), press(Qt::Key_Down); }},
                {"view", [&] { click_option("opt_rescv_1"); }},
                {"family", [&] { click_option("opt_dec_1"); }}};
    for (const auto& way : ways) {
        SCOPED_TRACE(way.what);
        delete_chosen_set(); // which chooses the first by itself
        EXPECT_THAT(status(), HasSubstr("gelöscht"));
        way.choose_other();
        EXPECT_EQ(status(), "");
    }
}

TEST_F(Sets_Test, the_menu_asks_before_deleting_and_the_key_does_not) {
    const auto before = rows(sets());
    desktop.expect_question(QStringLiteral("Achtung"), QStringLiteral("CV-Set löschen?"),
                            Answer::no);
    choose("mnu_cvset_del");
    EXPECT_EQ(rows(sets()), before);
    desktop.expect_question(QStringLiteral("Achtung"), QStringLiteral("CV-Set löschen?"),
                            Answer::yes);
    choose("mnu_cvset_del");
    EXPECT_EQ(rows(sets()), std::vector(before.begin() + 1, before.end()));
    sets().select_row(2);
    delete_chosen_set();
    EXPECT_EQ(sets().count(), static_cast<int>(before.size()) - 2);
    EXPECT_THAT(sets().selected_rows(), ElementsAre(0)); // the first, and its CVs
    EXPECT_EQ(database.AktCVSetID(), sets().key(0));
    EXPECT_GT(cvs().count(), 0);
}

TEST_F(Sets_Test, without_a_selection_no_set_is_current_and_none_is_deleted) {
    const int before = sets().count();
    sets().selectionModel()->clearSelection();
    EXPECT_TRUE(nothing_current());
    delete_chosen_set();
    choose("mnu_cvset_del");
    choose("mnu_cvset_rename");
    EXPECT_EQ(sets().count(), before);
    EXPECT_THAT(status(), HasSubstr("kein CV-Set gewählt"));
}

TEST_F(Sets_Test, a_view_without_sets_is_empty_and_choosing_it_leaves_the_count) {
    click_option("opt_rescv_1");
    while (sets().count() > 1) window->Delete_Set(sets().key(1));
    sets().select_row(0);
    window->Delete_Set(sets().key(0));
    EXPECT_EQ(sets().count(), 0);
    EXPECT_TRUE(nothing_current());
    EXPECT_EQ(count_label(), "0");
    click_option("opt_rescv_0");
    const std::string count = count_label();
    EXPECT_EQ(count, std::to_string(cvs().count()));
    click_option("opt_rescv_1");
    EXPECT_TRUE(nothing_current());
    EXPECT_EQ(count_label(), count);
}

TEST_F(Sets_Test, the_context_menus_come_by_button_and_key) {
    sets().setFocus();
    const auto popup_of = [&](Entry_List& list) {
        QContextMenuEvent by_key(QContextMenuEvent::Keyboard, {}, {});
        QApplication::sendEvent(&list, &by_key);
        QWidget* popup = QApplication::activePopupWidget();
        const std::string name = popup == nullptr ? "none" : popup->objectName().toStdString();
        if (popup != nullptr) popup->close();
        return name;
    };
    EXPECT_EQ(popup_of(sets()), "mnu_cv_set");
    EXPECT_EQ(popup_of(cvs()), "mnu_copymenu");
}

TEST_F(Main_Window_Test, a_write_protected_library_is_shown_and_not_changed) {
    if (samples_missing()) GTEST_SKIP();
    put_sample("library_2000", default_path);
    disk.protect(default_path);
    const auto before = disk.bytes(default_path);
    start_bare();
    EXPECT_THAT(status(), HasSubstr("schreibgeschützt"));
    EXPECT_TRUE(get<QLabel>("lab_schreibschutz").isVisible());
    const auto shown = rows(sets());
    EXPECT_FALSE(shown.empty());
    in_set_dialog([](QDialog& dialog) {
        dialog_field(dialog, "Text1").setText(QStringLiteral("Neu"));
        press_button(dialog, "cmd_ok");
    });
    choose("mnu_cvset_hinzu");
    EXPECT_THAT(status(), HasSubstr("schreibgeschützt"));
    delete_chosen_set();
    EXPECT_THAT(status(), HasSubstr("schreibgeschützt"));
    EXPECT_EQ(rows(sets()), shown);
    field("txt_cv_nummer").setText(QStringLiteral("1"));
    field("txt_cv_wert").setText(QStringLiteral("99"));
    field("txt_cv_wert").setFocus();
    press(Qt::Key_Return);
    EXPECT_THAT(status(), HasSubstr("schreibgeschützt"));
    EXPECT_EQ(text("txt_cv_nummer"), "2");
    EXPECT_EQ(disk.bytes(default_path), before);
}
