#pragma once

#include "ui/parts/guarded_field.h"

namespace ui_parts {

/// A field for a whole number. It takes digits only, and only up to a highest number.
class Number_Field final : public Guarded_Field {
    Q_OBJECT
public:
    static constexpr int no_limit = 0;

    explicit Number_Field(QWidget* parent, int highest = no_limit);
    /// The number that is shown, 0 for no text. Numbers beyond 32 bits read as the nearest.
    int number() const;
    /// Shows a number. A negative one, or one above the highest, stays as it is until it is
    /// replaced by digits.
    void set_number(int number);
    void take_focus(); ///< with the whole text selected
    void select_on_click() { select_on_click_ = true; }
    bool may_hold(const QString& text);

Q_SIGNALS:
    /// Someone tried to enter a number above the highest.
    void too_high(int highest);

protected:
    QString admitted(const QString& given, int from, int to) override;
    bool shows_composition() const override { return false; }
    bool event(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    int highest_;
    QString shown_;
    bool select_on_click_ = false;
    bool clicked_into_ = false; ///< the click that brought the focus has not ended yet
};

/// The number at the beginning of a text, with its sign; the nearest int where it is beyond.
int leading_number(const QString& text);

} // namespace ui_parts
