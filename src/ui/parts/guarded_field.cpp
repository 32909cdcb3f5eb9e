#include "ui/parts/guarded_field.h"

#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <algorithm>

namespace ui_parts {
namespace {

// Whether a line edit would insert the text of the key: its own rule.
bool inserts(const QKeyEvent& key) {
    if (key.text().isEmpty()) return false;
    const QChar::Category kind = key.text().at(0).category();
    const bool command = key.modifiers() == Qt::ControlModifier ||
                         key.modifiers() == (Qt::ControlModifier | Qt::ShiftModifier);
    return kind == QChar::Other_Format || (!command && kind != QChar::Other_Control);
}

} // namespace

Guarded_Field::Span Guarded_Field::selection() const {
    if (hasSelectedText()) return {selectionStart(), selectionEnd()};
    return {cursorPosition(), cursorPosition()};
}

QString Guarded_Field::judged(const QString& given, Span place) {
    return given.isEmpty() ? QString() : admitted(given, place.from, place.to);
}

// The line edit begins another step to take back wherever the cursor was moved.
void Guarded_Field::insert_as_step(const QString& taken) {
    const auto part = [this] {
        const int place = cursorPosition();
        setCursorPosition(0);
        setCursorPosition(place);
    };
    if (!hasSelectedText()) part();
    insert(taken);
    part();
}

void Guarded_Field::paste() { paste_from(QClipboard::Clipboard); }

void Guarded_Field::paste_from(QClipboard::Mode mode) {
    const QString given = QGuiApplication::clipboard()->text(mode);
    const QString taken = judged(given, selection());
    if (!taken.isEmpty()) insert_as_step(taken);
    answered(given, taken);
}

bool Guarded_Field::paste_at(const QString& given, const QPoint& place) {
    const int at = cursorPositionAt(place);
    const QString taken = judged(given, {at, at});
    if (!taken.isEmpty()) {
        setCursorPosition(at);
        insert_as_step(taken);
    }
    answered(given, taken);
    return !taken.isEmpty();
}

void Guarded_Field::type(QKeyEvent* event) {
    const QString given = event->text();
    const QString taken = judged(given, selection());
    if (taken == given)
        QLineEdit::keyPressEvent(event);
    else if (!taken.isEmpty())
        insert(taken);
    answered(given, taken);
}

void Guarded_Field::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Paste)) {
        const bool marked = event->key() == Qt::Key_Insert &&
                            event->modifiers() == (Qt::ControlModifier | Qt::ShiftModifier);
        paste_from(marked ? QClipboard::Selection : QClipboard::Clipboard);
    } else if (inserts(*event)) {
        type(event);
    } else {
        QLineEdit::keyPressEvent(event);
    }
}

void Guarded_Field::inputMethodEvent(QInputMethodEvent* event) {
    const QString given = event->commitString();
    const int length = static_cast<int>(text().size());
    const Span marked = selection();
    const int from = std::clamp(marked.from + event->replacementStart(), 0, length);
    const int end = marked.to + event->replacementStart() + event->replacementLength();
    const QString taken = judged(given, {from, std::clamp(end, from, length)});
    const bool removes = given.isEmpty() && event->replacementLength() > 0;
    if (taken.isEmpty() && !removes && !shows_composition()) return;
    QInputMethodEvent allowed(shows_composition() ? event->preeditString() : QString(),
                              shows_composition() ? event->attributes()
                                                  : QList<QInputMethodEvent::Attribute>());
    if (taken.isEmpty() == given.isEmpty())
        allowed.setCommitString(taken, event->replacementStart(), event->replacementLength());
    QLineEdit::inputMethodEvent(&allowed);
    answered(given, taken);
}

// The middle button moves the cursor together with what it pastes, not before.
void Guarded_Field::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::MiddleButton) QLineEdit::mousePressEvent(event);
}

void Guarded_Field::mouseReleaseEvent(QMouseEvent* event) {
    const QClipboard& clipboard = *QGuiApplication::clipboard();
    if (event->button() != Qt::MiddleButton)
        QLineEdit::mouseReleaseEvent(event);
    else if (clipboard.supportsSelection() && rect().contains(event->pos()))
        paste_at(clipboard.text(QClipboard::Selection), event->pos());
}

void Guarded_Field::judge_drag(QDropEvent* event) {
    const int place = cursorPositionAt(event->position().toPoint());
    if (!judged(event->mimeData()->text(), {place, place}).isEmpty())
        event->acceptProposedAction();
    else
        event->ignore();
}

// The line edit would move its cursor along, and so lose the selection to a text that it refuses.
void Guarded_Field::dragEnterEvent(QDragEnterEvent* event) { judge_drag(event); }

void Guarded_Field::dragMoveEvent(QDragMoveEvent* event) { judge_drag(event); }

void Guarded_Field::dropEvent(QDropEvent* event) {
    if (paste_at(event->mimeData()->text(), event->position().toPoint()))
        event->acceptProposedAction();
    else
        event->ignore();
}

} // namespace ui_parts
