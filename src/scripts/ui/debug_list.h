#pragma once

#include "ui/parts/empty_hint.h"

#include <QAction>
#include <QTreeView>
#include <functional>

namespace scripts_ui {

/// A list with columns whose rows are there to be looked at and acted upon, by keys and by the
/// context menu.
class Debug_List : public QTreeView {
    Q_OBJECT
public:
    Debug_List(QWidget* parent, const char* name, QStringView says);

    /// Adds a command for the current row.
    QAction* add_command(QStringView text, const QList<QKeySequence>& keys,
                         const std::function<void(int row)>& command);
    /// The command for Enter and double-clicks.
    QAction* add_enter_command(QStringView text, const std::function<void(int row)>& command);
    /// As wide as a typical text of the column.
    void widen(int column, const QString& typical);
};

/// Shows the end, and the new one when rows come, until the user scrolls away from it. What he has
/// scrolled to stays in its place while rows above it go.
class Trace_List final : public Debug_List {
    Q_OBJECT
public:
    using Debug_List::Debug_List;
    void follow(QAbstractItemModel& model);
    /// Two columns that share the width which the others leave: half and half.
    void share(int one, int other);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void rowsAboutToBeRemoved(const QModelIndex& parent, int first, int last) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;

private:
    bool follows_ = true;
    int one_ = -1, other_ = -1;
};

} // namespace scripts_ui
