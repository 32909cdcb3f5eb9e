#include "app/ui/frm_Settings.h"

#include "app/mod_main.h"
#include "support/scripted_desktop.h"

#include <QTest>
#include <gtest/gtest.h>

namespace {

class Settings_Window : public testing::Test {
protected:
    Settings_Window() {
        app::reset_globals();
        app::globals.comport = 7;
        app::globals.StdSetdir = QStringLiteral("/alt/");
        app::globals.StdSetPath = QStringLiteral("/std/");
    }
    ~Settings_Window() override { app::reset_globals(); }
    template <class Widget>
    Widget* child(const char* name) {
        if (!window) {
            window = std::make_unique<app_ui::frm_Settings>(nullptr, desktop, access);
            window->show();
        }
        return window->findChild<Widget*>(QString::fromLatin1(name));
    }
    void click(const char* name) { QTest::mouseClick(child<QPushButton>(name), Qt::LeftButton); }

    support::Scripted_Desktop desktop;
    app_ui::Port_Access access{{3, 33, 64}, [](QWidget&) { app::globals.comport = 50; }};
    std::unique_ptr<app_ui::frm_Settings> window;
};

TEST_F(Settings_Window, a_port_counts_at_once_and_survives_cancel) {
    auto* ports = child<QComboBox>("combo_com");
    ASSERT_EQ(ports->count(), 34); // and those above that exist
    EXPECT_EQ(ports->currentText(), QStringLiteral("COM7"));
    QTest::keyClick(ports, Qt::Key_Down);
    EXPECT_EQ(app::globals.comport, 8);
    click("btn_cancel");
    EXPECT_EQ(app::globals.comport, 8);
}

TEST_F(Settings_Window, a_port_beyond_the_list_is_offered_and_a_search_may_choose_one) {
    app::globals.comport = 40;
    auto* ports = child<QComboBox>("combo_com");
    EXPECT_EQ(ports->currentText(), QStringLiteral("COM40"));
    ports->setCurrentText(QStringLiteral("COM64"));
    EXPECT_EQ(app::globals.comport, 64);
    click("cmd_search");
    EXPECT_EQ(ports->currentText(), QStringLiteral("COM50"));
    click("btn_ok");
    EXPECT_EQ(app::globals.comport, 50);
}

TEST_F(Settings_Window, the_folder_changes_only_with_ok) {
    desktop.expect_folder(QStringLiteral("/neu"));
    click("cmd_change_set_path");
    EXPECT_EQ(child<QLineEdit>("txt_std_set_pfad")->text(), QStringLiteral("/neu/"));
    EXPECT_EQ(app::globals.StdSetdir, QStringLiteral("/alt/"));
    click("btn_ok");
    EXPECT_EQ(app::globals.StdSetdir, QStringLiteral("/neu/"));

    window.reset();
    desktop.expect_folder(QString());
    click("cmd_change_set_path");
    EXPECT_EQ(child<QLineEdit>("txt_std_set_pfad")->text(), QStringLiteral("/neu/"));
    child<QLineEdit>("txt_std_set_pfad")->setText(QStringLiteral("/anders"));
    click("btn_cancel");
    EXPECT_EQ(app::globals.StdSetdir, QStringLiteral("/neu/"));
}

TEST_F(Settings_Window, a_typed_folder_gets_its_separator_and_may_be_empty) {
    for (const auto& [typed, kept] : {std::pair{"/x/y", "/x/y/"}, {" /x/ ", "/x/"}, {"", ""}}) {
        SCOPED_TRACE(typed);
        window.reset();
        child<QLineEdit>("txt_std_set_pfad")->setText(QString::fromLatin1(typed));
        QTest::keyClick(child<QLineEdit>("txt_std_set_pfad"), Qt::Key_Return);
        EXPECT_EQ(app::globals.StdSetdir, QString::fromLatin1(kept));
    }
}

} // namespace
