#include "ui/main/set_commands.h"

#include "app/mod_main.h"
#include "store/clsDBConn.h"
#include "store/collection.h"
#include "ui/main/frm_get_2_string.h"
#include "ui/main/library_view.h"
#include "ui/main/main_form.h"
#include "ui/main/menus.h"
#include "ui/main/texts.h"

namespace ui_main {

Set_Commands::Set_Commands(const Surroundings& at) : at_(at) {
    const auto run = [this](void (Set_Commands::*work)()) {
        return at_.messages.command([this, work] { (this->*work)(); });
    };
    at.menus.bring({
        {"mnu_cvset_hinzu", run(&Set_Commands::add_set)},
        {"mnu_cvset_rename", run(&Set_Commands::rename_set)},
        {"mnu_cvset_del", run(&Set_Commands::delete_set)},
    });
    const Entry_List* sets = at.form.lst_sets;
    connect(sets, &Entry_List::delete_pressed, this, run(&Set_Commands::delete_set_at_once));
    connect(sets, &QListView::doubleClicked, this, run(&Set_Commands::rename_set));
}

// A cut name is the user's text changed: that is said where he looks next, too.
QString Set_Commands::with_cut(const QString& sentence, const frm_get_2_string& dialog) const {
    if (!dialog.name_was_cut()) return sentence;
    return sentence + u' ' + text(Text::name_cut).arg(at_.database.set_name_width());
}

void Set_Commands::add_set() {
    if (!at_.messages.expect_library()) return;
    const int name_width = at_.database.set_name_width();
    if (name_width == 0) { // the library cannot be read now
        at_.messages.say_trouble();
        return;
    }
    frm_get_2_string dialog(&at_.window, name_width);
    dialog.set_texts(text(Text::new_set), {}, {});
    const Two_Strings given = dialog.Get_2_Strings();
    if (given.first.isEmpty() || !at_.gate.pass()) return;
    std::int16_t number = store::to_16_bits(ui_parts::leading_number(given.second));
    const std::int32_t SetID =
        at_.database.DB_Add_CVSet(given.first, number, app::globals.AktResCV);
    if (SetID == 0) {
        at_.messages.say_trouble();
        return;
    }
    at_.view.refill_sets(SetID);
    at_.view.say_outcome(with_cut(text(Text::set_added).arg(at_.view.shown_set()), dialog));
}

void Set_Commands::rename_set() {
    const std::int32_t SetID = at_.view.selected_set();
    if (SetID == 0) {
        at_.messages.say_no_set();
        return;
    }
    const int name_width = at_.database.set_name_width();
    if (name_width == 0) {
        at_.messages.say_trouble();
        return;
    }
    if (at_.view.leave_gone_set()) return;
    frm_get_2_string dialog(&at_.window, name_width);
    const QString shown = at_.view.shown_set();
    const QString name = at_.database.Get_Set_Name(SetID);
    const std::int32_t number = at_.database.number_of_set(SetID);
    dialog.set_texts(text(Text::rename_set), name, number);
    const Two_Strings given = dialog.Get_2_Strings();
    if (given.first.isEmpty()) return;
    const int wanted = ui_parts::leading_number(given.second);
    at_.database.AktCVSetID(SetID); // the lists may have been filled anew behind the dialog
    const bool renamed = at_.database.DB_Rename_CVSet(
        given.first, wanted == number ? std::int16_t{0} : store::to_16_bits(wanted));
    if (!renamed && at_.view.leave_gone_set(SetID, shown)) return;
    at_.view.refill_sets(SetID);
    at_.view.say_outcome(
        renamed ? with_cut(text(Text::set_renamed).arg(at_.view.shown_set()), dialog) : QString());
}

void Set_Commands::delete_set() {
    const std::int32_t SetID = at_.view.selected_set();
    if (SetID == 0) {
        at_.messages.say_no_set();
        return;
    }
    const QString shown = at_.view.shown_set();
    if (at_.desktop.ask_yes_no(text(Text::attention), text(Text::ask_delete_set)))
        delete_shown_set(SetID, shown);
}

void Set_Commands::delete_set_at_once() {
    const std::int32_t SetID = at_.view.selected_set();
    if (SetID != 0)
        Delete_Set(SetID);
    else
        at_.messages.say_no_set();
}

void Set_Commands::Delete_Set(std::int32_t SetID) { delete_shown_set(SetID, at_.view.shown_set()); }

void Set_Commands::delete_shown_set(std::int32_t SetID, const QString& shown) {
    if (!at_.gate.pass()) return;
    if (!at_.database.DB_Del_CVSet(SetID)) {
        if (!at_.view.leave_gone_set(SetID, shown)) at_.messages.say_trouble();
        return;
    }
    at_.view.refill_with_first();
    at_.view.say_outcome(text(Text::set_deleted).arg(shown));
}

} // namespace ui_main
