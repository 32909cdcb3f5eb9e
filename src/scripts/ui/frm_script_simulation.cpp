// Running the script that is being edited.

#include "scripts/ui/editor_form.h"
#include "scripts/ui/frm_script.h"
#include "sim/SimDecoderState.h"

namespace scripts_ui {

using sim::SimDecoderState;

void frm_script::wire_simulation() {
    connect(form_->cmd_sim, &QPushButton::clicked, this, &frm_script::switch_simulation);
    connect(form_->cmd_Pause, &QPushButton::clicked, this, &frm_script::pause);
    connect(form_->cmd_Einzel, &QPushButton::clicked, this, [this] {
        if (simulation_) simulation_->Einzelschritt();
        debug_changed();
    });
    connect(form_->Sli_Script_Speed, &QSlider::valueChanged, this, &frm_script::set_pace);
    form_->cmd_sim->setEnabled(static_cast<bool>(place_.make_cab));
}

const scripts::cls_script* frm_script::working_script() const {
    return session_ ? &std::as_const(*session_).working() : nullptr;
}

void frm_script::line_changed(int /*old_line*/, int new_line) {
    form_->Picture1->follow(new_line);
    debug_changed();
}

void frm_script::switch_simulation() { simulation_ ? end_simulation() : begin_simulation(); }

void frm_script::begin_simulation() {
    if (!session_ || !place_.make_cab) return;
    const sim::Script_CV script_cv = texts().cv_value;
    const sim::Make_Cab cab = [this, script_cv](sim::Cab_Listener& listener) {
        return place_.make_cab(listener, clock_, script_cv);
    };
    sim::Simulated_Script& script = *this;
    simulation_ = std::make_unique<sim::cls_script_sim>(script, cab, script_cv, clock_, &debugger_);
    simulation_->UnloadRequest = [this] { end_simulation(); };
    simulation_->Ended = [this](const QString& message) { form_->lab_status->say(message); };
    set_pace();
    show_red(*form_->cmd_sim, true);
    form_->Picture1->follow(SimDecoderState().SimCurrentState);
    debug_changed();
}

void frm_script::end_simulation() {
    if (!simulation_) return;
    simulation_.reset();
    show_red(*form_->cmd_sim, false);
    form_->Picture1->refresh_marks();
    debug_changed();
}

void frm_script::pause() {
    bool& paused = SimDecoderState().SimPaused;
    paused = !paused;
    show_red(*form_->cmd_Pause, paused);
    if (simulation_) simulation_->Pause_Changed();
    debug_changed();
}

void frm_script::set_pace() {
    constexpr int per_notch = 200, least = 100; // milliseconds
    if (simulation_) simulation_->Intervall(form_->Sli_Script_Speed->value() * per_notch + least);
}

void frm_script::stopped(int line, sim::Stop_Reason why) {
    show_red(*form_->cmd_Pause, true);
    form_->Picture1->follow(line);
    form_->lab_status->say((why == sim::Stop_Reason::break_point
                                ? QStringLiteral("Angehalten vor State %1: Haltepunkt")
                                : QStringLiteral("Angehalten vor State %1"))
                               .arg(line));
    debug_changed();
}

void frm_script::toggle_break(int line) {
    if (!session_ || line >= session_->lines()) return;
    if (debugger_.has_break(line))
        debugger_.remove_break(line);
    else
        debugger_.put_break(line);
    form_->Picture1->refresh_marks();
    debug_changed();
}

/// The simulation stays on its line.
void frm_script::line_inserted(int line) {
    debugger_.line_inserted(line);
    std::int16_t& current = SimDecoderState().SimCurrentState;
    if (simulation_ && current >= line && current < scripts::cls_script::max_states - 1) ++current;
}

void frm_script::line_deleted(int line) {
    if (debugger_.line_deleted(line))
        form_->lab_status->say(QStringLiteral("Der Haltepunkt der gelöschten Zeile ist weg."));
    std::int16_t& current = SimDecoderState().SimCurrentState;
    if (simulation_ && current > line) --current;
}

void frm_script::debug_changed() {}

} // namespace scripts_ui
