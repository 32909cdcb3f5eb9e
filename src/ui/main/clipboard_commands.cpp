#include "ui/main/clipboard_commands.h"

#include "app/mod_main.h"
#include "store/clipboard_texts.h"
#include "store/pasting.h"
#include "ui/main/cv_panel.h"
#include "ui/main/library_view.h"
#include "ui/main/main_form.h"
#include "ui/main/menus.h"
#include "ui/main/texts.h"
#include "ui/parts/trouble_texts.h"

#include <algorithm>

namespace ui_main {
namespace {

QString with_left_out_cvs(const QString& sentence, const store::cls_CV_Set& set) {
    QStringList parts{sentence};
    append_count(parts, Text::project_left_out_cvs, set.CVs_Left_Out);
    return parts.join(u' ');
}

QString sentence_on(const store::Pasted& pasted, const store::Paste_Report& report) {
    QStringList parts;
    if (report.sets > 0)
        parts.append(text(Text::sets_pasted).arg(report.sets).arg(report.cvs));
    else
        parts.append(text(Text::cvs_pasted).arg(report.cvs));
    append_count(parts, Text::cvs_without_set, report.cvs_without_set);
    append_count(parts, Text::names_cut, report.names_cut);
    if (pasted.lines_skipped > 0) {
        parts.append(
            text(Text::lines_skipped).arg(pasted.lines_skipped).arg(pasted.objects_left_out));
    }
    return parts.join(u' ');
}

} // namespace

Clipboard_Commands::Clipboard_Commands(const Surroundings& at, Cv_Panel& cv_panel)
    : at_(at), cv_panel_(cv_panel) {
    const auto run = [this](void (Clipboard_Commands::*work)()) {
        return at_.messages.command([this, work] { (this->*work)(); });
    };
    at.menus.bring({
        {"mnu_cvset_copy", run(&Clipboard_Commands::copy_set)},
        {"mnu_cvset_paste", run(&Clipboard_Commands::paste_set)},
        {"mnu_cvset_export_txt", run(&Clipboard_Commands::copy_listing)},
        {"mnu_copy", run(&Clipboard_Commands::copy_cvs)},
        {"mnu_paste", run(&Clipboard_Commands::paste_cvs)},
    });
    const Entry_List* sets = at.form.lst_sets;
    const Entry_List* cvs = at.form.lst_CVs;
    connect(sets, &Entry_List::copy_pressed, this, run(&Clipboard_Commands::copy_set));
    connect(sets, &Entry_List::paste_pressed, this, run(&Clipboard_Commands::paste_set));
    connect(cvs, &Entry_List::copy_pressed, this, run(&Clipboard_Commands::copy_cvs));
    connect(cvs, &Entry_List::paste_pressed, this, run(&Clipboard_Commands::paste_cvs));
}

void Clipboard_Commands::put_on_clipboard(const desktop::Clipboard& content,
                                          const QString& sentence) {
    at_.messages.say(at_.desktop.Set_Clipboard_Text(content) ? sentence
                                                             : text(Text::clipboard_refused));
}

void Clipboard_Commands::copy_cvs() {
    std::vector<store::CVRec> cvs;
    int gone = 0;
    for (const int row : at_.form.lst_CVs->selected_rows()) {
        const store::CVRec cv = at_.database.DB_Get_CV(at_.form.lst_CVs->key(row));
        if (cv.CVID != 0)
            cvs.push_back(cv);
        else
            ++gone;
    }
    if (at_.messages.say_trouble()) return;
    if (cvs.empty() && gone == 0) {
        at_.messages.say(text(Text::nothing_selected_to_copy));
        return;
    }
    if (gone > 0) cv_panel_.leave_gone_cvs(gone);
    if (cvs.empty()) return;
    QString copied = text(Text::cvs_copied).arg(static_cast<int>(cvs.size()));
    if (const store::Blocked why = at_.database.opening().blocked; is_incomplete(why))
        copied += u' ' + text(Text::maybe_more).arg(ui_parts::reason(why, {}));
    put_on_clipboard({store::cvs_text(cvs), {}}, copied);
}

// A set without some of its CVs would look like a whole one wherever it is pasted.
bool Clipboard_Commands::refuse_incomplete_copy() {
    const store::Blocked why = at_.database.opening().blocked;
    if (is_incomplete(why))
        at_.messages.say(text(Text::nothing_copied) + u' ' + ui_parts::reason(why, {}));
    return is_incomplete(why);
}

const store::cls_CV_Set* Clipboard_Commands::load_selected_set() {
    const std::int32_t SetID = at_.view.selected_set();
    if (SetID == 0) {
        at_.messages.say_no_set();
        return nullptr;
    }
    if (refuse_incomplete_copy()) return nullptr;
    at_.database.Fill_Sets_in_SetObj(store::SetsObj());
    const QString key = QString::number(SetID);
    if (at_.messages.say_trouble()) return nullptr;
    if (store::SetsObj().contains(key)) return store::SetsObj().Item(key).get();
    at_.view.leave_gone_set();
    return nullptr;
}

void Clipboard_Commands::copy_set() {
    const store::cls_CV_Set* set = load_selected_set();
    if (set == nullptr) return;
    put_on_clipboard({store::set_text(*set, store::Names::plain),
                      store::set_text(*set, store::Names::percent_encoded)},
                     with_left_out_cvs(text(Text::set_copied).arg(at_.view.shown_set()), *set));
}

void Clipboard_Commands::copy_listing() {
    const store::cls_CV_Set* set = load_selected_set();
    if (set == nullptr) return;
    put_on_clipboard({store::listing_text(*set), {}},
                     with_left_out_cvs(text(Text::listing_copied).arg(at_.view.shown_set()), *set));
}

void Clipboard_Commands::paste_cvs() {
    const desktop::Clipboard content = at_.desktop.Get_Clipboard_Text();
    if (content.text.isEmpty()) {
        at_.messages.say(text(Text::clipboard_empty));
        return;
    }
    paste(store::parse_cvs(content.text));
}

void Clipboard_Commands::paste_set() {
    const desktop::Clipboard content = at_.desktop.Get_Clipboard_Text();
    if (content.text.isEmpty()) {
        at_.messages.say(text(Text::clipboard_empty));
        return;
    }
    paste(content.own.isEmpty() ? store::parse_sets(content.text, store::Names::plain)
                                : store::parse_sets(content.own, store::Names::percent_encoded));
}

void Clipboard_Commands::paste(const store::Pasted& pasted) {
    if (pasted.objects.empty() && pasted.lines_skipped == 0) {
        at_.messages.say(text(Text::nothing_to_paste));
        return;
    }
    const auto is_set = [](const auto& object) {
        return std::holds_alternative<store::Pasted_Set>(object);
    };
    if (std::ranges::any_of(pasted.objects, is_set) && !at_.gate.pass()) return;
    const store::Paste_Report report = store::paste(at_.database, pasted, app::globals.AktResCV);
    if (report.sets == 0 && at_.view.leave_gone_set()) return;
    if (report.sets > 0) {
        at_.view.refill_sets(report.last_set);
    } else {
        at_.view.Show_CVs(0);
    }
    // what was refused takes nothing from what is to be said of the rest
    if (!at_.messages.say_trouble() || report.kept) at_.messages.say(sentence_on(pasted, report));
}

} // namespace ui_main
