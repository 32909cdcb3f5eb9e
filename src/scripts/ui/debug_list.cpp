#include "scripts/ui/debug_list.h"

#include <QHeaderView>
#include <QScrollBar>

namespace scripts_ui {

Debug_List::Debug_List(QWidget* parent, const char* name, QStringView says) : QTreeView(parent) {
    setObjectName(QString::fromLatin1(name));
    setAccessibleName(says.toString());
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setEditTriggers(NoEditTriggers);
    setTabKeyNavigation(false);
    setVerticalScrollMode(ScrollPerItem);
    setContextMenuPolicy(Qt::ActionsContextMenu);
    header()->setMinimumSectionSize(fontMetrics().horizontalAdvance(QStringLiteral("000")));
    header()->setSectionsMovable(false);
    constexpr int least_rows = 3; // one of them the header
    setMinimumHeight(least_rows * (fontMetrics().height() + 4));
}

QAction* Debug_List::add_command(QStringView text, const QList<QKeySequence>& keys,
                                 const std::function<void(int row)>& command) {
    auto* action = new QAction(text.toString(), this);
    action->setShortcuts(keys);
    action->setShortcutContext(Qt::WidgetShortcut);
    action->setShortcutVisibleInContextMenu(true);
    connect(action, &QAction::triggered, this, [this, command] {
        if (currentIndex().isValid()) command(currentIndex().row());
    });
    addAction(action);
    return action;
}

QAction* Debug_List::add_enter_command(QStringView text,
                                       const std::function<void(int row)>& command) {
    connect(this, &QTreeView::doubleClicked, this,
            [command](const QModelIndex& at) { command(at.row()); });
    return add_command(text, {Qt::Key_Return, Qt::Key_Enter}, command);
}

void Debug_List::widen(int column, const QString& typical) {
    constexpr int around_text = 6;
    header()->resizeSection(column, fontMetrics().horizontalAdvance(typical + u'0') + around_text);
}

// The range changes with the rows and with the size of the list.
void Trace_List::follow(QAbstractItemModel& model) {
    QScrollBar* bar = verticalScrollBar();
    connect(bar, &QScrollBar::rangeChanged, this, [this, bar] {
        if (follows_) bar->setValue(bar->maximum());
    });
    connect(bar, &QScrollBar::valueChanged, this,
            [this, bar](int value) { follows_ = value == bar->maximum(); });
    connect(&model, &QAbstractItemModel::rowsRemoved, this,
            [this, bar](const QModelIndex& /*parent*/, int first, int last) {
                if (!follows_) bar->setValue(bar->value() - (last - first + 1));
            });
}

void Trace_List::share(int one, int other) {
    one_ = one;
    other_ = other;
    header()->setStretchLastSection(false);
}

void Trace_List::resizeEvent(QResizeEvent* event) {
    Debug_List::resizeEvent(event);
    if (one_ < 0) return;
    int left = viewport()->width();
    for (int column = 0; column < header()->count(); ++column)
        if (column != one_ && column != other_) left -= header()->sectionSize(column);
    header()->resizeSection(one_, left / 2);
    header()->resizeSection(other_, left - left / 2);
}

// The place of the keyboard goes with its row. Else it would go to the next one, the list after it
// and away from the end, and Enter to another state than was chosen.
void Trace_List::rowsAboutToBeRemoved(const QModelIndex& parent, int first, int last) {
    if (currentIndex().isValid() && currentIndex().row() <= last) selectionModel()->clear();
    Debug_List::rowsAboutToBeRemoved(parent, first, last);
}

// Whoever comes by keyboard comes to the latest step instead of the oldest.
QModelIndex Trace_List::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
    if (!currentIndex().isValid()) return model()->index(model()->rowCount() - 1, 0);
    return Debug_List::moveCursor(action, modifiers);
}

} // namespace scripts_ui
