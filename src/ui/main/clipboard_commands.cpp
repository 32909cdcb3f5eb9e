#include "app/mod_main.h"
#include "store/clipboard_texts.h"
#include "store/pasting.h"
#include "ui/main/Frm_Main.h"
#include "ui/main/main_form.h"
#include "ui/main/texts.h"

namespace ui_main {
namespace {

QString with_left_out_cvs(const QString& sentence, const store::cls_CV_Set& set) {
    QStringList parts{sentence};
    append_count(parts, Text::project_left_out_cvs, set.CVs_Left_Out);
    return parts.join(u' ');
}

} // namespace

void Frm_Main::put_on_clipboard(const desktop::Clipboard& content, const QString& sentence) {
    say(desktop_.Set_Clipboard_Text(content) ? sentence : text(Text::clipboard_refused));
}

void Frm_Main::copy_cvs() {
    std::vector<store::CVRec> cvs;
    int gone = 0;
    for (const int row : form_->lst_CVs->selected_rows()) {
        const store::CVRec cv = database_.DB_Get_CV(form_->lst_CVs->key(row));
        if (cv.CVID != 0)
            cvs.push_back(cv);
        else
            ++gone;
    }
    if (say_trouble()) return;
    if (cvs.empty() && gone == 0) {
        say(text(Text::nothing_selected_to_copy));
        return;
    }
    if (gone > 0) cv_panel_->leave_gone_cvs(gone);
    if (cvs.empty()) return;
    QString copied = text(Text::cvs_copied).arg(static_cast<int>(cvs.size()));
    if (const store::Blocked why = database_.opening().blocked; is_incomplete(why))
        copied += u' ' + text(Text::maybe_more).arg(reason(why, {}));
    put_on_clipboard({store::cvs_text(cvs), {}}, copied);
}

// A set without some of its CVs would look like a whole one wherever it is pasted.
bool Frm_Main::refuse_incomplete_copy() {
    const store::Blocked why = database_.opening().blocked;
    if (is_incomplete(why)) say(text(Text::nothing_copied) + u' ' + reason(why, {}));
    return is_incomplete(why);
}

const store::cls_CV_Set* Frm_Main::load_selected_set() {
    const std::int32_t SetID = form_->lst_sets->selected_key();
    if (SetID == 0) {
        say_no_set();
        return nullptr;
    }
    if (refuse_incomplete_copy()) return nullptr;
    database_.Fill_Sets_in_SetObj(store::SetsObj());
    const QString key = QString::number(SetID);
    if (say_trouble()) return nullptr;
    if (store::SetsObj().contains(key)) return store::SetsObj().Item(key).get();
    leave_gone_set();
    return nullptr;
}

void Frm_Main::copy_set() {
    const store::cls_CV_Set* set = load_selected_set();
    if (set == nullptr) return;
    put_on_clipboard({store::set_text(*set, store::Names::plain),
                      store::set_text(*set, store::Names::percent_encoded)},
                     with_left_out_cvs(text(Text::set_copied).arg(shown_set()), *set));
}

void Frm_Main::copy_listing() {
    const store::cls_CV_Set* set = load_selected_set();
    if (set == nullptr) return;
    put_on_clipboard({store::listing_text(*set), {}},
                     with_left_out_cvs(text(Text::listing_copied).arg(shown_set()), *set));
}

void Frm_Main::paste_cvs() {
    const desktop::Clipboard content = desktop_.Get_Clipboard_Text();
    if (content.text.isEmpty()) {
        say(text(Text::clipboard_empty));
        return;
    }
    paste(store::parse_cvs(content.text));
}

void Frm_Main::paste_set() {
    const desktop::Clipboard content = desktop_.Get_Clipboard_Text();
    if (content.text.isEmpty()) {
        say(text(Text::clipboard_empty));
        return;
    }
    paste(content.own.isEmpty() ? store::parse_sets(content.text, store::Names::plain)
                                : store::parse_sets(content.own, store::Names::percent_encoded));
}

void Frm_Main::paste(const store::Pasted& pasted) {
    if (pasted.objects.empty() && pasted.lines_skipped == 0) {
        say(text(Text::nothing_to_paste));
        return;
    }
    const store::Paste_Report report = store::paste(database_, pasted, app::globals.AktResCV);
    if (report.sets == 0 && leave_gone_set()) return;
    if (report.sets > 0) {
        refill_sets(report.last_set);
    } else {
        Show_CVs(0);
    }
    // what was refused takes nothing from what is to be said of the rest
    if (!say_trouble() || report.kept) say(sentence_on(pasted, report));
}

QString Frm_Main::sentence_on(const store::Pasted& pasted, const store::Paste_Report& report) {
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

} // namespace ui_main
