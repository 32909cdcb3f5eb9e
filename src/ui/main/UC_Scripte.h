#pragma once

#include <QPushButton>
#include <QTreeWidget>
#include <QWidget>

namespace ui_main {

/// The scripts of the selected set, one row each, for looking at.
class UC_Scripte final : public QWidget {
    Q_OBJECT
public:
    explicit UC_Scripte(QWidget* parent);

    /// Shows AktScripts anew.
    void refill();
    void set_tab_order(QWidget* before);

private:
    QPushButton* button(const char* name, const QString& caption);

    QTreeWidget* lvw_Scripts;
    QPushButton* cmd_Add;
    QPushButton* cmd_import;
    QPushButton* cmd_export;
};

} // namespace ui_main
