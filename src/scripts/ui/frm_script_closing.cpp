// Closing the editor: what becomes of the lines.

#include "app/mod_main.h"
#include "app/text_table.h"
#include "scripts/cls_script_coll.h"
#include "scripts/script_file.h"
#include "scripts/ui/editor_form.h"
#include "scripts/ui/frm_script.h"
#include "scripts/ui/script_dialog.h"
#include "scripts/ui/script_safety.h"
#include "ui/parts/trouble_texts.h"
#include "ui/parts/window_placer.h"

#include <QCloseEvent>
#include <QDebug>
#include <QScopedValueRollback>

namespace scripts_ui {

using scripts::AktScripts;
using scripts::cls_script;

void frm_script::closeEvent(QCloseEvent* event) {
    if (session_ && !close_as(Closing::close_box)) event->ignore();
}

bool frm_script::close_as(Closing how) {
    if (!session_) return true;
    if (closing_) return false;
    const QScopedValueRollback closing(closing_, true);
    form_->Picture1->commit();
    end_simulation();
    if (!leave_changes(how)) return false;
    if (session_) end();
    hide();
    return true;
}

/// @return false: the user stays, or what was to be stored could not be
bool frm_script::leave_changes(Closing how) {
    if (!session_->changed() || how == Closing::cancel) return true;
    if (how == Closing::ok) return save();
    using Answer = desktop::Desktop::Answer;
    const QString title = app::TextTable.text(198), question = app::TextTable.text(305);
    const Answer answer = how == Closing::close_box
                              ? place_.desktop.ask_yes_no_cancel(title, question)
                              : place_.desktop.ask_whether_to_keep(title, question);
    if (!session_) return true; // the program has ended meanwhile, and asked nobody
    if (answer == Answer::yes) return save();
    return answer == Answer::no;
}

bool frm_script::save() {
    const int place = position();
    if (place == 0) {
        offer_file(QStringLiteral("Das Script ist nicht mehr in der Bibliothek."));
        return false;
    }
    const auto held = AktScripts().Item(place); // a library that is lost takes its list along
    cls_script& script = *held;
    const cls_script before = script;
    place_.database.take_trouble(); // of what was tried before
    session_->write_back(script);
    script.Stored_States = stored_states_;
    if (!place_.database.DB_Save_Script_States(place)) {
        const auto trouble = place_.database.last_trouble();
        const QString reason = trouble ? ui_parts::sentence(*trouble) : QString();
        script = before;
        if (!session_) return true; // lost with its library, and put into safety
        offer_file(reason);
        return false;
    }
    stored_states_ = script.Stored_States;
    session_->kept();
    constexpr int source = scripts::cls_Scriptstate::stored_par_count;
    int lost = 0;
    for (int line = 0; line < script.StateCount; ++line)
        if (script.GetState(line).GetPar(source) != 0) ++lost;
    if (place_.say)
        place_.say(QStringLiteral("Script „%1“ gespeichert.").arg(ui_parts::shortened(name_)) +
                   (lost > 0
                        ? QStringLiteral(" Die Quelle des CV-Werts steht nur in Scriptdateien.")
                        : QString()));
    if (place_.stored) place_.stored();
    return true;
}

cls_script frm_script::in_file_form() const {
    cls_script decoder, file;
    decoder.CopyHeader(session_->working());
    decoder.ScriptName = name_;
    session_->write_back(decoder);
    file.Import_vqx_2_vqr(decoder);
    return file;
}

void frm_script::offer_file(const QString& reason) {
    const bool wanted = place_.desktop.ask_yes_no(
        app::TextTable.text(198),
        reason + QStringLiteral("\nDas Script bleibt offen. Jetzt als Scriptdatei sichern?"));
    if (!wanted) return;
    const auto path =
        ask_script_file(place_.desktop, place_.disk, place_.database, plain_file_name(name_));
    if (!path || !session_) return;
    try {
        const QString lost = write_script_file(place_.disk, in_file_form(), *path);
        form_->lab_status->say(QStringLiteral("Als Scriptdatei gesichert.") + lost);
    } catch (const files::Error& error) {
        form_->lab_status->say(QStringLiteral("Die Scriptdatei kann nicht geschrieben werden: ") +
                               ui_parts::reason(error.kind));
    }
}

/// Nobody can be asked: the next start finds it.
void frm_script::put_into_safety() {
    if (!session_) return;
    const QScopedValueRollback closing(closing_, true);
    form_->Picture1->commit();
    end_simulation();
    if (session_->changed()) {
        try {
            const QString path =
                keep_script(place_.disk, scripts::whole_script_file_of(in_file_form()), name_,
                            SetID_, ScriptID_, library_);
            if (place_.say)
                place_.say(
                    QStringLiteral("Das Script „%1“ war nicht gespeichert und liegt nun in %2.")
                        .arg(ui_parts::shortened(name_), path));
        } catch (const files::Error& error) { // there is nobody to ask
            const QString sentence =
                QStringLiteral(
                    "Das Script „%1“ war nicht gespeichert und konnte nicht gesichert werden: ")
                    .arg(ui_parts::shortened(name_)) +
                ui_parts::reason(error.kind);
            qWarning().noquote() << sentence; // the window is perhaps gone before it is read
            if (place_.say) place_.say(sentence);
        }
    }
    end();
    hide();
}

void frm_script::end() {
    if (isMinimized()) showNormal();
    app::globals.Script_Window_Max = isMaximized();
    if (!isMaximized()) app::globals.Script_Window = placer_->place();
    place_.gate.remove(*this);
    if (const int place = position(); place != 0) AktScripts().Item(place)->EditActive = false;
    app::globals.ScriptWindowOpen = false;
    form_->Picture1->show_session(nullptr, {});
    lines_dropped_ = session_->changed();
    session_.reset();
    inserted_at_.reset();
}

} // namespace scripts_ui
