#pragma once

#include <QClipboard>
#include <QLineEdit>

namespace ui_parts {

/// A field that judges every text before it arrives, by whatever way it comes: keys, clipboard,
/// input method, drop. What is refused changes nothing, neither the selection nor what can be taken
/// back.
class Guarded_Field : public QLineEdit {
    Q_OBJECT
public:
    using QLineEdit::QLineEdit;

public Q_SLOTS:
    void paste(); ///< the context menu finds this one by its name

protected:
    /// What of a given text, never an empty one, may take the place of the characters from `from`
    /// to before `to`; an empty text refuses it.
    virtual QString admitted(const QString& given, int from, int to) = 0;
    /// A text came, and this of it was taken.
    virtual void answered(const QString& /*given*/, const QString& /*taken*/) {}
    /// Whether what an input method composes is shown before it is judged. Qt gives it the place of
    /// the selection, whatever comes of it.
    virtual bool shows_composition() const { return true; }

    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    struct Span {
        int from;
        int to;
    };
    Span selection() const; ///< the cursor's place where nothing is selected
    QString judged(const QString& given, Span place);
    void type(QKeyEvent* event);
    void paste_from(QClipboard::Mode mode);
    bool paste_at(const QString& given, const QPoint& place);
    void insert_as_step(const QString& taken);
    void judge_drag(QDropEvent* event);
};

} // namespace ui_parts
