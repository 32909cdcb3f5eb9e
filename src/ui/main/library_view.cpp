#include "ui/main/library_view.h"

#include "app/mod_main.h"
#include "scripts/cls_script_coll.h"
#include "scripts/ui/UC_Scripte.h"
#include "store/active_scripts.h"
#include "ui/main/main_form.h"
#include "ui/main/texts.h"
#include "ui/parts/trouble_texts.h"

#include <QScopedValueRollback>
#include <QSignalBlocker>
#include <QTimer>
#include <algorithm>

namespace ui_main {
namespace {

// Chooses a button without anybody being told.
void check_quietly(const std::array<QRadioButton*, 2>& pair, std::size_t which) {
    const QSignalBlocker first(pair[0]);
    const QSignalBlocker second(pair[1]);
    pair[which]->setChecked(true);
}

} // namespace

Library_View::Library_View(Main_Form& form, store::clsDBConn& database, Messages& messages,
                           app::Leaving_Gate& gate)
    : form_(form), database_(database), messages_(messages), gate_(gate) {
    wire();
}

void Library_View::wire() {
    const auto said_at_once = [this](void (Library_View::*run)()) {
        return messages_.command([this, run] { (this->*run)(); });
    };
    connect(form_.lst_sets, &Entry_List::selection_changed, this,
            said_at_once(&Library_View::user_selected));
    for (const int i : {0, 1}) {
        const auto index = static_cast<std::size_t>(i);
        connect(form_.opt_rescv[index], &QRadioButton::toggled, this, [this, i](bool chosen) {
            if (chosen) user_chose_view(i);
        });
        connect(form_.opt_dec[index], &QRadioButton::toggled, this, [this, i](bool chosen) {
            if (chosen) user_chose_family(i);
        });
    }
}

// Sets

void Library_View::fill_sets() {
    form_.lst_sets->refill([this](store::List_Filler& list) {
        if (!database_.Connection_Active()) return;
        database_.Fill_Sets_in_Listbox(list, app::globals.AktResCV);
    });
}

// What kept the set from being loaded is the caller's to say, among what else he has to say.
void Library_View::select_set(std::int32_t SetID) {
    mark(SetID);
    show_selected();
}

void Library_View::mark(std::int32_t SetID) {
    const QSignalBlocker quiet(form_.lst_sets);
    if (const auto row = form_.lst_sets->row_of(SetID)) form_.lst_sets->select_row(*row);
}

// Where the set is gone, the one that was next to the selection is chosen, or the first.
bool Library_View::refill_sets(std::int32_t SetID) {
    Entry_List& sets = *form_.lst_sets;
    const std::vector<std::int32_t> around = sets.keys_around(sets.current_row());
    fill_sets();
    const auto is_there = [&](std::int32_t key) { return sets.row_of(key).has_value(); };
    const bool found = is_there(SetID);
    const auto next = found ? around.end() : std::find_if(around.begin(), around.end(), is_there);
    select_set(found ? SetID : next != around.end() ? *next : sets.key(0));
    return found;
}

void Library_View::refill_with_first() {
    fill_sets();
    select_set(form_.lst_sets->key(0));
}

void Library_View::Refresh_Sets() {
    refill_with_first();
    Q_EMIT refreshed();
}

void Library_View::show_set(std::int32_t SetID) {
    const std::int16_t reset_cv = database_.reset_cv(SetID);
    const std::size_t view = reset_cv == 265 ? 1 : 0;
    if ((reset_cv == 8 || reset_cv == 265) && (family_ == 0 || view == 0)) {
        check_quietly(form_.opt_rescv, view);
        app::globals.AktResCV = reset_cv;
    }
    refill_sets(SetID);
}

std::int32_t Library_View::selected_set() const { return form_.lst_sets->selected_key(); }

QString Library_View::shown_set() const {
    return ui_parts::shortened(form_.lst_sets->currentIndex().data().toString());
}

void Library_View::show_selected() {
    set_ = selected_set();
    if (set_ != 0) {
        fill_cvs(set_);
        database_.DB_Load_Scripts();
    } else {
        database_.AktCVSetID(0);
        form_.lst_CVs->refill([](store::List_Filler&) {});
        form_.lab_Anz_CVs->setText(QString::number(0));
        scripts::AktScripts().Clear();
    }
    Redraw_Script_List();
    show_hints();
    Q_EMIT shown();
}

// The list is still working on the key or click: it must be neither filled anew under it nor kept
// waiting for an answer.
void Library_View::user_selected() {
    if (gate_.somebody_may_stay()) {
        QTimer::singleShot(0, this, messages_.command([this] { leave_for_selected(); }));
        return;
    }
    show_selected();
    say_of_choice();
    if (set_ != 0 && database_.set_gone(set_))
        QTimer::singleShot(0, this, [this] { leave_gone_set(); });
}

void Library_View::leave_for_selected() {
    const std::int32_t chosen = selected_set();
    if (chosen == set_) return;
    if (!gate_.pass()) {
        mark(set_);
        return;
    }
    select_set(chosen);
    say_of_choice();
    if (set_ != 0) leave_gone_set();
}

void Library_View::Show_CVs(std::int32_t SetID) {
    fill_cvs(SetID);
    show_active_scripts();
}

void Library_View::fill_cvs(std::int32_t SetID) {
    std::int16_t count = 0;
    form_.lst_CVs->refill(
        [&](store::List_Filler& list) { count = database_.Fill_CVs_in_Listbox(list, SetID); });
    form_.lab_Anz_CVs->setText(QString::number(count));
}

void Library_View::Redraw_Script_List() {
    if (redrawing_scripts_) return;
    const QScopedValueRollback guard(redrawing_scripts_, true);
    form_.UC_Scripte1->refill(store::active_scripts(database_), database_.script_name_width());
    Q_EMIT scripts_shown();
}

void Library_View::show_active_scripts() {
    form_.UC_Scripte1->show_active(store::active_scripts(database_));
}

// Sets that others have changed or deleted

void Library_View::say_set_gone(const QString& shown) {
    QString said = text(Text::set_gone).arg(shown);
    if (form_.lst_sets->count() > 0) said += u' ' + text(Text::set_chosen_now).arg(shown_set());
    messages_.say(said);
}

bool Library_View::leave_gone_set(std::int32_t SetID, const QString& shown) {
    if (SetID == 0 || !database_.set_gone(SetID)) return false;
    const auto one = messages_.one_command();
    gate_.pass_at_once();     // nothing can be stored in it any more
    database_.take_trouble(); // it is told here, by the name of the set
    refill_sets(SetID);
    say_set_gone(shown);
    return true;
}

bool Library_View::leave_gone_set() { return leave_gone_set(selected_set(), shown_set()); }

void Library_View::note_state() { shown_state_ = database_.foreign_changes().value_or(0); }

// Another running copy of the program may have changed the library while the window was behind.
void Library_View::refill_if_changed() {
    if (!database_.Connection_Active()) return;
    const std::optional<std::uint64_t> now = database_.foreign_changes();
    if (!now) {
        messages_.say_trouble();
        return;
    }
    if (std::exchange(shown_state_, *now) == *now || !database_.is_library()) return;
    const std::int32_t left_out = scripts::AktScripts().States_Left_Out();
    const std::int32_t SetID = selected_set();
    const std::vector<std::int32_t> cvs = form_.lst_CVs->selected_keys();
    const std::int32_t current = form_.lst_CVs->key(form_.lst_CVs->current_row());
    const QString before = shown_set();
    const auto one = messages_.one_command();
    if (SetID != 0 && database_.set_gone(SetID)) gate_.pass_at_once();
    const bool there = refill_sets(SetID);
    form_.lst_CVs->select_keys(cvs, current);
    if (!there && SetID != 0) say_set_gone(before);
    if (scripts::AktScripts().States_Left_Out() == left_out)
        messages_.say_trouble(); // what stands there holds
    else
        say_outcome({});
}

// Options

void Library_View::user_chose_view(int index) {
    if (!gate_.pass()) {
        check_quietly(form_.opt_rescv, index == 0 ? 1 : 0);
        return;
    }
    choose_reset_cv(index);
    say_of_choice();
}

// Only the choice of QD leaves the set: it has one view.
void Library_View::user_chose_family(int index) {
    if (index == 1 && !gate_.pass()) {
        check_quietly(form_.opt_dec, 0);
        return;
    }
    choose_decoder_family(index);
    if (index == 1) say_of_choice();
}

// A view without sets leaves the count of the one before.
void Library_View::choose_reset_cv(int index) {
    const QString count = form_.lab_Anz_CVs->text();
    app::globals.AktResCV = index == 0 ? 8 : 265;
    refill_with_first();
    if (form_.lst_sets->count() == 0) form_.lab_Anz_CVs->setText(count);
}

void Library_View::choose_decoder_family(int index) {
    family_ = index;
    if (index == 1) {
        check_quietly(form_.opt_rescv, 0);
        choose_reset_cv(0); // also when it was chosen already
        for (auto* page : form_.txt_cv_page) page->set_number(0);
        form_.txt_cv_page[1]->set_number(1);
    }
    Show_Page_Fields(index == 0);
    form_.Frame_Reset->setVisible(index == 0);
    show_hints();
    Q_EMIT family_chosen(index);
}

void Library_View::Show_Page_Fields(bool visible) { form_.Show_Page_Fields(visible); }

// What is said

QString Library_View::with_left_out(const QString& sentence) {
    QStringList parts{sentence};
    parts.removeAll({});
    append_count(parts, Text::script_states_left_out, scripts::AktScripts().States_Left_Out());
    return parts.join(u' ');
}

void Library_View::say_outcome(const QString& done) {
    const auto one = messages_.one_command();
    const QString sentence = with_left_out(done);
    if (!sentence.isEmpty()) messages_.say(sentence);
    messages_.say_trouble();
}

void Library_View::say_of_choice() {
    messages_.forget();
    say_outcome({});
}

} // namespace ui_main
