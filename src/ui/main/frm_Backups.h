#pragma once

#include "store/backups.h"

#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>

namespace ui_main {

/// Lists the copies of a library and lets the user choose the one to bring back.
class frm_Backups final : public QDialog {
    Q_OBJECT
public:
    /// @param copies newest first, at least one
    frm_Backups(QWidget* parent, const QString& file, std::vector<store::Backup> copies);

    /// Shows the dialog until it is closed. @return the chosen copy; nothing when it was cancelled
    std::optional<store::Backup> choose();

private:
    void fill();
    void enable();

    std::vector<store::Backup> copies_;
    QTreeWidget* lst_sicherungen;
    QLabel* lab_hint;
    QPushButton* cmd_restore;
    QPushButton* cmd_cancel;
};

/// As people here write a moment: "24.11.2026 18:44:05".
QString shown_date(const QDateTime& moment);

} // namespace ui_main
