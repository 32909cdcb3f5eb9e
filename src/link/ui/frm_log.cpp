#include "link/ui/frm_log.h"

#include <QScrollBar>
#include <QVBoxLayout>

namespace link_ui {

frm_log::frm_log(QWidget* parent, Log_Lines& lines, desktop::Desktop& desktop)
    : QDialog(parent), lines_(lines), desktop_(desktop), lst_deb(new QListView(this)),
      cmd_zwischen(new QPushButton(QStringLiteral("In &Zwischenablage"), this)),
      placer_(*this, desktop) {
    setObjectName(QStringLiteral("frm_log"));
    setWindowTitle(QStringLiteral("Protokoll der Übertragung"));
    lst_deb->setObjectName(QStringLiteral("lst_deb"));
    lst_deb->setAccessibleName(windowTitle());
    lst_deb->setUniformItemSizes(true);
    lst_deb->setModel(&lines_);
    cmd_zwischen->setObjectName(QStringLiteral("cmd_zwischen"));
    auto* column = new QVBoxLayout(this);
    column->addWidget(lst_deb);
    column->addWidget(cmd_zwischen, 0, Qt::AlignLeft);
    resize(460, 560);

    const QScrollBar* bar = lst_deb->verticalScrollBar();
    connect(&lines_, &QAbstractItemModel::rowsAboutToBeInserted, this,
            [this, bar] { follows_ = bar->value() == bar->maximum(); });
    connect(&lines_, &QAbstractItemModel::rowsInserted, this, [this] {
        if (follows_) lst_deb->scrollToBottom();
    });
    lst_deb->scrollToBottom();
    connect(cmd_zwischen, &QPushButton::clicked, this, &frm_log::copy);
}

void frm_log::copy() { desktop_.Set_Clipboard_Text({lines_.text(), {}}); }

} // namespace link_ui
