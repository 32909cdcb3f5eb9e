#include "ui/main/messages.h"

#include "app/mod_main.h"
#include "ui/main/kept_copies.h"
#include "ui/main/texts.h"
#include "ui/parts/trouble_texts.h"

namespace ui_main {

using ui_parts::sentence;

Messages::Messages(ui_parts::Status_Line& line, QLabel& lost, store::clsDBConn& database,
                   Kept_Copies& copies, files::Disk& disk)
    : line_(line), lost_(lost), database_(database), copies_(copies), disk_(disk) {}

std::function<void()> Messages::command(std::function<void()> run) {
    return [this, run = std::move(run)] {
        const One_Command one(line_);
        run();
    };
}

bool Messages::say_trouble() {
    const One_Command one(line_); // whoever is told of it may have something to say, too
    say_missing_copy();
    const std::optional<store::Trouble> trouble = database_.take_trouble();
    if (!trouble) return false;
    Q_EMIT trouble_met(*trouble);
    say_and_log(sentence(*trouble), *trouble);
    return true;
}

// A change without a copy is a change all the same, so this keeps nobody from saying more.
void Messages::say_missing_copy() {
    if (const std::optional<store::Trouble> trouble = copies_.get().take_trouble())
        say_and_log(text(Text::backup_failed).arg(sentence(*trouble)), *trouble);
}

bool Messages::expect_library() {
    const bool there = database_.expect_library();
    if (!there) say_trouble();
    return there;
}

void Messages::say_no_set() {
    if (expect_library()) say(text(Text::no_set_selected));
}

void Messages::say_and_log(const QString& sentence, const store::Trouble& reason) {
    say_and_log(sentence, reason.subject + u": "_qs + reason.detail);
}

void Messages::say_and_log(const QString& sentence, const QString& reason) {
    const One_Command one(line_);
    say(sentence);
    const bool kept =
        log().write(reason.isEmpty() ? sentence : sentence + u" ["_qs + reason + u']');
    if (!kept && lost_.isHidden()) {
        lost_.setToolTip(text(Text::log_lost).arg(app::globals.UserDataDir));
        say(lost_.toolTip());
    }
    lost_.setHidden(kept);
}

app::Diagnostic_Log Messages::log() {
    return app::Diagnostic_Log(disk_, app::globals.UserDataDir + u"CV-Sets.log"_qs);
}

} // namespace ui_main
