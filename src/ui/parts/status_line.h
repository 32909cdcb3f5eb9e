#pragma once

#include <QLabel>

namespace ui_parts {

/// What happened to the last command, at the foot of the window; what has no room is elided and
/// shown as a tooltip.
class Status_Line final : public QLabel {
    Q_OBJECT
public:
    explicit Status_Line(QWidget* parent);
    /// Takes the place of what was said before, except within the same command.
    void say(const QString& sentence);
    /// Forgets what was said before, except within the same command.
    void forget();
    const QString& last_sentence() const { return last_; }

    /// What is said while one of these lives is one message, every sentence once and none in the
    /// place of another. One within another belongs to it. While nothing is said, what the command
    /// before has said stays.
    class One_Command {
    public:
        explicit One_Command(Status_Line& line) : line_(line) {
            if (line_.commands_++ == 0) line_.spoken_ = false;
        }
        ~One_Command() { --line_.commands_; }
        One_Command(const One_Command&) = delete;
        One_Command& operator=(const One_Command&) = delete;

    private:
        Status_Line& line_;
    };

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void show_message();

    QStringList message_;
    QString last_;
    int commands_ = 0;    ///< that run now, one within the other
    bool spoken_ = false; ///< the outermost of them has said something
};

} // namespace ui_parts
