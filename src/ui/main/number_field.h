#pragma once

#include <QClipboard>
#include <QLineEdit>

namespace ui_main {

/// A field for a whole number. It takes digits only, and only up to a highest number; by whatever
/// way another text comes, it changes nothing, neither the selection nor what can be taken back.
class Number_Field final : public QLineEdit {
    Q_OBJECT
public:
    static constexpr int no_limit = 0;

    explicit Number_Field(QWidget* parent, int highest = no_limit);
    /// The number that is shown, 0 for no text. Numbers beyond 32 bits read as the largest.
    int number() const;
    /// Shows a number. A negative one stays as it is until it is replaced by digits.
    void set_number(int number);
    void take_focus(); ///< with the whole text selected
    void select_on_click() { select_on_click_ = true; }
    bool may_hold(const QString& text);

public Q_SLOTS:
    void paste(); ///< the context menu finds this one by its name

Q_SIGNALS:
    /// Someone tried to enter a number above the highest.
    void too_high(int highest);

protected:
    bool event(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    bool would_take(const QString& typed, int from, int to);
    bool would_take(const QString& typed);
    void paste_from(QClipboard::Mode mode);
    bool paste_at(const QString& pasted, const QPoint& place);
    void insert_as_step(const QString& digits);
    void judge(QDropEvent* event);

    int highest_;
    QString shown_;
    bool select_on_click_ = false;
    bool clicked_into_ = false; ///< the click that brought the focus has not ended yet
};

/// The number at the beginning of a text, with its sign; the largest int where it is beyond.
int leading_number(const QString& text);

} // namespace ui_main
