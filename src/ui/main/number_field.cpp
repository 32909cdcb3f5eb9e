#include "ui/main/number_field.h"

#include <QFocusEvent>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QValidator>
#include <algorithm>
#include <limits>
#include <utility>

namespace ui_main {
namespace {

bool is_digit(QChar c) { return c >= u'0' && c <= u'9'; } // not the digits of other scripts

bool is_digits(const QString& text) { return std::all_of(text.begin(), text.end(), is_digit); }

/// The guard of the ways that we do not know. It lets the line edit take back what it has inserted
/// already, and then nothing can be redone; so the ways that we know ask beforehand.
class Last_Guard final : public QValidator {
public:
    explicit Last_Guard(Number_Field* field) : QValidator(field), field_(*field) {}

    State validate(QString& text, int& /*cursor*/) const override {
        return field_.may_hold(text) ? Acceptable : Invalid;
    }

private:
    Number_Field& field_;
};

// Whether a line edit would insert the text of the key: its own rule.
bool inserts(const QKeyEvent& key) {
    if (key.text().isEmpty()) return false;
    const QChar::Category kind = key.text().at(0).category();
    const bool command = key.modifiers() == Qt::ControlModifier ||
                         key.modifiers() == (Qt::ControlModifier | Qt::ShiftModifier);
    return kind == QChar::Other_Format || (!command && kind != QChar::Other_Control);
}

} // namespace

int leading_number(const QString& text) {
    constexpr int largest = std::numeric_limits<int>::max();
    if (text.startsWith(u'-') && text.size() > 1 && is_digit(text[1]))
        return -leading_number(text.mid(1));
    int number = 0;
    for (const QChar c : text) {
        if (!is_digit(c)) break;
        const int digit = c.unicode() - u'0';
        if (number > (largest - digit) / 10) return largest;
        number = number * 10 + digit;
    }
    return number;
}

Number_Field::Number_Field(QWidget* parent, int highest) : QLineEdit(parent), highest_(highest) {
    setValidator(new Last_Guard(this));
    setInputMethodHints(Qt::ImhDigitsOnly);
    // A text that is set as a whole, by a screen reader for example, is not taken back by Qt.
    connect(this, &QLineEdit::textChanged, this,
            [this, last = QString()](const QString& now) mutable {
                if (may_hold(now))
                    last = now;
                else
                    setText(last);
            });
}

int Number_Field::number() const { return leading_number(text()); }

void Number_Field::set_number(int number) {
    shown_ = QString::number(number);
    setText(shown_);
}

void Number_Field::take_focus() {
    setFocus();
    selectAll();
}

// A sign stands only before the number that was shown with it.
bool Number_Field::may_hold(const QString& text) {
    if (text == shown_) return true;
    if (!is_digits(text)) return false;
    if (highest_ == no_limit || leading_number(text) <= highest_) return true;
    Q_EMIT too_high(highest_);
    return false;
}

bool Number_Field::would_take(const QString& typed, int from, int to) {
    return !typed.isEmpty() && is_digits(typed) && may_hold(text().replace(from, to - from, typed));
}

bool Number_Field::would_take(const QString& typed) {
    return hasSelectedText() ? would_take(typed, selectionStart(), selectionEnd())
                             : would_take(typed, cursorPosition(), cursorPosition());
}

// The line edit begins another step to take back wherever the cursor was moved.
void Number_Field::insert_as_step(const QString& digits) {
    const auto part = [this] {
        const int place = cursorPosition();
        setCursorPosition(0);
        setCursorPosition(place);
    };
    if (!hasSelectedText()) part();
    insert(digits);
    part();
}

void Number_Field::paste() { paste_from(QClipboard::Clipboard); }

// Other programs hand over blanks and line ends around a number.
void Number_Field::paste_from(QClipboard::Mode mode) {
    const QString digits = QGuiApplication::clipboard()->text(mode).trimmed();
    if (would_take(digits)) insert_as_step(digits);
}

bool Number_Field::paste_at(const QString& pasted, const QPoint& place) {
    const QString digits = pasted.trimmed();
    const int at = cursorPositionAt(place);
    if (!would_take(digits, at, at)) return false;
    setCursorPosition(at);
    insert_as_step(digits);
    return true;
}

// A field with nothing of its own to take back leaves these keys to the window.
bool Number_Field::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool to_window = (key->matches(QKeySequence::Undo) && !isUndoAvailable()) ||
                               (key->matches(QKeySequence::Redo) && !isRedoAvailable());
        if (to_window) {
            event->ignore();
            return true;
        }
    }
    return QLineEdit::event(event);
}

void Number_Field::focusInEvent(QFocusEvent* event) {
    QLineEdit::focusInEvent(event);
    clicked_into_ = event->reason() == Qt::MouseFocusReason;
    if (event->reason() != Qt::PopupFocusReason) selectAll(); // its own menu is for the selection
}

void Number_Field::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Paste)) {
        const bool marked = event->key() == Qt::Key_Insert &&
                            event->modifiers() == (Qt::ControlModifier | Qt::ShiftModifier);
        paste_from(marked ? QClipboard::Selection : QClipboard::Clipboard);
    } else if (!inserts(*event) || would_take(event->text())) {
        QLineEdit::keyPressEvent(event);
    }
}

// What is being composed is not shown: it would take the place of the selection before it is known
// whether digits come of it.
void Number_Field::inputMethodEvent(QInputMethodEvent* event) {
    QString then = text();
    int place = cursorPosition();
    if (hasSelectedText()) {
        place = selectionStart();
        then.remove(place, selectionEnd() - place);
    }
    place = std::clamp(place + event->replacementStart(), 0, static_cast<int>(then.size()));
    then.replace(place, event->replacementLength(), event->commitString());
    if (!is_digits(event->commitString()) || !may_hold(then)) return;
    QInputMethodEvent committed;
    committed.setCommitString(event->commitString(), event->replacementStart(),
                              event->replacementLength());
    QLineEdit::inputMethodEvent(&committed);
}

// The middle button moves the cursor together with what it pastes, not before.
void Number_Field::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::MiddleButton) QLineEdit::mousePressEvent(event);
}

void Number_Field::mouseReleaseEvent(QMouseEvent* event) {
    const QClipboard& clipboard = *QGuiApplication::clipboard();
    if (event->button() != Qt::MiddleButton)
        QLineEdit::mouseReleaseEvent(event);
    else if (clipboard.supportsSelection() && rect().contains(event->pos()))
        paste_at(clipboard.text(QClipboard::Selection), event->pos());
    // The press of this click has put the cursor somewhere and so undone the selection.
    if (std::exchange(clicked_into_, false) || select_on_click_) selectAll();
}

void Number_Field::judge(QDropEvent* event) {
    const int place = cursorPositionAt(event->position().toPoint());
    if (would_take(event->mimeData()->text().trimmed(), place, place))
        event->acceptProposedAction();
    else
        event->ignore();
}

// The line edit would move its cursor along, and so lose the selection to a text that it refuses.
void Number_Field::dragEnterEvent(QDragEnterEvent* event) { judge(event); }

void Number_Field::dragMoveEvent(QDragMoveEvent* event) { judge(event); }

void Number_Field::dropEvent(QDropEvent* event) {
    if (paste_at(event->mimeData()->text(), event->position().toPoint()))
        event->acceptProposedAction();
    else
        event->ignore();
}

} // namespace ui_main
