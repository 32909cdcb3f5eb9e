#pragma once

#include <QLineEdit>

namespace ui_main {

/// A field for a whole number: takes digits only, and only up to a highest number.
class Number_Field final : public QLineEdit {
    Q_OBJECT
public:
    static constexpr int no_limit = 0;

    explicit Number_Field(QWidget* parent, int highest = no_limit);
    /// The number formed by the digits, 0 for no text. Numbers beyond 32 bits read as the largest.
    int number() const;
    void set_number(int number) { setText(QString::number(number)); }
    void take_focus(); ///< with the whole text selected
    void select_on_click() { select_on_click_ = true; }

Q_SIGNALS:
    /// Someone tried to enter a number above the highest.
    void too_high(int highest);

protected:
    bool event(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    bool select_on_click_ = false;
    bool clicked_into_ = false; ///< the click that brought the focus has not ended yet
};

/// The number formed by the digits at the beginning of a text; the largest int where it is beyond.
int leading_number(const QString& text);

} // namespace ui_main
