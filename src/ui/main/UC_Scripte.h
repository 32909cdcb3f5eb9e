#pragma once

#include "ui/parts/empty_hint.h"

#include <QPushButton>
#include <QTreeWidget>
#include <QWidget>
#include <memory>

namespace ui_main {

/// The scripts of the selected set, one row each, for looking at.
class UC_Scripte final : public QWidget {
    Q_OBJECT
public:
    explicit UC_Scripte(QWidget* parent);

    /// Shows AktScripts anew.
    void refill();
    /// What stands there while there are no scripts.
    void set_hint(const QString& hint) { hint_->set_text(hint); }
    void set_tab_order(QWidget* before);

private:
    QPushButton* button(const char* name, const QString& caption);

    QTreeWidget* lvw_Scripts;
    std::unique_ptr<ui_parts::Empty_Hint> hint_;
    QPushButton* cmd_Add;
    QPushButton* cmd_import;
    QPushButton* cmd_export;
};

} // namespace ui_main
