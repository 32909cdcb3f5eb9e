#pragma once

#include "store/active_scripts.h"
#include "ui/parts/LabelEditUC.h"
#include "ui/parts/empty_hint.h"

#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QWidget>
#include <memory>

namespace scripts_ui {

/// The scripts of the selected set, one row each. It shows and says what is wanted; others do it.
class UC_Scripte final : public QWidget {
    Q_OBJECT
public:
    explicit UC_Scripte(QWidget* parent);

    /// Shows AktScripts anew, in the language of the program. Where it is the same set, its selected
    /// script stays so.
    /// @param name_width longest name of a script, in characters; 0: not known now
    void refill(store::Active_Scripts active, int name_width);
    /// The CVs that hold the flags may have changed.
    void show_active(store::Active_Scripts active);
    /// What stands there while there are no scripts.
    void set_hint(const QString& hint) { hint_->set_text(hint); }
    void set_tab_order(QWidget* before);
    /// A name that is being edited is taken as it stands.
    void end_edit() { objLabelEdit->end(); }
    /// Makes a script the selected one, by its position; 0: none.
    void choose(int position);

Q_SIGNALS:
    void add_wanted();
    void import_wanted();
    void export_wanted(int position);
    void delete_wanted(int position);
    void open_wanted(int position);
    void active_wanted(int position, bool active);
    void rename_wanted(std::int32_t ScriptID, const QString& name);
    void name_full(); ///< while one is being edited

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QPushButton* button(const char* name);
    void build_list();
    void show_captions();
    void add_row(int position);
    void fit_columns();
    int chosen() const; ///< position of the selected script; 0: none
    QTreeWidgetItem* row_of(std::int32_t ScriptID) const;
    bool over_check_box(const QPoint& place) const;
    bool key_pressed(const QKeyEvent& key); ///< @return whether it was for a script
    void note_check(const QTreeWidgetItem& row);
    void enable();

    QTreeWidget* lvw_Scripts;
    std::unique_ptr<ui_parts::Empty_Hint> hint_;
    ui_parts::LabelEditUC* objLabelEdit;
    QPushButton* cmd_Add;
    QPushButton* cmd_import;
    QPushButton* cmd_export;
    QLabel* lab_legende;
    store::Active_Scripts active_;
    std::int32_t shown_set_ = 0;
    int shown_language_ = -1;
    int fitted_to_ = 0;         ///< pixels
    bool double_opens_ = false; ///< the double click that is now being told
};

} // namespace scripts_ui
