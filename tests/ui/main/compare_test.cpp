#include "main_window.h"

#include <QCheckBox>
#include <QComboBox>
#include <QTreeWidget>

using namespace ui_main;

TEST_F(Main_Window_Test, two_sets_are_laid_side_by_side) {
    if (samples_missing()) GTEST_SKIP();
    start();
    const std::string selected = row(sets(), 1);
    click_row(sets(), 1);
    in_set_dialog([&](QDialog& dialog) {
        auto& left = *dialog.findChild<QComboBox*>(QStringLiteral("cmb_links"));
        auto& right = *dialog.findChild<QComboBox*>(QStringLiteral("cmb_rechts"));
        auto& list = *dialog.findChild<QTreeWidget*>();
        const auto said = [&] {
            return dialog.findChild<QLabel*>(QStringLiteral("lab_ergebnis"))->text();
        };
        EXPECT_EQ(left.currentText().toStdString(), selected);
        EXPECT_NE(left.currentData(), right.currentData());
        const int all = list.topLevelItemCount();
        EXPECT_GT(all, 0);
        dialog.findChild<QCheckBox*>()->click();
        EXPECT_LT(list.topLevelItemCount(), all);
        dialog.findChild<QCheckBox*>()->click();
        press_button(dialog, "cmd_copy");
        const QString copied = desktop.Get_Clipboard_Text().text;
        EXPECT_EQ(copied.count(QStringLiteral("\r\n")), all + 1);
        right.setCurrentIndex(left.currentIndex());
        EXPECT_TRUE(said().startsWith(QStringLiteral("Keine Unterschiede")))
            << said().toStdString();
        EXPECT_EQ(list.topLevelItemCount(), 0);
    });
    choose("mnu_vergleichen");
    EXPECT_EQ(row(sets(), sets().selected_rows().front()), selected);
    EXPECT_EQ(database.AktCVSetID(), sets().key(1));
}
