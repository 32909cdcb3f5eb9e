// Running the script that is being edited.

#include "scripts/ui/debug_panel.h"
#include "scripts/ui/debug_values.h"
#include "scripts/ui/editor_form.h"
#include "scripts/ui/frm_script.h"
#include "sim/SimDecoderState.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLocale>
#include <QMenu>
#include <utility>

namespace scripts_ui {

using sim::SimDecoderState;

void frm_script::wire_simulation() {
    connect(form_->cmd_sim, &QPushButton::clicked, this, &frm_script::switch_simulation);
    connect(form_->cmd_Pause, &QPushButton::clicked, this, &frm_script::pause);
    connect(form_->cmd_Einzel, &QPushButton::clicked, this, &frm_script::step);
    connect(form_->Sli_Script_Speed, &QSlider::valueChanged, this, &frm_script::set_pace);
    connect(form_->cmd_debug, &QPushButton::toggled, this, &frm_script::show_debug);
    connect(form_->Picture1, &Row_View::condition_wanted, this, &frm_script::show_margin_menu);
    form_->cmd_sim->setEnabled(static_cast<bool>(place_.make_cab));
}

const scripts::cls_script* frm_script::working_script() const {
    return session_ ? &std::as_const(*session_).working() : nullptr;
}

void frm_script::line_changed(int /*old_line*/, int new_line) {
    const bool stands = SimDecoderState().SimPaused;
    form_->Picture1->follow(new_line, stands ? Row_View::Wish::asked : Row_View::Wish::running);
    if (!stands && new_line >= session_->lines())
        form_->lab_status->say(
            QStringLiteral("Das Script wartet in State %1, der leer ist.").arg(new_line));
    debug_changed();
}

void frm_script::switch_simulation() {
    form_->lab_status->forget();
    simulation_ ? end_simulation() : begin_simulation();
}

void frm_script::begin_simulation() {
    if (!session_ || !place_.make_cab) return;
    const sim::Script_CV script_cv = texts().cv_value;
    const sim::Make_Cab cab = [this, script_cv](sim::Cab_Listener& listener) {
        auto made = place_.make_cab(listener, clock_, script_cv);
        if (auto* window = dynamic_cast<QWidget*>(made.get())) window->installEventFilter(this);
        return made;
    };
    sim::Simulated_Script& script = *this;
    simulation_ = std::make_unique<sim::cls_script_sim>(script, cab, script_cv, clock_, &debugger_);
    simulation_->UnloadRequest = [this] { end_simulation(); };
    simulation_->Acted = [this] { debug_changed(); };
    simulation_->Ended = [this](const QString& message) { form_->lab_status->say(message); };
    for (auto* left : {&left_for_undo_, &left_for_redo_})
        for (Left_Break& each : *left) each.current = false; // of the run before
    set_pace();
    show_red(*form_->cmd_sim, true);
    form_->Picture1->follow(SimDecoderState().SimCurrentState, Row_View::Wish::asked);
    if (SimDecoderState().SimPaused) stand(QStringLiteral("Pause vor State %1"));
    debug_changed();
}

void frm_script::end_simulation() {
    if (!simulation_) return;
    simulation_.reset();
    show_red(*form_->cmd_sim, false);
    if (debug_ != nullptr) debug_->say({}); // the foot says, perhaps, why it has ended
    form_->Picture1->refresh_marks();
    debug_changed();
}

void frm_script::pause() {
    bool& paused = SimDecoderState().SimPaused;
    paused = !paused;
    show_red(*form_->cmd_Pause, paused);
    say_why_it_stands({});
    if (simulation_) simulation_->Pause_Changed();
    if (simulation_ && paused) {
        debugger_.forget_target();
        form_->Picture1->follow(SimDecoderState().SimCurrentState, Row_View::Wish::asked);
        stand(QStringLiteral("Pause vor State %1"));
    }
    debug_changed();
}

void frm_script::set_pace() {
    constexpr int per_notch = 200, least = 100; // milliseconds
    const int pace = form_->Sli_Script_Speed->value() * per_notch + least;
    form_->Sli_Script_Speed->setToolTip(
        QStringLiteral("Eine Zeile in %1 Sekunden").arg(QLocale().toString(pace / 1000.0, 'f', 1)));
    if (simulation_) simulation_->Intervall(pace);
}

void frm_script::step() {
    if (!simulation_) return;
    simulation_->Einzelschritt();
    if (simulation_ && SimDecoderState().SimPaused) stand(QStringLiteral("Steht vor State %1"));
    debug_changed();
}

void frm_script::stand(QString how, QString why) {
    const int line = SimDecoderState().SimCurrentState;
    const bool empty = line >= session_->lines();
    say_why_it_stands(
        how.arg(line) +
        (empty ? QStringLiteral(", der leer ist: dort wartet das Script") : QString()) + why);
    stands_ = std::move(how);
    why_it_stands_ = std::move(why);
}

void frm_script::restate() {
    if (simulation_ && SimDecoderState().SimPaused && !stands_.isEmpty())
        stand(stands_, why_it_stands_);
}

void frm_script::stopped(int line, sim::Stop_Reason why) {
    show_red(*form_->cmd_Pause, true);
    form_->Picture1->follow(line, Row_View::Wish::asked);
    QString reason;
    if (why == sim::Stop_Reason::break_point) {
        reason = QStringLiteral(": Haltepunkt");
        if (const auto condition = debugger_.condition_of(line))
            reason += QStringLiteral(" (%1)").arg(condition_text(*condition));
    }
    stand(QStringLiteral("Angehalten vor State %1"), reason);
    debug_changed();
}

void frm_script::say_why_it_stands(const QString& sentence) {
    stands_.clear();
    sentence.isEmpty() ? form_->lab_status->forget() : form_->lab_status->say(sentence);
    if (debug_ != nullptr) debug_->say(sentence);
}

void frm_script::toggle_break(int line) {
    if (!session_) return;
    if (debugger_.has_break(line))
        debugger_.remove_break(line);
    else if (line < session_->lines())
        debugger_.put_break(line);
    form_->Picture1->refresh_marks();
    debug_changed();
}

/// The simulation stays on its line.
void frm_script::line_inserted(int line) {
    debugger_.line_inserted(line);
    auto& brought_back = going_ == Going::back ? left_for_undo_ : left_for_redo_;
    std::int16_t& current = SimDecoderState().SimCurrentState;
    bool is_current = false; // it was, when it was deleted, and nothing has moved since
    if (going_ != Going::on && !brought_back.empty()) {
        if (brought_back.back().there) debugger_.put_break(line, brought_back.back().condition);
        is_current = brought_back.back().current && current == line;
        brought_back.pop_back();
    }
    const bool moves = current >= line && current < scripts::cls_script::max_states - 1;
    if (simulation_ && moves && !is_current) ++current;
}

void frm_script::line_deleted(int line) {
    (going_ == Going::back ? left_for_redo_ : left_for_undo_)
        .push_back({debugger_.has_break(line), debugger_.condition_of(line),
                    simulation_ && SimDecoderState().SimCurrentState == line});
    if (debugger_.line_deleted(line))
        form_->lab_status->say(QStringLiteral("Der Haltepunkt der gelöschten Zeile ist weg."));
    std::int16_t& current = SimDecoderState().SimCurrentState;
    if (simulation_ && current > line) --current;
}

// Looking for faults

void frm_script::debug_changed() {
    if (debug_ != nullptr) debug_->refresh();
}

void frm_script::show_debug(bool on) {
    if (on && debug_ == nullptr) make_debug_panel();
    if (debug_ == nullptr) return;
    debug_->setVisible(on);
    debug_->refresh();
}

void frm_script::make_debug_panel() {
    debug_ = new Debug_Panel(debugger_, SimDecoderState(), form_->splitter);
    form_->splitter->setStretchFactor(0, 1);
    debug_->show_own_clock(clock_.own());
    connect(debug_, &Debug_Panel::line_wanted, this,
            [this](int line) { form_->Picture1->take_focus(line, Row_View::command_column); });
    connect(debug_, &Debug_Panel::breaks_changed, form_->Picture1, &Row_View::refresh_marks);
    connect(debug_, &Debug_Panel::own_clock_wanted, this, [this](bool on) { clock_.own(on); });
}

void frm_script::show_margin_menu(int line) {
    if (!session_ || line >= session_->lines()) return;
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(debugger_.has_break(line) ? QStringLiteral("Haltepunkt entfernen\tF9")
                                              : QStringLiteral("Haltepunkt setzen\tF9"),
                    this, [this, line] { toggle_break(line); });
    menu->addAction(QStringLiteral("Bedingung …\tUmschalt+F9"), this,
                    [this, line] { edit_break(line); });
    menu->addAction(QStringLiteral("Bis hierher laufen\tStrg+F10"), this,
                    [this, line] { run_to(line); })
        ->setEnabled(simulation_ != nullptr);
    menu->popup(QCursor::pos());
}

void frm_script::run_to(int line) {
    if (!simulation_ || !session_ || line >= session_->lines() || !debugger_.run_to(line)) return;
    if (SimDecoderState().SimPaused) pause();
    say_why_it_stands(QStringLiteral("Läuft bis State %1").arg(line));
}

bool frm_script::debug_key(const QKeyEvent& key) {
    const int line = form_->Picture1->focus_line();
    const bool in_rows = form_->Picture1->isAncestorOf(QApplication::focusWidget());
    const auto is = [&](Qt::Key wanted, Qt::KeyboardModifiers with = Qt::NoModifier) {
        return key.key() == wanted && key.modifiers() == with;
    };
    if (is(Qt::Key_F5))
        simulation_ ? pause() : switch_simulation();
    else if (is(Qt::Key_F10))
        form_->cmd_Einzel->click();
    else if (is(Qt::Key_F6))
        go_to_panel(in_rows);
    else if (in_rows && is(Qt::Key_F10, Qt::ControlModifier))
        run_to(line);
    else if (in_rows && is(Qt::Key_F9, Qt::ShiftModifier))
        edit_break(line);
    else
        return false;
    return true;
}

/// From the rows to the panel, and back.
void frm_script::go_to_panel(bool from_rows) {
    if (!from_rows) return form_->Picture1->take_focus(form_->Picture1->focus_line(), 0);
    form_->cmd_debug->setChecked(true);
    debug_->take_focus();
}

/// Whoever drives wants to pause and to step, too.
bool frm_script::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && session_) {
        const auto& key = *static_cast<QKeyEvent*>(event);
        const bool runs = key.key() == Qt::Key_F5 || key.key() == Qt::Key_F10;
        if (runs && debug_key(key)) return true;
    }
    return QWidget::eventFilter(watched, event);
}

void frm_script::edit_break(int line) {
    if (!session_ || line >= session_->lines()) return;
    form_->cmd_debug->setChecked(true);
    debug_->edit_break(line);
    form_->Picture1->refresh_marks();
}

} // namespace scripts_ui
