#pragma once

#include "app/diagnostic_log.h"
#include "platform/files/disk.h"
#include "store/clsDBConn.h"
#include "ui/parts/status_line.h"

#include <QObject>
#include <functional>

namespace ui_main {

class Kept_Copies;

/// What the window says at its foot and keeps in the log.
class Messages final : public QObject {
    Q_OBJECT
public:
    using One_Command = ui_parts::Status_Line::One_Command;

    /// @param lost shown as long as nothing can be kept for the next run
    Messages(ui_parts::Status_Line& line, QLabel& lost, store::clsDBConn& database,
             Kept_Copies& copies, files::Disk& disk);

    /// A command as one that says all it has to say in one message.
    std::function<void()> command(std::function<void()> run);
    /// All that is said while this lives is one message.
    [[nodiscard]] One_Command one_command() { return One_Command(line_); }

    void say(const QString& sentence) { line_.say(sentence); }
    /// What was said before may be about what is no longer shown.
    void forget() { line_.forget(); }
    const QString& last_sentence() const { return line_.last_sentence(); }
    /// Says a sentence and keeps it in the log, with the reason in the words of the system.
    void say_and_log(const QString& sentence, const QString& reason);
    void say_and_log(const QString& sentence, const store::Trouble& reason);

    /// Says what kept the database from the last operation, if anything did. @return whether so
    bool say_trouble();
    void say_missing_copy(); ///< that no backup could be made, if so
    /// Whether there are CV sets to work on; says why not.
    bool expect_library();
    void say_no_set(); ///< that none is selected, and why

Q_SIGNALS:
    /// Something kept the database from an operation; it is said when all have been told.
    void trouble_met(const store::Trouble& trouble);

private:
    app::Diagnostic_Log log();

    ui_parts::Status_Line& line_;
    QLabel& lost_;
    store::clsDBConn& database_;
    Kept_Copies& copies_;
    files::Disk& disk_;
};

} // namespace ui_main
