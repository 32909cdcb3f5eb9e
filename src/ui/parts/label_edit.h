#pragma once

#include <QLineEdit>
#include <QObject>
#include <QPointer>
#include <functional>

namespace ui_parts {

/// A text box that is laid over what it edits and hidden again: what the editors of cells and of
/// labels share. Enter ends an edit, and so does losing the focus to another control or window; Esc
/// takes it back. Nothing is written: whoever wants the new text listens.
class Label_Edit : public QObject {
    Q_OBJECT
public:
    ~Label_Edit() override;

    bool editing() const { return editing_; }
    /// As Enter does; nothing where nothing is edited.
    void end();
    /// Hides the box and tells nobody.
    void drop();
    /// Longest text in characters; for the box of the last Init.
    void longest_text(int characters);

Q_SIGNALS:
    void full();    ///< there is no room for more text
    void EditEnd(); ///< by the user; after TextChanged, if there is one

protected:
    Label_Edit() = default;
    /// The box becomes a child of what holds the edited thing.
    void make_box(QWidget& container);
    /// Shows the box, where it has been put already.
    void open();
    QLineEdit* box() { return box_; }

    /// What gives the box its looks and gets the focus from it; nullptr where it is gone.
    virtual QWidget* edited() const = 0;
    virtual QString shown_text() const = 0; ///< of what is edited, as it stands now
    /// What raises TextChanged for what is edited now; nothing where that is gone.
    virtual std::function<void()> news(const QString& text) = 0;
    virtual void closed() = 0; ///< the edit is over, in whatever way

private:
    void close();
    void cancel();

    QPointer<QLineEdit> box_; ///< goes with its container
    QString opened_with_;
    bool editing_ = false;
};

} // namespace ui_parts
