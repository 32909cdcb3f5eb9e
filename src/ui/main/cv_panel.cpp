#include "ui/main/cv_panel.h"

#include "ui/main/library_view.h"
#include "ui/main/main_form.h"
#include "ui/main/texts.h"

#include <QKeyEvent>
#include <algorithm>

namespace ui_main {
namespace {

constexpr int largest_number = 32767; ///< of a CV number or value in the records
constexpr int largest_byte = 255;
constexpr int last_cv = 1024;

} // namespace

Cv_Panel::Cv_Panel(Main_Form& form, store::clsDBConn& database, Library_View& view,
                   Messages& messages)
    : form_(form), database_(database), view_(view), messages_(messages) {
    const auto enter_leads = [this](ui_parts::Number_Field* from, ui_parts::Number_Field* to) {
        connect(from, &QLineEdit::returnPressed, to, &ui_parts::Number_Field::take_focus);
    };
    enter_leads(form.txt_cv_page[0], form.txt_cv_page[1]);
    enter_leads(form.txt_cv_page[1], form.txt_cv_nummer);
    enter_leads(form.txt_cv_nummer, form.txt_cv_wert);
    connect(form.txt_cv_wert, &QLineEdit::returnPressed, this, &Cv_Panel::Save_CV);
    form.txt_cv_wert->installEventFilter(this);
    connect(form.lst_CVs, &Entry_List::chosen, this, &Cv_Panel::chosen);
    connect(form.lst_CVs, &Entry_List::visited, this, &Cv_Panel::load_selected);
    connect(form.lst_CVs, &Entry_List::delete_pressed, this, &Cv_Panel::delete_selected);
}

std::optional<int> Cv_Panel::Find_CV_Index(std::int32_t CVID) const {
    return form_.lst_CVs->row_of(CVID);
}

void Cv_Panel::load_selected() {
    const std::int32_t key = form_.lst_CVs->selected_key();
    if (key == 0) return;
    const store::CVRec cv = database_.DB_Get_CV(key);
    if (cv.CVID == 0) { // the fields stay: no CV has the zeros of a row that is not there
        if (!messages_.say_trouble()) leave_gone_cvs(1);
        return;
    }
    form_.txt_cv_nummer->set_number(cv.CVNr);
    form_.txt_cv_wert->set_number(cv.CVWert);
    form_.txt_cv_page[0]->set_number(cv.CVPageHi);
    form_.txt_cv_page[1]->set_number(cv.CVPageLo);
}

// The neighbour of the one that the keyboard was at gets its place, and nothing is selected: what
// the fields show is none of those in the list.
void Cv_Panel::leave_gone_cvs(int count) {
    const auto one = messages_.one_command();
    if (view_.leave_gone_set()) return;
    Entry_List& list = *form_.lst_CVs;
    const std::vector<std::int32_t> around = list.keys_around(list.current_row());
    view_.Show_CVs(0);
    for (const std::int32_t key : around) {
        const auto row = list.row_of(key);
        if (row) list.go_to_row(*row);
        if (row) break;
    }
    messages_.say(text(Text::cvs_gone).arg(count));
    messages_.say_trouble();
}

void Cv_Panel::chosen() {
    load_selected();
    form_.txt_cv_wert->take_focus();
}

bool Cv_Panel::eventFilter(QObject* watched, QEvent* event) {
    const bool pressed = event->type() == QEvent::KeyPress;
    if (!pressed && event->type() != QEvent::KeyRelease)
        return QObject::eventFilter(watched, event);
    if (pressed && !is_plain(*static_cast<QKeyEvent*>(event)))
        return false; // Shift+Delete cuts text
    switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
        if (pressed) {
            go(static_cast<QKeyEvent*>(event)->key() == Qt::Key_Up ? -1 : 1);
        } else {
            form_.txt_cv_wert->selectAll();
        }
        return true;
    case Qt::Key_Delete:
        if (pressed) delete_selected();
        return true;
    default:
        return QObject::eventFilter(watched, event);
    }
}

// From the selected entry to its neighbour. With nothing selected, the entry that was written or
// selected last is where the walk begins.
void Cv_Panel::go(int step) {
    Entry_List& list = *form_.lst_CVs;
    const int from = list.current_row();
    const int to = list.is_selected(from) ? from + step : std::max(from, 0);
    if (to < 0 || to >= list.count()) return;
    list.select_row(to);
    load_selected();
    form_.txt_cv_wert->selectAll();
}

void Cv_Panel::delete_selected() {
    Entry_List& list = *form_.lst_CVs;
    const std::vector<int> rows = list.selected_rows();
    if (rows.empty()) {
        messages_.say(text(Text::no_cv_selected));
        return;
    }
    const auto one = messages_.one_command();
    store::Operation operation(database_);
    int deleted = 0;
    int gone = 0;
    for (const int row : rows) {
        if (database_.DB_Del_CVWert(list.key(row))) {
            ++deleted;
        } else if (const auto& why = database_.last_trouble();
                   why && why->kind == store::Failure::gone) {
            ++gone;
            database_.take_trouble(); // it is told below, by number
        }
    }
    const bool kept = operation.keep();
    if (gone > 0 && view_.leave_gone_set()) return;
    view_.Show_CVs(0);
    if (list.count() > 0) {
        list.select_row(std::min(rows.front(), list.count() - 1));
        load_selected();
    }
    form_.txt_cv_wert->selectAll();
    if (messages_.say_trouble() || !kept) return;
    if (deleted > 0) messages_.say(text(Text::cvs_deleted).arg(deleted));
    if (gone > 0) messages_.say(text(Text::cvs_gone).arg(gone));
}

bool Cv_Panel::fields_in_range() {
    if (form_.txt_cv_nummer->number() > largest_number ||
        form_.txt_cv_wert->number() > largest_number) {
        messages_.say(text(Text::number_beyond));
        return false;
    }
    if (form_.txt_cv_page[0]->number() > largest_byte ||
        form_.txt_cv_page[1]->number() > largest_byte) {
        messages_.say(text(Text::page_beyond));
        return false;
    }
    return true;
}

// The key under which a CV of this number is stored with the page that the fields show.
store::CVRec Cv_Panel::record(int number) const {
    store::CVRec made;
    made.CVNr = static_cast<std::int16_t>(number);
    made.CVPageLo = 1;
    if (!store::is_paged(number)) return made;
    const int hi = form_.txt_cv_page[0]->number();
    const int lo = form_.txt_cv_page[1]->number();
    if (hi == 0 && lo == 0) return made;
    made.CVPageHi = static_cast<std::uint8_t>(hi);
    made.CVPageLo = static_cast<std::uint8_t>(lo);
    return made;
}

void Cv_Panel::Save_CV() {
    const auto one = messages_.one_command();
    if (!fields_in_range()) {
        form_.txt_cv_wert->selectAll();
        return;
    }
    store::CVRec cv = record(form_.txt_cv_nummer->number());
    cv.CVWert = static_cast<std::int16_t>(form_.txt_cv_wert->number());
    if (cv.CVNr < 1 || cv.CVNr > last_cv) {
        messages_.say(text(Text::cv_number_beyond));
    } else if (cv.CVWert > largest_byte) {
        messages_.say(text(Text::cv_value_beyond));
    } else {
        store_record(cv);
    }
    advance();
    form_.txt_cv_wert->take_focus();
}

void Cv_Panel::store_record(store::CVRec cv) {
    const bool stored = database_.DB_Write_CV(cv);
    if (!stored && view_.leave_gone_set()) return;
    view_.Show_CVs(0);
    if (const auto row = Find_CV_Index(cv.CVID)) form_.lst_CVs->go_to_row(*row);
    if (!messages_.say_trouble() && stored) {
        messages_.say(text(Text::cv_stored).arg(cv.CVNr).arg(cv.CVWert));
    }
}

void Cv_Panel::advance() {
    const int next = form_.txt_cv_nummer->number() + 1;
    if (next > largest_number) return;
    form_.txt_cv_nummer->set_number(next);
    store::CVRec cv = record(next);
    if (!database_.DB_Find_CV(cv)) {
        form_.txt_cv_wert->set_number(0);
        return;
    }
    form_.txt_cv_wert->set_number(cv.CVWert);
    if (const auto row = Find_CV_Index(cv.CVID)) form_.lst_CVs->select_row(*row);
}

} // namespace ui_main
