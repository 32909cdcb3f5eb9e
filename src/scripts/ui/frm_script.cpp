#include "scripts/ui/frm_script.h"

#include "app/mod_main.h"
#include "app/one_line.h"
#include "app/text_table.h"
#include "scripts/catalogue/commands.h"
#include "scripts/cls_script_coll.h"
#include "scripts/ui/editor_form.h"
#include "sim/SimDecoderState.h"
#include "ui/parts/window_placer.h"

#include <QElapsedTimer>
#include <QKeyEvent>
#include <QScopedValueRollback>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <utility>

namespace scripts_ui {

using scripts::AktScripts;
using scripts::cls_script;

frm_script::frm_script(Script_Place place)
    : place_(std::move(place)), form_(new Editor_Form(this)),
      placer_(std::make_unique<ui_parts::Window_Placer>(*this, place_.desktop)),
      clock_(place_.time) {
    setObjectName(QStringLiteral("frm_script"));
    setWindowTitle(QStringLiteral("Script"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(form_);
    wire();
    wire_simulation();
}

frm_script::~frm_script() {
    simulation_.reset();
    if (session_) end();
}

void frm_script::wire() {
    const Row_View* rows = form_->Picture1;
    connect(rows, &Row_View::number_clicked, this, &frm_script::number_clicked);
    connect(rows, &Row_View::delete_wanted, this, &frm_script::ask_to_delete);
    connect(rows, &Row_View::margin_clicked, this, &frm_script::toggle_break);
    connect(rows, &Row_View::not_listed, this, [this](const QString& typed) {
        form_->lab_status->say(QStringLiteral("„%1“ gibt es hier nicht; nichts ist geändert.")
                                   .arg(app::in_one_line(typed)));
    });
    connect(rows, &Row_View::info_cut, this, [this](int longest) {
        form_->lab_status->say(
            QStringLiteral("Die Info hat Platz für %1 Zeichen; der Rest ist abgeschnitten.")
                .arg(longest));
    });
    const auto undo = [this] { go(Going::back); };
    const auto redo = [this] { go(Going::forth); };
    connect(rows, &Row_View::undo_wanted, this, undo);
    connect(rows, &Row_View::redo_wanted, this, redo);
    connect(rows, &Row_View::left, this, [this](bool forward) {
        (forward ? form_->cmd_sim : form_->cmd_cancel)->setFocus(Qt::TabFocusReason);
    });
    connect(form_->cmd_undo, &QPushButton::clicked, this, undo);
    connect(form_->cmd_redo, &QPushButton::clicked, this, redo);
    connect(form_->cmd_ok, &QPushButton::clicked, this, [this] { close_as(Closing::ok); });
    connect(form_->cmd_cancel, &QPushButton::clicked, this, [this] { close_as(Closing::cancel); });
    connect(form_->chk_info_on, &QCheckBox::toggled, this, &frm_script::follow_info);
    connect(form_->chk_info_off, &QCheckBox::toggled, this, &frm_script::follow_info);
    connect(form_->Sli_Info, &QSlider::valueChanged, this, &frm_script::follow_info);
}

// Opening

void frm_script::open(int position) {
    if (session_ || !AktScripts().exists(position)) return;
    cls_script& script = *AktScripts().Item(position);
    script.EditActive = true;
    session_ = std::make_unique<scripts::Script_Session>(script);
    session_->listen(this);
    keep_debugger_for(script);
    SetID_ = AktScripts().SetID;
    ScriptID_ = script.ScriptID;
    stored_states_ = script.Stored_States;
    name_ = script.ScriptName;
    library_ = place_.database.database_file();
    left_for_undo_.clear();
    left_for_redo_.clear();
    debugger_.Stopped = [this](int line, sim::Stop_Reason why) { stopped(line, why); };
    sim::SimDecoderState().SimPaused = false;
    place_.gate.add(*this);
    app::globals.ScriptWindowOpen = true;
    setWindowTitle(QStringLiteral("Script ") + app::in_one_line(name_));
    show_red(*form_->cmd_Pause, false);
    say_why_it_stands({});
    show_rows();
    placer_->bring_to(app::globals.Script_Window);
    app::globals.Script_Window_Max ? showMaximized() : show();
    raise();
    activateWindow();
    form_->Picture1->take_focus(0, Row_View::command_column);
}

/// Whoever opens the same script again goes on looking; break points stand where its lines do.
void frm_script::keep_debugger_for(const cls_script& script) {
    const bool same = SetID_ == AktScripts().SetID && ScriptID_ == script.ScriptID &&
                      library_ == place_.database.database_file();
    if (!same) debugger_ = {};
    if (lines_dropped_ || stored_states_ != script.Stored_States) debugger_.forget_breaks();
    debugger_.begin();
}

void frm_script::show_rows() {
    form_->Picture1->show_session(
        session_.get(),
        {.texts = [this] { return texts(); },
         .mark =
             [this](int line) {
                 if (!debugger_.has_break(line)) return Break_Margin::Mark::none;
                 return debugger_.condition_of(line) ? Break_Margin::Mark::stop_if
                                                     : Break_Margin::Mark::stop;
             },
         .simulated_line =
             [this] { return simulation_ ? sim::SimDecoderState().SimCurrentState : -1; },
         .longest_info = info_width()});
    {
        const QSignalBlocker on(form_->chk_info_on), off(form_->chk_info_off),
            size(form_->Sli_Info);
        form_->chk_info_on->setChecked(!app::globals.Script_Info_Off);
        form_->chk_info_off->setChecked(app::globals.Script_Info_Single_Line);
        form_->Sli_Info->setValue(app::globals.Script_Info_Size);
    }
    follow_info();
    refresh_buttons();
}

void frm_script::follow_info() {
    app::globals.Script_Info_Off = !form_->chk_info_on->isChecked();
    app::globals.Script_Info_Single_Line = form_->chk_info_off->isChecked();
    app::globals.Script_Info_Size = static_cast<std::int16_t>(form_->Sli_Info->value());
    form_->Picture1->show_info_column(form_->chk_info_on->isChecked(),
                                      form_->chk_info_off->isChecked(), form_->Sli_Info->value());
}

int frm_script::info_width() {
    constexpr int usual = 255;
    const int width = place_.database.script_info_width();
    return width > 0 ? width : usual;
}

scripts::Text_Context frm_script::texts() {
    return {.scripts = AktScripts(),
            .edited = &session_->working(),
            .cv_value =
                [this](int cv) {
                    return store::Get_CV_Wert(place_.database, static_cast<std::int16_t>(cv));
                },
            .language = app::globals.LanguageIndex};
}

int frm_script::position() const {
    if (AktScripts().SetID != SetID_) return 0;
    for (int place = 1; place <= AktScripts().Count(); ++place)
        if (AktScripts().Item(place)->ScriptID == ScriptID_) return place;
    return 0;
}

void frm_script::scripts_loaded() {
    if (!session_) return;
    if (const int place = position(); place != 0) {
        AktScripts().Item(place)->EditActive = true;
        name_ = AktScripts().Item(place)->ScriptName;
        setWindowTitle(QStringLiteral("Script ") + app::in_one_line(name_));
    }
    form_->Picture1->refresh();
}

// Editing

/// Whoever clicks twice before the numbers are drawn anew means those that he sees.
void frm_script::number_clicked(int line, quint64 moment) {
    if (!session_ || line >= session_->lines()) return;
    const int lines = session_->lines();
    form_->cmd_ok->setFocus(); // ends what is being typed
    // with the deletion of a line, perhaps: the number is another one's by now
    if (!session_ || session_->lines() < lines || line >= session_->lines()) return;
    if (const auto inserted = session_->inserted()) {
        const bool old_numbers = inserted_at_ && moment != 0 &&
                                 moment <= *inserted_at_ + static_cast<quint64>(insert_took_);
        copy_from(old_numbers && line >= *inserted ? line + 1 : line);
        return;
    }
    QElapsedTimer handling;
    handling.start();
    insert_before(line);
    inserted_at_ = moment != 0 ? std::optional(moment) : std::nullopt;
    insert_took_ = static_cast<int>(handling.elapsed());
}

void frm_script::insert_before(int line) {
    if (session_->lines() >= cls_script::max_states) {
        form_->Picture1->take_focus(line, Row_View::command_column);
        form_->lab_status->say(QStringLiteral("Nichts eingefügt: das Script hat alle 256 Zeilen."));
        return;
    }
    form_->lab_status->forget();
    session_->insert(line);
    form_->Picture1->take_focus(line, Row_View::command_column);
    form_->Picture1->repaint();
}

void frm_script::copy_from(int line) {
    const int inserted = *session_->inserted();
    session_->copy_to_inserted(line);
    const auto& copy = std::as_const(*session_).working().GetState(inserted);
    if (const auto target = scripts_catalogue::JumpParameter(copy.GetCommand()))
        form_->lab_status->say(QStringLiteral("State %1 kopiert; die Kopie springt zu State %2.")
                                   .arg(line)
                                   .arg(copy.GetPar(*target)));
    form_->Picture1->take_focus(inserted, line < inserted ? Row_View::command_column + 1
                                                          : Row_View::command_column);
}

void frm_script::ask_to_delete(int line) {
    // nor does what is half written when the window closes
    if (closing_ || deletes_nothing_ ||
        !place_.desktop.ask_yes_no(app::TextTable.text(531), app::TextTable.text(531))) {
        form_->Picture1->refresh();
        return;
    }
    if (!session_) return;
    form_->lab_status->forget();
    session_->erase(line);
    form_->Picture1->take_focus(line, Row_View::command_column);
}

void frm_script::go(Going way) {
    if (!session_) return;
    {
        const QScopedValueRollback hasty(deletes_nothing_, true);
        form_->Picture1->commit();
    }
    const bool back = way == Going::back;
    const QScopedValueRollback going(going_, way);
    if (back ? !session_->can_undo() : !session_->can_redo())
        return form_->Picture1->take_focus_again();
    form_->lab_status->forget();
    form_->Picture1->take_focus(back ? session_->undo() : session_->redo(),
                                Row_View::command_column);
}

void frm_script::lines_changed() {
    if (going_ == Going::on) left_for_redo_.clear();
    for (int line = session_->lines(); line < cls_script::max_states; ++line)
        debugger_.remove_break(line); // undo has taken the line away again
    form_->Picture1->refresh();
    refresh_buttons();
    restate();
    debug_changed(); // break points have moved along
}

void frm_script::refresh_buttons() {
    form_->cmd_undo->setEnabled(session_ && session_->can_undo());
    form_->cmd_redo->setEnabled(session_ && session_->can_redo());
}

bool frm_script::event(QEvent* event) {
    if (event->type() == QEvent::KeyPress && session_) {
        const auto& key = *static_cast<QKeyEvent*>(event);
        if (key.matches(QKeySequence::Undo)) return go(Going::back), true;
        if (is_redo(key)) return go(Going::forth), true;
        if (debug_key(key)) return true;
    }
    return QWidget::event(event);
}

} // namespace scripts_ui
