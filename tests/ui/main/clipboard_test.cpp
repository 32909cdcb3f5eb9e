#include "main_window.h"

using namespace ui_main;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

QString text_of(const char* text) { return QString::fromUtf8(text); }

struct Clipboard_Test : Main_Window_Test {
    void SetUp() override {
        if (samples_missing()) GTEST_SKIP();
        start();
    }
    void put(const char* text) { desktop.clipboard = {text_of(text), {}}; }
    std::string held() { return desktop.clipboard.text.toStdString(); }
};

} // namespace

TEST_F(Clipboard_Test, chosen_cvs_reach_another_set_by_menu_and_by_keys) {
    click_row(cvs(), 0);
    click_row(cvs(), 2, Qt::ControlModifier);
    const std::vector<std::string> chosen = selected(cvs());
    ASSERT_EQ(chosen.size(), 2U);
    choose("mnu_copy");
    EXPECT_EQ(desktop.clipboard.text.count(text_of("\r\n")), 10);
    EXPECT_TRUE(held().ends_with("Obj,CV\r\n"));
    EXPECT_EQ(status(), "Kopierte CVs: 2.");
    add_set("Ziel");
    choose("mnu_paste");
    EXPECT_EQ(rows(cvs()), chosen);
    EXPECT_EQ(count_label(), "2");
    EXPECT_EQ(status(), "Eingefügte CVs: 2.");

    cvs().setFocus();
    press(Qt::Key_A, Qt::ControlModifier);
    press(Qt::Key_C, Qt::ControlModifier);
    const std::string copied = held();
    add_set("Noch eins");
    put("1;3"); // a click below the last entry leaves the focus in the list
    choose("mnu_paste");
    put(copied.c_str());
    QTest::mouseClick(cvs().viewport(), Qt::LeftButton, {},
                      cvs().viewport()->rect().bottomLeft() + QPoint(5, -5));
    EXPECT_EQ(focus(), "lst_CVs");
    press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(rows(cvs()), chosen);
}

TEST_F(Clipboard_Test, lists_of_other_programs_are_taken) {
    const struct {
        const char* what;
        const char* text;
        std::vector<std::string> shown;
        const char* said;
    } cases[] = {
        {"semicolons", "1;3\r\n29;6\r\n", {"CV#1=3", "CV#29=6"}, "Eingefügte CVs: 2."},
        {"commas, no line end", "1,3\n29,6", {"CV#1=3", "CV#29=6"}, "Eingefügte CVs: 2."},
        {"a spreadsheet", "1\t3\n29\t6\n", {"CV#1=3", "CV#29=6"}, "Eingefügte CVs: 2."},
        {"with a heading", "CV;Wert\n1;3\n", {"CV#1=3"}, "Unlesbare Zeilen: 1"},
        {"prose", "Guten Tag", {}, "nichts, was hier eingefügt werden kann"},
        {"nothing", "", {}, "kein Text"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        add_set(c.what);
        put(c.text);
        choose("mnu_paste");
        EXPECT_EQ(cv_rows(), c.shown);
        EXPECT_THAT(status(), HasSubstr(c.said));
    }
}

TEST_F(Clipboard_Test, a_set_comes_back_as_a_second_one_and_keeps_its_comma) {
    add_set("BR 44, Öl, 100 %", "77");
    put("1;3\n300;5\n600;7\n900;9");
    choose("mnu_paste");
    const auto shown = rows(cvs());
    ASSERT_EQ(shown.size(), 4U);
    sets().setFocus();
    press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_TRUE(held().starts_with("SetName,BR 44, Öl, 100 %\r\nSetNr,77\r\nObj,Set\r\n"));
    const int before = sets().count();
    press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(sets().count(), before + 1);
    EXPECT_THAT(selected(sets()), ElementsAre("77 - BR 44, Öl, 100 %"));
    EXPECT_EQ(sets().selected_rows().front(), before) << "the last one";
    EXPECT_EQ(rows(cvs()), shown);
    EXPECT_EQ(status(), "Eingefügte CV-Sets: 1, CVs: 4.");

    desktop.clipboard.own.clear(); // what another program would hand over
    choose("mnu_cvset_paste");
    EXPECT_THAT(selected(sets()), ElementsAre("77 - "));
    EXPECT_EQ(rows(cvs()), shown);
}

TEST_F(Clipboard_Test, sets_go_into_the_view_that_is_shown) {
    choose("mnu_cvset_copy");
    click_option("opt_rescv_1");
    choose("mnu_cvset_paste");
    const std::int32_t SetID = sets().selected_key();
    ASSERT_NE(SetID, 0);
    EXPECT_EQ(database.reset_cv(SetID), 265);
    put("SetName,Eins\r\nObj,Set\r\nCVNr,3\r\nCVWert,4\r\nObj,CV\r\nSetName,Zwei\r\nSetNr,9\r\n"
        "Obj,Set\r\nObj,CV\r\n");
    choose("mnu_cvset_paste");
    EXPECT_THAT(selected(sets()), ElementsAre("9 - Zwei"));
    EXPECT_THAT(cv_rows(), ElementsAre("CV#3=4"));
    EXPECT_EQ(status(), "Eingefügte CV-Sets: 2, CVs: 2.");
}

TEST_F(Clipboard_Test, a_long_name_is_cut_and_a_bad_header_ends_the_command) {
    put(("SetName," + std::string(300, 'a') +
         "\r\nObj,Set\r\nSetNr,viele\r\nObj,Set\r\nCVNr,3\r\n"
         "CVWert,4\r\nObj,CV\r\n")
            .c_str());
    const int before = sets().count();
    choose("mnu_cvset_paste");
    EXPECT_EQ(sets().count(), before + 1);
    EXPECT_EQ(cvs().count(), 0) << "the CVs belonged to the set that was not made";
    EXPECT_THAT(status(), HasSubstr("gekürzte Namen: 1"));
    EXPECT_THAT(status(), HasSubstr("ausgelassene CVs oder Sets: 1"));
}

TEST_F(Clipboard_Test, the_listing_is_for_reading) {
    add_set("Liste");
    put("1;3\n300;5");
    choose("mnu_paste");
    choose("mnu_cvset_export_txt");
    EXPECT_THAT(held(), testing::StartsWith("Set-Name: Liste\r\nSet-Nummer: "));
    EXPECT_THAT(held(), HasSubstr("\r\nCV 1 = 3\r\n"));
    EXPECT_THAT(status(), HasSubstr("Liste“ als Text"));
}

TEST_F(Clipboard_Test, nothing_happens_where_nothing_can) {
    put("1;3");
    desktop.clipboard_refuses = true;
    choose("mnu_cvset_copy");
    EXPECT_THAT(status(), HasSubstr("nicht angenommen"));
    cvs().clearSelection();
    choose("mnu_copy");
    EXPECT_THAT(status(), HasSubstr("keine CV gewählt"));
    EXPECT_EQ(held(), "1;3");

    sets().selectionModel()->clearSelection();
    choose("mnu_cvset_copy");
    EXPECT_THAT(status(), HasSubstr("kein CV-Set gewählt"));
    choose("mnu_paste");
    EXPECT_THAT(status(), HasSubstr("kein CV-Set gewählt ist: 1"));

    desktop.expect_open(text_of("/home/anna/weg.mdb"));
    choose("mnu_open_database");
    for (const char* command : {"mnu_paste", "mnu_cvset_paste"}) {
        put("Obj,Set\r\nCVNr,1\r\nCVWert,1\r\nObj,CV");
        choose(command);
        EXPECT_THAT(status(), HasSubstr("keine Datenbank geöffnet")) << command;
    }
}
