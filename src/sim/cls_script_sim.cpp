#include "sim/cls_script_sim.h"

#include "platform/failure/sure.h"
#include "sim/debugger.h"
#include "sim/script_clock.h"

#include <QPointer>
#include <QTimer>
#include <algorithm>
#include <utility>

namespace sim {

using timing::Milliseconds;

cls_script_sim::cls_script_sim(Simulated_Script& script, const Make_Cab& make_cab,
                               Script_CV script_cv, Script_Clock& clock, Debugger* debugger,
                               Random random)
    : script_(script), clock_(clock), debugger_(debugger),
      interpreter_(std::move(script_cv), std::move(random)), SimFahrpult_(make_cab(*this)) {
    SURE(SimFahrpult_ != nullptr);
    later_.setSingleShot(true);
    later_.callOnTimeout([this] { tell_owner(); });
    StepTimer_ = clock_.tick_timer([this] { StepTimer_Timer(); });
    StepTimer_->interval(Milliseconds(1000));
    decoder_.SimCurrentState = 0;
    StepTimer_->enable(true);
    decoder_.SimStopped = false;
    decoder_.SimActive = true;
    clock_.run(!decoder_.SimPaused);
    if (debugger_ != nullptr) debugger_->begin();
}

cls_script_sim::~cls_script_sim() {
    SURE(!stepping_);
    stand();
    SimFahrpult_.reset();
    StepTimer_.reset();
    decoder_.SimActive = false;
}

void cls_script_sim::Intervall(std::int32_t milliseconds) {
    StepTimer_->interval(Milliseconds(std::max(milliseconds, 1)));
}

void cls_script_sim::SimEnable(bool on) { StepTimer_->enable(on); }

void cls_script_sim::Einzelschritt() {
    if (!may_step()) return;
    const bool moves_clock = clock_.own() && decoder_.SimPaused && !step_held_;
    if (moves_clock) {
        if (!StepTimer_->enabled()) StepTimer_->enable(true);
        single_step_ = true;
        while (single_step_ && StepTimer_->enabled() && clock_.happen_next()) {
        }
        single_step_ = false;
        return;
    }
    step_held_ = false;
    StepTimer_->enable(false);
    ExecuteState();
    if (may_step() && !decoder_.SimPaused) StepTimer_->enable(true);
}

void cls_script_sim::Pause_Changed() {
    if (decoder_.SimPaused) {
        clock_.run(false);
        if (!clock_.own()) StepTimer_->enable(false);
        return;
    }
    if (!may_step()) return;
    if (debugger_ != nullptr && !clock_.runs()) debugger_->go_on();
    const bool held = std::exchange(step_held_, false) && clock_.own();
    if (held) ExecuteState(); // at the moment at which it was due
    if (!may_step()) return;
    if (!clock_.own() || !StepTimer_->enabled()) StepTimer_->enable(true);
    clock_.run(true);
}

void cls_script_sim::StepTimer_Timer() {
    StepTimer_->enable(false);
    const bool single = std::exchange(single_step_, false);
    if (!may_step() || (decoder_.SimPaused && !single)) return;
    if (debugger_ != nullptr && !single) {
        if (const auto why = debugger_->stops_before(decoder_.SimCurrentState, decoder_)) {
            decoder_.SimPaused = true;
            step_held_ = clock_.own();
            clock_.run(false);
            if (debugger_->Stopped) debugger_->Stopped(decoder_.SimCurrentState, *why);
            return;
        }
    }
    ExecuteState();
    if (may_step()) StepTimer_->enable(true);
}

void cls_script_sim::ExecuteState() {
    const scripts::cls_script* script = script_.working_script();
    if (script == nullptr) return;
    struct Stepping {
        bool& now;
        ~Stepping() { now = false; }
    };
    stepping_ = true;
    const Stepping until_left{stepping_}; // by a CV that cannot be read, too
    const Step& step = interpreter_.execute(*script, decoder_);
    if (debugger_ != nullptr) debugger_->record(step, *script);
    if (step.timer_shown) SimFahrpult_->show_timer(decoder_.Werte[timer_value]);
    if (step.next_line != step.line) script_.line_changed(step.line, step.next_line);
    SimFahrpult_->step_done();
    if (step.left_for) end(step);
}

bool cls_script_sim::may_step() const {
    return decoder_.SimActive && !decoder_.SimStopped && !over_;
}

void cls_script_sim::stand() {
    if (StepTimer_) StepTimer_->enable(false);
    clock_.run(false);
}

void cls_script_sim::end(const Step& step) {
    over_ = true;
    stand();
    last_words_ = QStringLiteral("Die Simulation endet, weil das Script in State %1 zu State %2 "
                                 "führt, den es nicht gibt.")
                      .arg(step.line)
                      .arg(*step.left_for);
    request_unload();
}

void cls_script_sim::BeforeSimStop() {
    stand();
    decoder_.SimStopped = true;
}

void cls_script_sim::AfterSimStop() { request_unload(); }

/// With the cab still on the stack its owner could not destroy it.
void cls_script_sim::request_unload() {
    if (!std::exchange(unload_asked_, true)) later_.start();
}

void cls_script_sim::tell_owner() {
    const QPointer<QTimer> still_there(&later_); // whoever is told may destroy this
    const auto tell = Ended;
    const auto unload = UnloadRequest;
    const QString message = last_words_;
    if (tell && !message.isEmpty()) tell(message);
    if (unload && still_there != nullptr) unload();
}

} // namespace sim
