#include "ui/main/number_field.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QValidator>
#include <algorithm>
#include <limits>
#include <utility>

namespace ui_main {
namespace {

bool is_digit(QChar c) { return c >= u'0' && c <= u'9'; } // not the digits of other scripts

/// Drops what is no digit before it reaches the field, pasted text included.
class Digits_Only final : public QValidator {
public:
    Digits_Only(Number_Field* field, int highest)
        : QValidator(field), field_(*field), highest_(highest) {}

    State validate(QString& text, int& cursor) const override {
        const auto is_foreign = [](QChar c) { return !is_digit(c); };
        const QString before = text.left(cursor);
        QString kept = text;
        kept.removeIf(is_foreign);
        if (highest_ != Number_Field::no_limit && leading_number(kept) > highest_) {
            Q_EMIT field_.too_high(highest_);
            return Invalid;
        }
        cursor -= static_cast<int>(std::count_if(before.begin(), before.end(), is_foreign));
        text = kept;
        return Acceptable;
    }

private:
    Number_Field& field_;
    int highest_;
};

} // namespace

int leading_number(const QString& text) {
    constexpr int largest = std::numeric_limits<int>::max();
    int number = 0;
    for (const QChar c : text) {
        if (!is_digit(c)) break;
        const int digit = c.unicode() - u'0';
        if (number > (largest - digit) / 10) return largest;
        number = number * 10 + digit;
    }
    return number;
}

Number_Field::Number_Field(QWidget* parent, int highest) : QLineEdit(parent) {
    setValidator(new Digits_Only(this, highest));
    setInputMethodHints(Qt::ImhDigitsOnly);
}

int Number_Field::number() const { return leading_number(text()); }

void Number_Field::take_focus() {
    setFocus();
    selectAll();
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
    selectAll();
}

void Number_Field::mouseReleaseEvent(QMouseEvent* event) {
    QLineEdit::mouseReleaseEvent(event);
    // The press of this click has put the cursor somewhere and so undone the selection.
    if (std::exchange(clicked_into_, false) || select_on_click_) selectAll();
}

} // namespace ui_main
