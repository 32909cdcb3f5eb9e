#include "main_window.h"

using namespace ui_main;

namespace {

/// Holds something unsaved, and says whether it may go.
struct Holder final : app::Work_Holder {
    bool agrees = false;
    int asked = 0;
    int put_away = 0;
    bool may_leave() override {
        ++asked;
        return agrees;
    }
    void put_into_safety() override { ++put_away; }
};

struct Leaving_Test : Main_Window_Test {
    void SetUp() override {
        if (samples_missing()) GTEST_SKIP();
        put_template();
        start();
        put_sample("library_2003", "/home/anna/andere.mdb");
        for (const char* value : {"3", "4"}) store_cv("7", value); // two steps and a backup
        choose("mnu_undo");
        window->gate().add(holder);
    }
    void TearDown() override {
        if (window != nullptr) window->gate().remove(holder);
        Main_Window_Test::TearDown();
    }
    /// All that leaving would change.
    std::string shown() {
        std::string all = window->windowTitle().toStdString() + (window->isVisible() ? "" : "gone");
        for (const char* option : {"opt_rescv_0", "opt_dec_0"})
            all += get<QRadioButton>(option).isChecked() ? '+' : '-';
        for (Entry_List* list : {&sets(), &cvs()}) {
            for (const std::string& row : rows(*list)) all += '\n' + row;
            for (const int row : list->selected_rows()) all += '*' + std::to_string(row);
        }
        return all;
    }
    Holder holder;
};

} // namespace

TEST_F(Leaving_Test, whoever_holds_something_is_asked_once_and_may_stay) {
    const struct {
        const char* what;
        std::function<void()> leave;
    } ways[] = {
        {"another set",
         [&] {
             click_row(sets(), 1);
             QApplication::processEvents();
         }},
        {"Entf", [&] { delete_chosen_set(); }},
        {"a new set", [&] { add_set("Neu"); }},
        {"a pasted set",
         [&] {
             desktop.clipboard = {QStringLiteral("SetName,Neu\r\nObj,Set\r\n"), {}};
             choose("mnu_cvset_paste");
         }},
        {"undo", [&] { choose("mnu_undo"); }},
        {"redo", [&] { choose("mnu_redo"); }},
        {"another view", [&] { click_option("opt_rescv_1"); }},
        {"another family", [&] { click_option("opt_dec_1"); }},
        {"open",
         [&] {
             desktop.expect_open(QStringLiteral("/home/anna/andere.mdb"));
             choose("mnu_open_database");
         }},
        {"open again", [&] { get<QMenu>("mnu_open_last").actions().at(0)->trigger(); }},
        {"create",
         [&] {
             desktop.expect_save(QStringLiteral("/home/anna/neu.mdb"));
             choose("mnu_create_database");
         }},
        {"restore",
         [&] {
             in_set_dialog([](QDialog& dialog) { press_button(dialog, "cmd_restore"); });
             choose("mnu_restore");
         }},
        {"close", [&] { window->close(); }},
    };
    for (const auto& way : ways) {
        SCOPED_TRACE(way.what);
        const std::string before = shown();
        holder.asked = 0;
        way.leave();
        EXPECT_EQ(holder.asked, 1);
        EXPECT_EQ(shown(), before);
        EXPECT_EQ(holder.put_away, 0);
    }
    holder.agrees = true;
    holder.asked = 0;
    click_row(sets(), 1);
    QApplication::processEvents();
    EXPECT_EQ(holder.asked, 1);
    EXPECT_EQ(sets().selected_rows(), std::vector{1});
    EXPECT_EQ(database.AktCVSetID(), sets().key(1));
}

TEST_F(Leaving_Test, what_others_take_away_is_put_into_safety_and_nobody_is_asked) {
    leave_and_return([&] {
        elsewhere([&](store::clsDBConn& other) { return other.DB_Del_CVSet(sets().key(0)); });
    });
    EXPECT_EQ(holder.put_away, 1);
    leave_and_return([&] { disk.rename("/home/anna/andere.mdb", default_path); });
    EXPECT_EQ(holder.put_away, 2);
    window->unload(); // a signal, or the end of the session
    EXPECT_EQ(holder.put_away, 3);
    EXPECT_EQ(holder.asked, 0);
    EXPECT_TRUE(window->close());
}

TEST_F(Leaving_Test, a_job_locks_the_window_and_ends_with_the_program) {
    holder.agrees = true;
    field("txt_cv_wert").setFocus();
    std::unique_ptr<app::Job_State::Run> run;
    run = std::make_unique<app::Job_State::Run>(window->job(), [&] { run.reset(); });
    const std::string before = shown();
    for (const QAction* action : window->findChildren<QAction*>()) {
        const QString name = action->objectName();
        if (!name.startsWith(u"mnu_") || name.startsWith(u"mnu_last_files") || action->menu())
            continue;
        EXPECT_EQ(action->isEnabled(), name == u"mnu_datei_beenden" || name == u"mnu_protokoll")
            << name.toStdString();
    }
    EXPECT_FALSE(get<QMenu>("mnu_open_last").menuAction()->isEnabled());
    QTest::keyClick(window.get(), Qt::Key_Z, Qt::ControlModifier);
    click_row(sets(), 1);
    leave_and_return([&] {
        elsewhere([&](store::clsDBConn& other) { return other.DB_Del_CVSet(sets().key(2)); });
    });
    EXPECT_EQ(shown(), before);
    const int count = sets().count();
    QApplication::setActiveWindow(window.get());
    run.reset();
    EXPECT_EQ(sets().count(), count - 1); // what others changed meanwhile
    EXPECT_EQ(focus(), "txt_cv_wert");

    run = std::make_unique<app::Job_State::Run>(window->job(), [&] { run.reset(); });
    EXPECT_TRUE(window->close());
    EXPECT_EQ(run, nullptr);
}

// The interface is gone: the ports are shown, and the job that follows ends in order and says why.
TEST_F(Leaving_Test, a_job_without_a_port_asks_and_says_what_to_do) {
    holder.agrees = true;
    click_option("opt_dec_1");
    in_set_dialog([](QDialog& dialog) {
        ASSERT_EQ(dialog.objectName(), u"frm_comm");
        EXPECT_TRUE(QTest::qWaitFor([&] {
            dialog.findChild<QPushButton*>(QStringLiteral("cmd_ok"))->click();
            return !dialog.isVisible();
        }));
    });
    choose("mnu_CVSet_Laden");
    EXPECT_TRUE(QTest::qWaitFor([&] { return !window->job().runs(); }));
    EXPECT_THAT(status(), testing::HasSubstr("„COM1“ gibt es nicht: Interface einstecken"));
    EXPECT_EQ(get<QLabel>("Label1").text(), QStringLiteral("Verbindung fehlgeschlagen"));
    EXPECT_TRUE(sets().isEnabled());
}
