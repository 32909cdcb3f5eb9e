#include "ui/main/frm_Backups.h"

#include "app/mod_fileverwaltung.h"
#include "ui/main/texts.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QVBoxLayout>
#include <algorithm>

namespace ui_main {

QString shown_date(const QDateTime& moment) {
    return moment.toString(QStringLiteral("dd.MM.yyyy HH:mm:ss"));
}

frm_Backups::frm_Backups(QWidget* parent, const QString& file, std::vector<store::Backup> copies)
    : QDialog(parent), copies_(std::move(copies)), lst_sicherungen(new QTreeWidget(this)),
      lab_hint(new QLabel(text(Text::backups_hint), this)),
      cmd_restore(new QPushButton(text(Text::backup_restore), this)),
      cmd_cancel(new QPushButton(text(Text::backup_cancel), this)) {
    setObjectName(QStringLiteral("frm_Backups"));
    setWindowTitle(
        text(Text::backups_title).arg(app::FileOf(file)).replace(u"[*]"_qs, u"[*][*]"_qs));
    lst_sicherungen->setObjectName(QStringLiteral("lst_sicherungen"));
    lab_hint->setObjectName(QStringLiteral("lab_hint"));
    lab_hint->setWordWrap(true);
    cmd_restore->setObjectName(QStringLiteral("cmd_restore"));
    cmd_cancel->setObjectName(QStringLiteral("cmd_cancel"));
    cmd_restore->setDefault(true);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmd_restore);
    buttons->addWidget(cmd_cancel);
    auto* all = new QVBoxLayout(this);
    all->addWidget(lst_sicherungen);
    all->addWidget(lab_hint);
    all->addLayout(buttons);
    setMinimumSize(420, 300);
    fill();

    connect(cmd_restore, &QPushButton::clicked, this, &QDialog::accept);
    connect(cmd_cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(lst_sicherungen, &QTreeWidget::currentItemChanged, this, &frm_Backups::enable);
    connect(lst_sicherungen, &QTreeWidget::itemDoubleClicked, cmd_restore, &QPushButton::click);
}

namespace {

QString shown_sets(const store::Backup& copy) {
    if (!copy.sets) return text(Text::backup_unreadable);
    switch (copy.soundness) {
    case store::Soundness::whole:
        break;
    case store::Soundness::cut_off:
        return text(Text::backup_cut_off).arg(*copy.sets);
    case store::Soundness::damaged:
        return text(Text::backup_damaged).arg(*copy.sets);
    }
    return QString::number(*copy.sets);
}

/// The newest that holds everything, else the newest that can be brought back.
int proposed(const std::vector<store::Backup>& copies) {
    const auto first = [&](auto is_meant) {
        return std::find_if(copies.begin(), copies.end(), is_meant);
    };
    const auto readable = [](const store::Backup& copy) { return copy.sets.has_value(); };
    auto found = first([&](const store::Backup& copy) {
        return readable(copy) && copy.soundness == store::Soundness::whole;
    });
    if (found == copies.end()) found = first(readable);
    return found == copies.end() ? 0 : static_cast<int>(found - copies.begin());
}

} // namespace

void frm_Backups::fill() {
    lst_sicherungen->setAccessibleName(windowTitle());
    lst_sicherungen->setRootIsDecorated(false);
    lst_sicherungen->setHeaderLabels({text(Text::backup_date), text(Text::backup_sets)});
    for (const store::Backup& copy : copies_) {
        auto* row = new QTreeWidgetItem(lst_sicherungen, {shown_date(copy.made), shown_sets(copy)});
        row->setToolTip(0, copy.path);
    }
    lst_sicherungen->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    lst_sicherungen->setCurrentItem(lst_sicherungen->topLevelItem(proposed(copies_)));
    enable();
}

// What cannot be read is shown, so that nobody looks for it, and cannot be brought back.
void frm_Backups::enable() {
    const int row = lst_sicherungen->currentIndex().row();
    cmd_restore->setEnabled(row >= 0 && copies_[static_cast<std::size_t>(row)].sets.has_value());
}

std::optional<store::Backup> frm_Backups::choose() {
    lst_sicherungen->setFocus();
    if (exec() != QDialog::Accepted) return {};
    return copies_[static_cast<std::size_t>(lst_sicherungen->currentIndex().row())];
}

} // namespace ui_main
