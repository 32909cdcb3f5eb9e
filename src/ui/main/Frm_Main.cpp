#include "ui/main/Frm_Main.h"

#include "app/mod_fileverwaltung.h"
#include "app/text_table.h"
#include "scripts/cls_script_coll.h"
#include "store/backups.h"
#include "ui/main/UC_Scripte.h"
#include "ui/main/main_form.h"
#include "ui/main/status_line.h"
#include "ui/main/texts.h"

#include <QCoreApplication>
#include <QMenu>
#include <QMenuBar>
#include <QScopedValueRollback>
#include <QScreen>
#include <QSignalBlocker>
#include <QStatusBar>
#include <QTimer>
#include <algorithm>

namespace ui_main {
namespace {

constexpr int first_height = 720; ///< of a window that nobody has sized yet, in pixels

} // namespace

Frm_Main::Frm_Main(desktop::Desktop& desktop, files::Disk& disk, store::clsDBConn& database)
    : desktop_(desktop), disk_(disk), database_(database), form_(new Main_Form(this)),
      cv_panel_(std::make_unique<Cv_Panel>(*form_, database, *this)),
      status_(new Status_Line(this)), write_protected_(new QLabel(this)),
      settings_lost_(new QLabel(this)), history_(database) {
    app::TextTable.fill();
    setObjectName(QStringLiteral("Frm_Main"));
    setCentralWidget(form_);
    status_->setObjectName(QStringLiteral("lab_status"));
    write_protected_->setObjectName(QStringLiteral("lab_schreibschutz"));
    write_protected_->setText(text(Text::write_protected));
    write_protected_->hide();
    settings_lost_->setObjectName(QStringLiteral("lab_einstellungen_verloren"));
    settings_lost_->setText(text(Text::settings_lost));
    settings_lost_->hide();
    statusBar()->setSizeGripEnabled(false);
    statusBar()->addWidget(status_, 1);
    statusBar()->addPermanentWidget(settings_lost_);
    statusBar()->addPermanentWidget(write_protected_);
    build_menus();
    wire();
    setFixedWidth(to_pixels(app::Twips{Main_Form::width_twips}));
    setMinimumHeight(to_pixels(app::Twips{Main_Form::least_height_twips}));
    resize(width(), first_height);
    move(screen()->availableGeometry().center() - rect().center()); // until settings say otherwise
    show_title();
}

Frm_Main::~Frm_Main() { database_.keep_copies(nullptr); }

void Frm_Main::wire() {
    Entry_List* sets = form_->lst_sets;
    connect(sets, &Entry_List::selection_changed, this, command(&Frm_Main::set_chosen));
    connect(sets, &Entry_List::delete_pressed, this, command(&Frm_Main::delete_set_at_once));
    connect(sets, &QListView::doubleClicked, this, command(&Frm_Main::rename_set));
    connect(sets, &Entry_List::context_menu_wanted, this,
            [this](const QPoint& place) { mnu_cv_set_->popup(place); });
    connect(sets, &Entry_List::copy_pressed, this, command(&Frm_Main::copy_set));
    connect(sets, &Entry_List::paste_pressed, this, command(&Frm_Main::paste_set));
    connect(form_->lst_CVs, &Entry_List::copy_pressed, this, command(&Frm_Main::copy_cvs));
    connect(form_->lst_CVs, &Entry_List::paste_pressed, this, command(&Frm_Main::paste_cvs));
    connect(form_->lst_CVs, &Entry_List::context_menu_wanted, this,
            [this](const QPoint& place) { mnu_copymenu_->popup(place); });
    for (int i = 0; i < 2; ++i) {
        const auto index = static_cast<std::size_t>(i);
        connect(form_->opt_rescv[index], &QRadioButton::toggled, this, [this, i](bool chosen) {
            if (!chosen) return;
            choose_reset_cv(i);
            say_of_choice();
        });
        connect(form_->opt_dec[index], &QRadioButton::toggled, this, [this, i](bool chosen) {
            if (!chosen) return;
            choose_decoder_family(i);
            if (i == 1) say_of_choice(); // the list was filled anew
        });
    }
}

std::function<void()> Frm_Main::command(void (Frm_Main::*run)()) {
    return [this, run] {
        const Status_Line::One_Command one(*status_);
        (this->*run)();
    };
}

void Frm_Main::load() {
    const Status_Line::One_Command one(*status_);
    app::start_up(*this, desktop_, disk_);
}

void Frm_Main::end_program() {
    close();
    QCoreApplication::quit();
}

// Sets

void Frm_Main::fill_sets() {
    form_->lst_sets->refill([this](store::List_Filler& list) {
        if (!database_.Connection_Active()) return;
        database_.Fill_Sets_in_Listbox(list, app::globals.AktResCV);
    });
}

// What kept the set from being loaded is the caller's to say, among what else he has to say.
void Frm_Main::select_set(std::int32_t SetID) {
    {
        const QSignalBlocker quiet(form_->lst_sets);
        if (const auto row = form_->lst_sets->row_of(SetID)) form_->lst_sets->select_row(*row);
    }
    set_selected();
}

// Where the set is gone, the one that was next to the selection is chosen, or the first.
bool Frm_Main::refill_sets(std::int32_t SetID) {
    Entry_List& sets = *form_->lst_sets;
    const std::vector<std::int32_t> around = sets.keys_around(sets.current_row());
    fill_sets();
    const auto is_there = [&](std::int32_t key) { return sets.row_of(key).has_value(); };
    const bool found = is_there(SetID);
    const auto next = found ? around.end() : std::find_if(around.begin(), around.end(), is_there);
    select_set(found ? SetID : next != around.end() ? *next : sets.key(0));
    return found;
}

void Frm_Main::select_first_set() { select_set(form_->lst_sets->key(0)); }

void Frm_Main::Refresh_Sets() {
    fill_sets();
    select_first_set();
    show_title();
}

void Frm_Main::set_selected() {
    const std::int32_t SetID = form_->lst_sets->selected_key();
    if (SetID != 0) {
        Show_CVs(SetID);
        database_.DB_Load_Scripts();
    } else {
        database_.AktCVSetID(0);
        form_->lst_CVs->refill([](store::List_Filler&) {});
        form_->lab_Anz_CVs->setText(QString::number(0));
        scripts::AktScripts().Clear();
    }
    Redraw_Script_List();
    show_hints();
}

void Frm_Main::set_chosen() {
    set_selected();
    say_of_choice();
    // the list is still working on the key or click, and must not be filled anew under it
    const std::int32_t SetID = form_->lst_sets->selected_key();
    if (SetID != 0 && database_.set_gone(SetID))
        QTimer::singleShot(0, this, [this] { leave_gone_set(); });
}

void Frm_Main::Show_CVs(std::int32_t SetID) {
    std::int16_t count = 0;
    form_->lst_CVs->refill(
        [&](store::List_Filler& list) { count = database_.Fill_CVs_in_Listbox(list, SetID); });
    form_->lab_Anz_CVs->setText(QString::number(count));
}

void Frm_Main::Redraw_Script_List() {
    if (redrawing_scripts_) return;
    const QScopedValueRollback guard(redrawing_scripts_, true);
    form_->UC_Scripte1->refill();
}

// Options

// A view without sets leaves the count of the one before.
void Frm_Main::choose_reset_cv(int index) {
    const QString count = form_->lab_Anz_CVs->text();
    app::globals.AktResCV = index == 0 ? 8 : 265;
    fill_sets();
    select_first_set();
    if (form_->lst_sets->count() == 0) form_->lab_Anz_CVs->setText(count);
}

void Frm_Main::Show_Page_Fields(bool visible) { form_->Show_Page_Fields(visible); }

void Frm_Main::choose_decoder_family(int index) {
    family_ = index;
    if (index == 1) {
        const QSignalBlocker blocker(form_->opt_rescv[0]);
        form_->opt_rescv[0]->setChecked(true);
        choose_reset_cv(0); // also when it was chosen already
        for (Number_Field* page : form_->txt_cv_page) page->set_number(0);
        form_->txt_cv_page[1]->set_number(1);
    }
    Show_Page_Fields(index == 0);
    form_->Frame_Reset->setVisible(index == 0);
    show_hints();
    enable_commands();
}

// Window

void Frm_Main::show_title() {
    const bool open = database_.Connection_Active();
    const store::Opening opening = database_.opening();
    const store::Blocked blocked = opening.blocked;
    QString title =
        open ? text(Text::title_open).arg(app::current_database()) : text(Text::title_closed);
    if (blocked == store::Blocked::damaged) title += text(Text::title_damaged);
    if (is_incomplete(blocked)) title += text(Text::title_incomplete);
    setWindowTitle(title.replace(u"[*]"_qs, u"[*][*]"_qs)); // else the mark of a changed document
    write_protected_->setVisible(blocked != store::Blocked::no);
    write_protected_->setToolTip(reason(blocked, opening.journal_owner));
}

void Frm_Main::close_other_windows() {}

void Frm_Main::Connection_Close() { database_.Connection_Close(); }

void Frm_Main::say(const QString& sentence) { status_->say(sentence); }

bool Frm_Main::say_trouble() {
    say_missing_copy();
    const std::optional<store::Trouble> trouble = database_.take_trouble();
    if (!trouble) return false;
    if (trouble->kind == store::Failure::replaced && !database_.Connection_Active()) {
        Refresh_Sets(); // the library is closed: nothing of it stays in view
    }
    show_title(); // damage is met late, too
    say_and_log(sentence(*trouble), *trouble);
    return true;
}

// A change without a copy is a change all the same, so this keeps nobody from saying more.
void Frm_Main::say_missing_copy() {
    if (const std::optional<store::Trouble> trouble = backups().take_trouble())
        say_and_log(text(Text::backup_failed).arg(sentence(*trouble)), *trouble);
}

QString Frm_Main::with_left_out(const QString& sentence) {
    QStringList parts{sentence};
    parts.removeAll({});
    append_count(parts, Text::script_states_left_out, scripts::AktScripts().States_Left_Out());
    return parts.join(u' ');
}

void Frm_Main::say_outcome(const QString& done) {
    const Status_Line::One_Command one(*status_);
    const QString sentence = with_left_out(done);
    if (!sentence.isEmpty()) say(sentence);
    say_trouble();
}

// What was said before may be about the set that was left.
void Frm_Main::say_of_choice() {
    status_->forget();
    say_outcome({});
}

bool Frm_Main::expect_library() {
    const bool there = database_.expect_library();
    if (!there) say_trouble();
    return there;
}

void Frm_Main::say_no_set() {
    if (expect_library()) say(text(Text::no_set_selected));
}

void Frm_Main::say_and_log(const QString& sentence, const store::Trouble& reason) {
    say_and_log(sentence, reason.subject + u": "_qs + reason.detail);
}

void Frm_Main::say_and_log(const QString& sentence, const QString& reason) {
    const Status_Line::One_Command one(*status_);
    say(sentence);
    const bool kept =
        log().write(reason.isEmpty() ? sentence : sentence + u" ["_qs + reason + u']');
    if (!kept && settings_lost_->isHidden()) {
        settings_lost_->setToolTip(text(Text::log_lost).arg(app::globals.UserDataDir));
        say(settings_lost_->toolTip());
    }
    settings_lost_->setHidden(kept);
}

app::Diagnostic_Log Frm_Main::log() {
    return app::Diagnostic_Log(disk_, app::globals.UserDataDir + u"CV-Sets.log"_qs);
}

} // namespace ui_main
