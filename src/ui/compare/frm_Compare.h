#pragma once

#include "store/comparison.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <functional>

namespace ui_compare {

/// A set that can be chosen: its key, and as people know it.
struct Choice {
    std::int32_t SetID = 0;
    QString name;
};

/// Through what the window reaches what it compares.
struct Access {
    std::vector<Choice> sets; ///< at least two
    /// The CVs of a set; nothing when they cannot be read, which the window then says.
    std::function<std::optional<std::vector<store::CVRec>>(std::int32_t SetID)> cvs;
    std::function<bool(const QString& text)> copy; ///< @return false: the clipboard refused
};

/// The two sets that are shown, by their keys.
struct Pair {
    std::int32_t left = 0;
    std::int32_t right = 0;
};

/// Shows what differs between two sets: values that are not the same, and CVs that only one has.
class frm_Compare final : public QDialog {
    Q_OBJECT
public:
    /// @param first what is compared at first
    frm_Compare(QWidget* parent, Access access, Pair first);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void lay_out();
    void read();
    void show_differences();
    void copy();
    Pair compared() const;
    std::vector<store::Difference> shown() const;

    Access access_;
    std::optional<store::Comparison> comparison_; ///< nothing: a set cannot be read
    QComboBox* cmb_links;
    QComboBox* cmb_rechts;
    QCheckBox* chk_beide; ///< leaves out what only one set has
    QTreeWidget* lst_unterschiede;
    QLabel* lab_ergebnis;
    QPushButton* cmd_copy;
    QPushButton* cmd_close;
};

} // namespace ui_compare
