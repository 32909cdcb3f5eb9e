// Where the window stands, and what happens when it comes to the front or goes.

#include "scripts/cls_script_coll.h"
#include "ui/main/Frm_Main.h"
#include "ui/main/main_form.h"
#include "ui/main/status_line.h"
#include "ui/main/texts.h"

#include <QCloseEvent>

namespace ui_main {

app::Window_Place Frm_Main::place() { return placer_.place(); }

void Frm_Main::move_to(const app::Window_Place& place) { placer_.bring_to(place); }

void Frm_Main::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) refill_if_changed();
}

// Another running copy of the program may have changed the library while this window was behind.
void Frm_Main::refill_if_changed() {
    if (!database_.Connection_Active()) return;
    const std::optional<std::uint64_t> now = database_.foreign_changes();
    if (!now) {
        say_trouble();
        return;
    }
    if (std::exchange(shown_state_, *now) == *now || !database_.is_library()) return;
    const std::int32_t left_out = scripts::AktScripts().States_Left_Out();
    const std::int32_t SetID = form_->lst_sets->selected_key();
    const std::vector<std::int32_t> cvs = form_->lst_CVs->selected_keys();
    const std::int32_t current = form_->lst_CVs->key(form_->lst_CVs->current_row());
    const QString before = shown_set();
    const bool there = refill_sets(SetID);
    form_->lst_CVs->select_keys(cvs, current);
    const Status_Line::One_Command one(*status_);
    if (!there && SetID != 0) say_set_gone(before);
    if (scripts::AktScripts().States_Left_Out() == left_out)
        say_trouble(); // what stands there holds
    else
        say_outcome({});
}

void Frm_Main::unload() {
    if (std::exchange(unloaded_, true)) return;
    if (const auto trouble = app::shut_down(*this, disk_))
        say_and_log(text(Text::settings_not_saved), QString::fromUtf8(trouble->what()));
}

void Frm_Main::closeEvent(QCloseEvent* event) {
    unload();
    event->accept();
}

} // namespace ui_main
