#pragma once

#include <QComboBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QWidget>
#include <optional>

namespace scripts_ui {

/// The number of a line. A click on it inserts a line or copies this one.
class Number_Label final : public QLabel {
    Q_OBJECT
public:
    enum class Colour { plain, red };
    explicit Number_Label(QWidget* parent);
    void show_state(const QString& caption, Colour colour);

Q_SIGNALS:
    void clicked(quint64 moment); ///< of the system's clock of input, in milliseconds

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    Colour colour_ = Colour::plain;
};

/// Beside the number: where a simulation stops.
class Break_Margin final : public QWidget {
    Q_OBJECT
public:
    enum class Mark { none, stop, stop_if };
    explicit Break_Margin(QWidget* parent);
    void show_mark(Mark mark, bool current); ///< whether the simulation is here

Q_SIGNALS:
    void clicked();
    void condition_wanted();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    Mark mark_ = Mark::none;
    bool current_ = false;
};

/// Ctrl+Y, too, wherever one comes from.
bool is_redo(const QKeyEvent& key);

/// A box to choose from a list or to type into. What is typed is only wanted; leaving it, or Enter,
/// says so.
class Entry_Box final : public QComboBox {
    Q_OBJECT
public:
    explicit Entry_Box(QWidget* parent);
    /// Shows an entry, unless somebody is typing here. The text may say more than the list does.
    void show_entry(QAbstractItemModel* entries, int entry, const QString& text);
    bool typing() const { return typing_; }
    void drop_typing();        ///< as if nothing had been
    void show_warm(bool warm); ///< light red, with readable text

Q_SIGNALS:
    void opening();                  ///< the list is about to be seen
    void chosen(int entry);          ///< from the list
    void typed(const QString& text); ///< one character more
    void left(const QString& text);  ///< typing has ended with this

protected:
    void showPopup() override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override { event->ignore(); }

private:
    void end_typing();

    QString shown_;
    bool typing_ = false;
};

/// The comment of a line. Enter ends it as leaving it does; Shift+Enter begins a new line of it, which
/// is stored as CR LF. What the library has no room for is not taken.
class Info_Field final : public QPlainTextEdit {
    Q_OBJECT
public:
    explicit Info_Field(QWidget* parent);
    void show_info(const QString& info, int longest);
    void show_single_line(bool single);
    void commit();
    bool writing() const { return toPlainText() != shown_; }
    /// Whether Up or Down leads to another line of the comment.
    bool has_line(QTextCursor::MoveOperation beside) const;

Q_SIGNALS:
    void committed(const QString& info);
    void entered();
    void cut(int longest);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void insertFromMimeData(const QMimeData* source) override;
    void wheelEvent(QWheelEvent* event) override { event->ignore(); }
    void resizeEvent(QResizeEvent* event) override;

private:
    void centre_line();
    QString with_room(const QString& text) const;
    void put(const QString& info);
    // What an input method or a drop brings is cut when it is there.
    void note_what_came(int position, int removed, int added);
    void cut_what_came();

    QString info_;
    QString shown_; ///< what the field made of it: it knows one kind of line end and of space
    int longest_ = 255;
    bool putting_ = false;
    struct Span {
        int begin, end;
    };
    std::optional<Span> came_; ///< what has been put in too much somewhere
};

} // namespace scripts_ui
