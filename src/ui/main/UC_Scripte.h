#pragma once

#include "ui/parts/empty_hint.h"

#include <QPushButton>
#include <QTreeWidget>
#include <QWidget>
#include <memory>

namespace ui_main {

/// The scripts of the selected set, one row each.
class UC_Scripte final : public QWidget {
    Q_OBJECT
public:
    explicit UC_Scripte(QWidget* parent);

    /// Shows AktScripts anew.
    void refill();
    /// What stands there while there are no scripts.
    void set_hint(const QString& hint) { hint_->set_text(hint); }
    void set_tab_order(QWidget* before);
    /// Makes a script the selected one, by its position; 0: none.
    void choose(int position);

Q_SIGNALS:
    void import_wanted();
    void export_wanted(int position);
    void delete_wanted(int position);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QPushButton* button(const char* name, const QString& caption);
    int chosen() const; ///< position of the selected script; 0: none
    void enable();

    QTreeWidget* lvw_Scripts;
    std::unique_ptr<ui_parts::Empty_Hint> hint_;
    QPushButton* cmd_Add;
    QPushButton* cmd_import;
    QPushButton* cmd_export;
};

} // namespace ui_main
