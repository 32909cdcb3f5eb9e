#include "app/ui/frm_Settings.h"

#include "app/mod_main.h"
#include "support/scripted_desktop.h"

#include <QTest>
#include <gtest/gtest.h>

namespace {

struct Settings_Window : testing::Test {
    ~Settings_Window() override { app::reset_globals(); }
    void open() {
        window = std::make_unique<app_ui::frm_Settings>(nullptr, desktop, access);
        window->show();
        folder = window->findChild<QLineEdit*>(QStringLiteral("txt_std_set_pfad"));
        ports = window->findChild<QComboBox*>(QStringLiteral("combo_com"));
    }
    void click(const char* name) {
        window->findChild<QPushButton*>(QString::fromLatin1(name))->click();
    }

    support::Scripted_Desktop desktop;
    app_ui::Port_Access access{{3, 33, 64}, [](QWidget&) { app::globals.comport = 50; }};
    std::unique_ptr<app_ui::frm_Settings> window;
    QLineEdit* folder = nullptr;
    QComboBox* ports = nullptr;
};

TEST_F(Settings_Window, a_port_counts_at_once_and_survives_cancel) {
    app::globals.comport = 7;
    open();
    ASSERT_EQ(ports->count(), 34); // and those above that exist
    EXPECT_EQ(ports->currentText(), QStringLiteral("COM7"));
    QTest::keyClick(ports, Qt::Key_Down);
    EXPECT_EQ(app::globals.comport, 8);
    click("btn_cancel");
    EXPECT_EQ(app::globals.comport, 8);
}

TEST_F(Settings_Window, a_port_beyond_the_list_is_offered_and_a_search_may_choose_one) {
    app::globals.comport = 40;
    open();
    EXPECT_EQ(ports->currentText(), QStringLiteral("COM40"));
    ports->setCurrentText(QStringLiteral("COM64"));
    EXPECT_EQ(app::globals.comport, 64);
    click("cmd_search");
    EXPECT_EQ(ports->currentText(), QStringLiteral("COM50"));
    click("btn_ok");
    EXPECT_EQ(app::globals.comport, 50);
}

TEST_F(Settings_Window, the_folder_changes_only_with_ok_and_gets_its_separator) {
    app::globals.StdSetdir = QStringLiteral("/alt/");
    open();
    EXPECT_EQ(folder->text(), QStringLiteral("/alt/"));
    for (const char* chosen : {"/neu", "/neu/", ""}) { // the last is a cancelled dialog
        desktop.expect_folder(QString::fromLatin1(chosen));
        click("cmd_change_set_path");
        EXPECT_EQ(folder->text(), QStringLiteral("/neu/"));
    }
    click("btn_cancel");
    EXPECT_EQ(app::globals.StdSetdir, QStringLiteral("/alt/"));
    for (const auto& [typed, kept] : {std::pair{"/x/y", "/x/y/"}, {" /x/ ", "/x/"}, {"", ""}}) {
        open();
        folder->setText(QString::fromLatin1(typed));
        QTest::keyClick(folder, Qt::Key_Return);
        EXPECT_FALSE(window->isVisible());
        EXPECT_EQ(app::globals.StdSetdir, QString::fromLatin1(kept));
    }
}

} // namespace
