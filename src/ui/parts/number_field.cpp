#include "ui/parts/number_field.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QValidator>
#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

namespace ui_parts {
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

} // namespace

int leading_number(const QString& text) {
    constexpr std::int64_t beyond = std::int64_t{1} << 32;
    const bool negative = text.startsWith(u'-');
    std::int64_t number = 0;
    for (const QChar c : negative ? QStringView(text).mid(1) : QStringView(text)) {
        if (!is_digit(c)) break;
        number = std::min(number * 10 + (c.unicode() - u'0'), beyond);
    }
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(
        std::clamp<std::int64_t>(negative ? -number : number, Limits::min(), Limits::max()));
}

Number_Field::Number_Field(QWidget* parent, int highest)
    : Guarded_Field(parent), highest_(highest) {
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

// Other programs hand over blanks and line ends around a number.
QString Number_Field::admitted(const QString& given, int from, int to) {
    const QString digits = given.trimmed();
    const bool fits = is_digits(digits) && may_hold(text().replace(from, to - from, digits));
    return fits ? digits : QString();
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
    return Guarded_Field::event(event);
}

void Number_Field::focusInEvent(QFocusEvent* event) {
    Guarded_Field::focusInEvent(event);
    clicked_into_ = event->reason() == Qt::MouseFocusReason;
    if (event->reason() != Qt::PopupFocusReason) selectAll(); // its own menu is for the selection
}

void Number_Field::mouseReleaseEvent(QMouseEvent* event) {
    Guarded_Field::mouseReleaseEvent(event);
    // The press of this click has put the cursor somewhere and so undone the selection.
    if (std::exchange(clicked_into_, false) || select_on_click_) selectAll();
}

} // namespace ui_parts
