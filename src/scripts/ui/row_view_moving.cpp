// Scrolling, focus and keys of the rows.

#include "scripts/line_columns.h"
#include "scripts/ui/row_view.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWheelEvent>
#include <algorithm>

namespace scripts_ui {

using scripts_catalogue::List;

void Row_View::follow(int line, Wish wish) {
    refresh_marks();
    const int rows = visible_rows();
    const bool seen = line > first_ && line < first_ + rows - 1;
    if (seen || wish == Wish::asked) scrolled_away_ = false;
    if (seen || scrolled_away_) return;
    const int wanted = std::max(0, line - rows / 2);
    const Script_Row* edited = row_of(focus_line_);
    const bool editing =
        wish == Wish::asked
            ? writing()
            : edited != nullptr && edited->isAncestorOf(QApplication::focusWidget());
    if (editing && (focus_line_ < wanted || focus_line_ >= wanted + rows)) return;
    VScroll1->setValue(wanted);
}

bool Row_View::writing() const {
    const Script_Row* row = row_of(focus_line_);
    if (row == nullptr) return false;
    if (row->txt_State_Info->writing() || row->combo_Command->typing()) return true;
    return std::ranges::any_of(row->combo_Param, &Entry_Box::typing);
}

void Row_View::show_line(int line) {
    const int rows = visible_rows();
    if (line < first_) VScroll1->setValue(line);
    if (line >= first_ + rows) VScroll1->setValue(line - rows + 1);
}

QWidget* Row_View::field(int line, int column) const {
    Script_Row* row = row_of(line);
    if (row == nullptr) return nullptr;
    if (column == command_column) return row->combo_Command;
    if (column == info_column) return row->txt_State_Info;
    return row->combo_Param[static_cast<std::size_t>(column - 1)];
}

bool Row_View::takes_focus(int line, int column) const {
    if (line < 0 || line >= shown_lines()) return false;
    if (column == command_column) return true;
    if (line >= session_->lines()) return false;
    if (column == info_column) return columns_.info.width > 0;
    const auto& state = std::as_const(*session_).working().GetState(line);
    return scripts::column_of(state, column - 1, list_language()).list != List::none;
}

void Row_View::take_focus(int line, int column) {
    line = std::clamp(line, 0, std::max(0, shown_lines() - 1));
    if (!takes_focus(line, column)) column = command_column;
    show_line(line);
    if (QWidget* wanted = field(line, column)) wanted->setFocus(Qt::TabFocusReason);
}

void Row_View::take_focus_again() {
    if (hasFocus()) take_focus(focus_line_, focus_column_);
}

void Row_View::commit() {
    Script_Row* row = row_of(focus_line_);
    if (row == nullptr) return;
    row->txt_State_Info->commit();
    QWidget* focused = QApplication::focusWidget();
    if (row->isAncestorOf(focused) && qobject_cast<QPlainTextEdit*>(focused) == nullptr)
        setFocus(); // leaving the box is what ends its typing
}

Row_View::Place Row_View::place_of(const QWidget* focused) const {
    for (const Script_Row* row : rows_) {
        if (!row->isAncestorOf(focused)) continue;
        if (row->combo_Command->isAncestorOf(focused) || row->combo_Command == focused)
            return {row->line(), command_column};
        for (int i = 0; i < Columns::parameters; ++i) {
            const QWidget* box = row->combo_Param[static_cast<std::size_t>(i)];
            if (box == focused || box->isAncestorOf(focused)) return {row->line(), i + 1};
        }
        return {row->line(), info_column};
    }
    return {focus_line_, focus_column_};
}

bool Row_View::focusNextPrevChild(bool next) {
    if (session_ == nullptr) return QWidget::focusNextPrevChild(next);
    Place at = place_of(QApplication::focusWidget());
    for (;;) {
        at.column += next ? 1 : -1;
        if (at.column > info_column) at = {at.line + 1, command_column};
        if (at.column < command_column) at = {at.line - 1, info_column};
        if (at.line < 0 || at.line >= shown_lines()) break;
        if (!takes_focus(at.line, at.column)) continue;
        take_focus(at.line, at.column);
        return true;
    }
    Q_EMIT left(next);
    return true;
}

bool Row_View::handle_key(const QKeyEvent& key, Place at) {
    const bool plain = key.modifiers() == Qt::NoModifier || key.modifiers() == Qt::KeypadModifier;
    const bool control = key.modifiers() == Qt::ControlModifier;
    const auto go = [&](int line) {
        take_focus(line, at.column);
        return true;
    };
    if (key.matches(QKeySequence::Undo)) {
        auto* box = qobject_cast<Entry_Box*>(field(at.line, at.column));
        const bool types = box != nullptr && box->typing();
        types ? box->drop_typing() : Q_EMIT undo_wanted();
        return true;
    }
    if (is_redo(key)) return Q_EMIT redo_wanted(), true;
    const bool letter = !key.text().isEmpty() && key.text().front().isPrint();
    if (letter && key.modifiers() == Qt::AltModifier) return true; // meant for a menu
    if (plain && key.key() == Qt::Key_Up) return go(at.line - 1);
    if (plain && key.key() == Qt::Key_Down) return go(at.line + 1);
    if (plain && key.key() == Qt::Key_PageUp) return go(at.line - visible_rows());
    if (plain && key.key() == Qt::Key_PageDown) return go(at.line + visible_rows());
    if (control && key.key() == Qt::Key_Home) return go(0);
    if (control && key.key() == Qt::Key_End) return go(shown_lines() - 1);
    if (plain && key.key() == Qt::Key_Insert) return Q_EMIT number_clicked(at.line, 0), true;
    if (control && key.key() == Qt::Key_Tab) return Q_EMIT left(true), true;
    if (key.key() == Qt::Key_Backtab && key.modifiers().testFlag(Qt::ControlModifier))
        return Q_EMIT left(false), true;
    if (control && key.key() == Qt::Key_Delete && at.line < session_->lines())
        return Q_EMIT delete_wanted(at.line), true;
    if (plain && key.key() == Qt::Key_F9) return Q_EMIT margin_clicked(at.line), true;
    return false;
}

/// What a text that is being written needs itself.
bool Row_View::goes_to_field(const QKeyEvent& key, const QObject* watched) const {
    const auto* info = qobject_cast<const Info_Field*>(watched);
    if (info == nullptr) return false;
    if (key.matches(QKeySequence::Undo)) return info->document()->isUndoAvailable();
    if (is_redo(key)) return info->document()->isRedoAvailable();
    if (key.key() == Qt::Key_Up) return info->has_line(QTextCursor::Up);
    if (key.key() == Qt::Key_Down) return info->has_line(QTextCursor::Down);
    return key.key() == Qt::Key_Home || key.key() == Qt::Key_End || key.key() == Qt::Key_Delete;
}

bool Row_View::eventFilter(QObject* watched, QEvent* event) {
    if (session_ == nullptr || !watched->isWidgetType())
        return QWidget::eventFilter(watched, event);
    const Place at = place_of(static_cast<QWidget*>(watched));
    switch (event->type()) {
    case QEvent::Wheel:
        wheelEvent(static_cast<QWheelEvent*>(event));
        return true;
    case QEvent::FocusIn:
        focus_line_ = at.line;
        focus_column_ = at.column;
        session_->working().CurrentState = at.line;
        refresh_marks();
        show_captions();
        break;
    case QEvent::FocusOut:
        QMetaObject::invokeMethod(this, &Row_View::refresh_marks, Qt::QueuedConnection);
        break;
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress: {
        const auto& key = *static_cast<QKeyEvent*>(event);
        if (goes_to_field(key, watched)) break;
        if (event->type() == QEvent::ShortcutOverride) {
            if (!key.matches(QKeySequence::Undo) && !is_redo(key)) break;
            event->accept();
            return true;
        }
        if (handle_key(key, at)) return true;
        break;
    }
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

void Row_View::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    const bool by_tab =
        event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    if (session_ != nullptr && by_tab) take_focus(focus_line_, focus_column_);
}

/// What a field has left over comes here, too, and must not go back to it.
void Row_View::keyPressEvent(QKeyEvent* event) {
    if (session_ == nullptr || !hasFocus()) return QWidget::keyPressEvent(event);
    if (handle_key(*event, {focus_line_, focus_column_})) return;
    const bool letter = !event->text().isEmpty() && event->text().front().isPrint();
    if (!letter) return QWidget::keyPressEvent(event);
    take_focus_again();
    if (!hasFocus()) QCoreApplication::sendEvent(QApplication::focusWidget(), event);
}

void Row_View::wheelEvent(QWheelEvent* event) {
    constexpr int notch = 120, rows_per_notch = 3;
    scrolled_away_ = true;
    turned_ += event->angleDelta().y() * rows_per_notch; // touchpads turn by less than a row
    const int rows = turned_ / notch;
    turned_ -= rows * notch;
    VScroll1->setValue(VScroll1->value() - rows);
    event->accept();
}

void Row_View::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    lay_out();
    refresh();
    if (isAncestorOf(QApplication::focusWidget())) show_line(focus_line_);
}

void Row_View::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() != QEvent::FontChange && event->type() != QEvent::StyleChange) return;
    lay_out();
    refresh();
}

} // namespace scripts_ui
