#include "ui/main/history_commands.h"

#include "app/mod_fileverwaltung.h"
#include "app/one_line.h"
#include "ui/main/file_commands.h"
#include "ui/main/frm_Backups.h"
#include "ui/main/kept_copies.h"
#include "ui/main/library_view.h"
#include "ui/main/menus.h"
#include "ui/main/texts.h"
#include "ui/parts/trouble_texts.h"

namespace ui_main {
namespace {

/// The name of a step behind the command that takes it.
Command::Now next_step(const std::optional<store::Undo_Name>& step) {
    if (!step) return {.possible = false, .more = {}};
    return {.possible = true, .more = app::in_one_line(sentence(*step)).replace(u'&', u"&&"_qs)};
}

} // namespace

History_Commands::History_Commands(const Surroundings& at, File_Commands& files)
    : at_(at), files_(files), history_(at.database) {
    const auto run = [this](void (History_Commands::*work)()) {
        return at_.messages.command([this, work] { (this->*work)(); });
    };
    at.menus.bring({
        {.name = "mnu_undo",
         .run = run(&History_Commands::undo),
         .now = [this] { return next_step(history_.undo_name()); },
         .keys = Qt::CTRL | Qt::Key_Z},
        {.name = "mnu_redo",
         .run = run(&History_Commands::redo),
         .now = [this] { return next_step(history_.redo_name()); },
         .keys = Qt::CTRL | Qt::SHIFT | Qt::Key_Z},
        {.name = "mnu_restore", .run = run(&History_Commands::restore_backup)},
    });
}

/// What is stored on the way is the newest step itself: the one that was meant comes after it.
bool History_Commands::leave_for_history() {
    const std::uint64_t before = history_.steps_made();
    if (!at_.gate.pass()) return false;
    if (history_.steps_made() == before) return true;
    at_.messages.say(text(Text::stored_first));
    return false;
}

void History_Commands::undo() {
    if (history_.undo_name() && !leave_for_history()) return;
    go_through_history(history_.undo(), Text::step_undone, Text::nothing_to_undo);
}

void History_Commands::redo() {
    if (history_.redo_name() && !leave_for_history()) return;
    go_through_history(history_.redo(), Text::step_redone, Text::nothing_to_redo);
}

void History_Commands::go_through_history(const store::Undo_Result& result, Text done,
                                          Text nothing) {
    using Outcome = store::Undo_Result::Outcome;
    if (result.outcome == Outcome::nothing_to_do) {
        at_.messages.say(text(nothing));
        return;
    }
    if (result.outcome == Outcome::failed) {
        at_.messages.say_trouble();
        return;
    }
    at_.view.show_set(result.set != 0 ? result.set : at_.view.selected_set());
    at_.messages.say_missing_copy();
    at_.database.take_trouble(); // that rows differ is told below, in the words of the user
    const Text form = result.outcome == Outcome::done ? done : Text::step_changed_elsewhere;
    at_.messages.say(Library_View::with_left_out(text(form).arg(sentence(result.name))));
}

void History_Commands::restore_backup() {
    const QString file = app::current_database();
    const std::vector<store::Backup> copies = at_.copies.get().copies_of(file);
    if (copies.empty()) {
        if (!at_.messages.say_trouble())
            at_.messages.say(text(Text::backups_none).arg(ui_parts::shortened(app::FileOf(file))));
        return;
    }
    const auto chosen = frm_Backups(&at_.window, file, copies).choose();
    if (!chosen || !at_.gate.pass()) return;
    at_.database.Connection_Close();
    const bool restored = at_.copies.get().restore(chosen->path, file);
    const std::optional<store::Trouble> trouble = at_.copies.get().take_trouble();
    files_.Open_Database();
    QString done = text(Text::backup_restored).arg(shown_date(chosen->made));
    if (chosen->soundness == store::Soundness::cut_off)
        done += u' ' + text(Text::backup_was_cut_off);
    if (chosen->soundness == store::Soundness::damaged)
        done += u' ' + text(Text::backup_was_damaged);
    if (restored)
        at_.messages.say_and_log(Library_View::with_left_out(done), chosen->path);
    else if (trouble)
        at_.messages.say_and_log(text(Text::backup_not_restored).arg(ui_parts::sentence(*trouble)),
                                 *trouble);
}

} // namespace ui_main
