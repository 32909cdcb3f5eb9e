#include "ui/main/Frm_Main.h"

#include "app/mod_fileverwaltung.h"
#include "app/text_table.h"
#include "app/ui/frm_Settings.h"
#include "scripts/ui/UC_Scripte.h"
#include "ui/main/clipboard_commands.h"
#include "ui/main/compare_commands.h"
#include "ui/main/cv_panel.h"
#include "ui/main/export_commands.h"
#include "ui/main/file_commands.h"
#include "ui/main/history_commands.h"
#include "ui/main/kept_copies.h"
#include "ui/main/library_view.h"
#include "ui/main/link_commands.h"
#include "ui/main/main_form.h"
#include "ui/main/menus.h"
#include "ui/main/messages.h"
#include "ui/main/script_commands.h"
#include "ui/main/script_window.h"
#include "ui/main/set_commands.h"
#include "ui/main/texts.h"
#include "ui/parts/trouble_texts.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QMenu>
#include <QScreen>
#include <QStatusBar>
#include <QTimer>

namespace ui_main {
namespace {

constexpr int first_height = 720; ///< of a window that nobody has sized yet, in pixels

} // namespace

/// What the window is made of, in the order in which one needs the other.
struct Frm_Main::Inside {
    explicit Inside(Frm_Main& window)
        : menus(window, window.job_), copies(window.disk_, window.database_),
          messages(*window.status_, *window.settings_lost_, window.database_, copies, window.disk_),
          view(*window.form_, window.database_, messages, window.gate_),
          cv_panel(*window.form_, window.database_, view, messages),
          at{window, window.desktop_, window.disk_, window.database_, *window.form_,
             menus,  messages,        view,         copies,           window.gate_},
          center(window, window.desktop_, window.ports_, window.job_),
          script_window(at, window.make_cab_) {}

    Menus menus;
    Kept_Copies copies;
    Messages messages;
    Library_View view;
    Cv_Panel cv_panel;
    Surroundings at;
    link_ui::Link_Center center;
    Script_Window script_window;

    File_Commands files{at};
    Export_Commands exports{at};
    Set_Commands sets{at};
    Clipboard_Commands clipboard{at, cv_panel};
    History_Commands history{at, files};
    Compare_Commands compare{at};
    Script_Commands script_commands{at, cv_panel};
    Link_Commands link{at, center};
};

Frm_Main::Frm_Main(desktop::Desktop& desktop, files::Disk& disk, store::clsDBConn& database,
                   const link_ui::Link_Ports& ports, scripts_ui::Make_Cab make_cab)
    : desktop_(desktop), disk_(disk), database_(database), ports_(ports),
      make_cab_(std::move(make_cab)), form_(new Main_Form(this)),
      status_(new ui_parts::Status_Line(this)), write_protected_(new QLabel(this)),
      settings_lost_(new QLabel(this)) {
    app::TextTable.fill();
    setObjectName(QStringLiteral("Frm_Main"));
    setCentralWidget(form_);
    build_foot();
    inside_ = std::make_unique<Inside>(*this);
    bring_program_commands();
    wire();
    setFixedWidth(to_pixels(app::Twips{Main_Form::width_twips}));
    setMinimumHeight(to_pixels(app::Twips{Main_Form::least_height_twips}));
    resize(width(), first_height);
    move(screen()->availableGeometry().center() - rect().center()); // until settings say otherwise
    show_title();
}

Frm_Main::~Frm_Main() = default;

void Frm_Main::build_foot() {
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
}

void Frm_Main::bring_program_commands() {
    Messages& messages = inside_->messages;
    inside_->menus.bring({
        {.name = "mnu_einstellungen", .run = messages.command([this] { show_settings(); })},
        {.name = "mnu_datei_beenden",
         .run = messages.command([this] { end_program(); }),
         .during_job = true},
    });
}

void Frm_Main::show_settings() {
    link_ui::Link_Center& center = inside_->center;
    const auto search = [&center](QWidget& window) { center.show_ports(window); };
    app_ui::frm_Settings(this, desktop_, {center.existing_ports(), search}).exec();
}

void Frm_Main::wire() {
    const auto pop_up = [this](const char* menu) {
        return [this, menu](const QPoint& place) { inside_->menus.menu(menu).popup(place); };
    };
    connect(form_->lst_sets, &Entry_List::context_menu_wanted, this, pop_up("mnu_cv_set"));
    connect(form_->lst_CVs, &Entry_List::context_menu_wanted, this, pop_up("mnu_copymenu"));
    connect(&inside_->view, &Library_View::refreshed, this, &Frm_Main::show_title);
    connect(&inside_->view, &Library_View::family_chosen, this, [this](int index) {
        inside_->menus.choose_family(index == 0 ? Family::qr : Family::qd);
    });
    connect(&inside_->messages, &Messages::trouble_met, this, &Frm_Main::meet);
    connect(&job_, &app::Job_State::changed, this, &Frm_Main::follow_job);
}

// What the start and the end of the program, and tests, know the window to do

void Frm_Main::load() {
    const auto one = inside_->messages.one_command();
    app::start_up(*this, desktop_, disk_);
    QTimer::singleShot(0, this, [this] { // when the window is seen
        if (!unloaded_) inside_->script_window.offer_kept_scripts();
    });
}

void Frm_Main::Refresh_Sets() { inside_->view.Refresh_Sets(); }

void Frm_Main::Show_CVs(std::int32_t SetID) { inside_->view.Show_CVs(SetID); }

void Frm_Main::Open_Script(int position) { inside_->script_window.Open_Script(position); }

void Frm_Main::Delete_Set(std::int32_t SetID) { inside_->sets.Delete_Set(SetID); }

void Frm_Main::default_database_made() { inside_->files.default_database_made(); }

void Frm_Main::no_default_database(const files::Error& reason) {
    inside_->files.no_default_database(reason);
}

void Frm_Main::Open_Database() { inside_->files.Open_Database(); }

void Frm_Main::Redraw_Script_List() { inside_->view.Redraw_Script_List(); }

void Frm_Main::Fill_Last_Files_Menu() { inside_->files.Fill_Last_Files_Menu(); }

void Frm_Main::choose_decoder_family(int index) { inside_->view.choose_decoder_family(index); }

// What the window shows of the library as a whole

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
    write_protected_->setToolTip(ui_parts::reason(opening));
}

void Frm_Main::meet(const store::Trouble& trouble) {
    const auto one = inside_->messages.one_command();
    if (trouble.kind == store::Failure::replaced && !database_.Connection_Active()) {
        gate_.pass_at_once(); // the library is closed: nothing can be stored in it any more
        Refresh_Sets();       // and nothing of it stays in view
    }
    show_title(); // damage is met late, too
}

void Frm_Main::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow() && !job_.runs())
        inside_->view.refill_if_changed();
}

void Frm_Main::follow_job() {
    if (job_.runs()) focus_before_job_ = focusWidget();
    form_->setEnabled(!job_.runs());
    if (job_.runs() || unloaded_) return;
    if (focus_before_job_) focus_before_job_->setFocus();
    if (isActiveWindow()) inside_->view.refill_if_changed(); // what waited for the job's end
}

// The end

void Frm_Main::end_program() {
    if (close()) QCoreApplication::quit();
}

void Frm_Main::unload() {
    if (unloaded_) return;
    gate_.pass_at_once();
    shut_down();
}

void Frm_Main::closeEvent(QCloseEvent* event) {
    if (!unloaded_) form_->UC_Scripte1->end_edit();
    event->setAccepted(unloaded_ || gate_.pass());
    if (event->isAccepted()) shut_down();
}

void Frm_Main::shut_down() {
    if (std::exchange(unloaded_, true)) return;
    if (const auto trouble = app::shut_down(*this, disk_))
        inside_->messages.say_and_log(text(Text::settings_not_saved),
                                      QString::fromUtf8(trouble->what()));
}

} // namespace ui_main
