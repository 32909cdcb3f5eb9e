// What empty lists say: what to do first, as far as it can be done.

#include "scripts/ui/UC_Scripte.h"
#include "ui/main/library_view.h"
#include "ui/main/main_form.h"
#include "ui/main/texts.h"

namespace ui_main {

void Library_View::show_hints() {
    const bool chosen = form_.lst_sets->selected_key() != 0;
    const bool sets_there = form_.lst_sets->count() > 0;
    Text cvs = sets_there ? Text::hint_choose_set : Text::hint_cvs;
    if (chosen) cvs = database_.writable() ? Text::hint_no_cvs : Text::hint_no_cvs_here;
    Text scripts = chosen ? Text::hint_no_scripts : Text::hint_scripts;
    const store::Blocked why = database_.opening().blocked;
    if (chosen && store::is_doubtful(why)) {
        cvs = Text::hint_cvs_unreadable;
        if (why != store::Blocked::no_cvs) scripts = Text::hint_scripts_unreadable;
    }
    form_.sets_hint->set_text(sets_there ? QString() : text(hint_for_sets()));
    form_.cvs_hint->set_text(text(cvs));
    form_.UC_Scripte1->set_hint(text(scripts));
}

// That nothing was found in a damaged library, or in one without its end, does not prove that
// nothing was there.
bool Library_View::sets_unreadable() {
    const store::Blocked why = database_.opening().blocked;
    return (why == store::Blocked::damaged || why == store::Blocked::cut_off) &&
           database_.Get_Anz_CVSets() == 0;
}

Text Library_View::hint_for_sets() {
    if (!database_.Connection_Active()) return Text::hint_no_database;
    if (sets_unreadable() || database_.opening().lost_end.sets) return Text::hint_sets_unreadable;
    if (!database_.is_library()) return Text::hint_no_sets_here;
    const bool in_other_view = database_.Get_Anz_CVSets() > database_.sets_in_no_view();
    if (in_other_view && family_ == 1) return Text::hint_other_family;
    if (in_other_view)
        return database_.writable() ? Text::hint_other_view : Text::hint_other_view_only;
    return database_.writable() ? Text::hint_no_sets : Text::hint_no_sets_here;
}

} // namespace ui_main
