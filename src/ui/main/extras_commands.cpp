// Settings, and the ways back: undo, redo and copies of the library.

#include "app/mod_fileverwaltung.h"
#include "app/one_line.h"
#include "app/ui/frm_Settings.h"
#include "ui/main/Frm_Main.h"
#include "ui/main/frm_Backups.h"
#include "ui/main/main_form.h"
#include "ui/main/texts.h"

#include <QAction>
#include <QSignalBlocker>

namespace ui_main {

void Frm_Main::settings() { app_ui::frm_Settings(this, desktop_).exec(); }

void Frm_Main::undo() {
    go_through_history(history_.undo(), Text::step_undone, Text::nothing_to_undo);
}

void Frm_Main::redo() {
    go_through_history(history_.redo(), Text::step_redone, Text::nothing_to_redo);
}

void Frm_Main::go_through_history(const store::Undo_Result& result, Text done, Text nothing) {
    using Outcome = store::Undo_Result::Outcome;
    if (result.outcome == Outcome::nothing_to_do) {
        say(text(nothing));
        return;
    }
    if (result.outcome == Outcome::failed) {
        say_trouble();
        return;
    }
    show_set(result.set != 0 ? result.set : form_->lst_sets->selected_key());
    say_missing_copy();
    database_.take_trouble(); // that rows differ is told below, in the words of the user
    const Text form = result.outcome == Outcome::done ? done : Text::step_changed_elsewhere;
    say(with_left_out(text(form).arg(sentence(result.name))));
}

// Fills the lists anew and selects the set, in the view that shows it; another one if it is gone.
void Frm_Main::show_set(std::int32_t SetID) {
    const std::int16_t reset_cv = database_.reset_cv(SetID);
    const std::size_t view = reset_cv == 265 ? 1 : 0;
    if ((reset_cv == 8 || reset_cv == 265) && (family_ == 0 || view == 0)) {
        const QSignalBlocker quiet0(form_->opt_rescv[0]);
        const QSignalBlocker quiet1(form_->opt_rescv[1]);
        form_->opt_rescv[view]->setChecked(true);
        app::globals.AktResCV = reset_cv;
    }
    refill_sets(SetID);
}

// The steps have names in the open menu only; the keys always work and say when there is no step.
void Frm_Main::name_steps(bool menu_open) {
    const auto name = [&](QAction* action, const std::optional<store::Undo_Name>& next) {
        QString caption = action->data().toString();
        if (menu_open && next)
            caption += u": "_qs + app::in_one_line(sentence(*next)).replace(u'&', u"&&"_qs);
        action->setText(caption);
        action->setEnabled(!menu_open || next);
    };
    name(mnu_undo_, history_.undo_name());
    name(mnu_redo_, history_.redo_name());
}

store::Backups& Frm_Main::backups() {
    if (!backups_) {
        backups_ = std::make_unique<store::Backups>(disk_, app::globals.UserDataDir);
        database_.keep_copies(backups_.get());
    }
    return *backups_;
}

void Frm_Main::restore_backup() {
    const QString file = app::current_database();
    const std::vector<store::Backup> copies = backups().copies_of(file);
    if (copies.empty()) {
        if (!say_trouble()) say(text(Text::backups_none).arg(shortened(app::FileOf(file))));
        return;
    }
    const std::optional<store::Backup> chosen = frm_Backups(this, file, copies).choose();
    if (!chosen) return;
    database_.Connection_Close();
    const bool restored = backups().restore(chosen->path, file);
    const std::optional<store::Trouble> trouble = backups().take_trouble();
    Open_Database();
    QString done = text(Text::backup_restored).arg(shown_date(chosen->made));
    if (chosen->soundness == store::Soundness::cut_off)
        done += u' ' + text(Text::backup_was_cut_off);
    if (chosen->soundness == store::Soundness::damaged)
        done += u' ' + text(Text::backup_was_damaged);
    if (restored)
        say_and_log(with_left_out(done), chosen->path);
    else if (trouble)
        say_and_log(text(Text::backup_not_restored).arg(sentence(*trouble)), *trouble);
}

} // namespace ui_main
