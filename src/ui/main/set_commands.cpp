#include "app/mod_main.h"
#include "ui/main/Frm_Main.h"
#include "ui/main/frm_get_2_string.h"
#include "ui/main/main_form.h"
#include "ui/main/texts.h"

#include <algorithm>
#include <limits>

namespace ui_main {
namespace {

using Limits = std::numeric_limits<std::int16_t>;

std::int16_t to_16_bits(int number) {
    return static_cast<std::int16_t>(std::clamp<int>(number, Limits::min(), Limits::max()));
}

} // namespace

QString Frm_Main::shown_set() const {
    return shortened(form_->lst_sets->currentIndex().data().toString());
}

void Frm_Main::say_set_gone(const QString& set) {
    QString said = text(Text::set_gone).arg(set);
    if (form_->lst_sets->count() > 0) said += u' ' + text(Text::set_chosen_now).arg(shown_set());
    say(said);
}

bool Frm_Main::leave_gone_set(std::int32_t SetID, const QString& shown) {
    if (SetID == 0 || !database_.set_gone(SetID)) return false;
    database_.take_trouble(); // it is told here, by the name of the set
    refill_sets(SetID);
    say_set_gone(shown);
    return true;
}

bool Frm_Main::leave_gone_set() {
    return leave_gone_set(form_->lst_sets->selected_key(), shown_set());
}

// Get_Set_Nummer tells 16 bits; the list shows what is stored.
int Frm_Main::stored_number(std::int32_t SetID) {
    const std::int16_t told = database_.Get_Set_Nummer(SetID);
    const int listed = leading_number(shown_set());
    return to_16_bits(listed) == told ? listed : told;
}

// A cut name is the user's text changed: that is said where he looks next, too.
QString Frm_Main::with_cut(const QString& sentence, const frm_get_2_string& dialog) const {
    if (!dialog.name_was_cut()) return sentence;
    return sentence + u' ' + text(Text::name_cut).arg(database_.set_name_width());
}

void Frm_Main::add_set() {
    if (!expect_library()) return;
    const int name_width = database_.set_name_width();
    if (name_width == 0) { // the library cannot be read now
        say_trouble();
        return;
    }
    frm_get_2_string dialog(this, name_width);
    dialog.set_texts(text(Text::new_set), {}, {});
    const Two_Strings given = dialog.Get_2_Strings();
    if (given.first.isEmpty()) return;
    std::int16_t number = to_16_bits(leading_number(given.second));
    const std::int32_t SetID = database_.DB_Add_CVSet(given.first, number, app::globals.AktResCV);
    if (SetID == 0) {
        say_trouble();
        return;
    }
    refill_sets(SetID);
    say_outcome(with_cut(text(Text::set_added).arg(shown_set()), dialog));
}

void Frm_Main::rename_set() {
    const std::int32_t SetID = form_->lst_sets->selected_key();
    if (SetID == 0) {
        say_no_set();
        return;
    }
    const int name_width = database_.set_name_width();
    if (name_width == 0) {
        say_trouble();
        return;
    }
    if (leave_gone_set()) return;
    frm_get_2_string dialog(this, name_width);
    const QString shown = shown_set();
    const QString name = database_.Get_Set_Name(SetID);
    const int number = stored_number(SetID);
    dialog.set_texts(text(Text::rename_set), name, number);
    const Two_Strings given = dialog.Get_2_Strings();
    if (given.first.isEmpty()) return;
    const int wanted = leading_number(given.second);
    database_.AktCVSetID(SetID); // the lists may have been filled anew behind the dialog
    const bool renamed = database_.DB_Rename_CVSet(
        given.first, wanted == number ? std::int16_t{0} : to_16_bits(wanted));
    if (!renamed && leave_gone_set(SetID, shown)) return;
    refill_sets(SetID);
    say_outcome(renamed ? with_cut(text(Text::set_renamed).arg(shown_set()), dialog) : QString());
}

void Frm_Main::delete_set() {
    if (form_->lst_sets->selected_key() == 0) {
        say_no_set();
        return;
    }
    const std::int32_t SetID = form_->lst_sets->selected_key();
    const QString shown = shown_set();
    if (desktop_.ask_yes_no(text(Text::attention), text(Text::ask_delete_set)))
        delete_shown_set(SetID, shown);
}

void Frm_Main::delete_set_at_once() {
    const std::int32_t SetID = form_->lst_sets->selected_key();
    if (SetID != 0)
        Delete_Set(SetID);
    else
        say_no_set();
}

void Frm_Main::Delete_Set(std::int32_t SetID) { delete_shown_set(SetID, shown_set()); }

void Frm_Main::delete_shown_set(std::int32_t SetID, const QString& shown) {
    if (!database_.DB_Del_CVSet(SetID)) {
        if (!leave_gone_set(SetID, shown)) say_trouble();
        return;
    }
    fill_sets();
    select_first_set();
    say_outcome(text(Text::set_deleted).arg(shown));
}

} // namespace ui_main
