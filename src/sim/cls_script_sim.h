#pragma once

#include "platform/timing/time.h"
#include "sim/SimDecoderState.h"
#include "sim/interpreter.h"
#include "sim/surroundings.h"

#include <QString>
#include <QTimer>
#include <cstdint>
#include <functional>
#include <memory>

namespace sim {

class Debugger;
class Script_Clock;

/// Runs the editor's script on SimDecoderState, a line per tick, with a cab to drive the loco from.
/// What it was given must outlive it. Not to be destroyed while it calls the editor or the cab,
/// Debugger::Stopped included.
class cls_script_sim final : private Cab_Listener {
public:
    /// Opens the cab and starts with line 0, every 1000 ms. The cab takes its timers from the same
    /// clock.
    cls_script_sim(Simulated_Script& script, const Make_Cab& make_cab, Script_CV script_cv,
                   Script_Clock& clock, Debugger* debugger = nullptr,
                   Random random = random_number);
    cls_script_sim(const cls_script_sim&) = delete;
    cls_script_sim& operator=(const cls_script_sim&) = delete;
    /// Closes the cab.
    ~cls_script_sim() override;

    /// The cab has been closed, or the script has ended: whoever owns the simulation may now
    /// destroy it, from inside as well. Comes once, from the event loop with nothing of simulation
    /// or cab under way; never after the destruction, and not for the cab that that closes.
    std::function<void()> UnloadRequest;
    /// The script has left its 256 lines and goes no further: says so in German. From the event
    /// loop, before UnloadRequest.
    std::function<void(const QString& message)> Ended;

    /// The decoder has changed: by a step, or from the cab.
    std::function<void()> Acted;

    void Intervall(std::int32_t milliseconds); ///< between two steps
    void SimEnable(bool on);                   ///< the step timer
    /// One step now; stops before no line. Where the clock has its own time and stands, it moves to
    /// the moment of the next step, and what is due until then happens.
    void Einzelschritt();
    /// Pauses or goes on, as SimPaused says.
    void Pause_Changed();

private:
    void AfterSimStart() override {}
    void BeforeSimStop() override;
    void AfterSimStop() override;
    void CabActed() override {
        if (Acted) Acted();
    }

    void StepTimer_Timer();
    void ExecuteState();
    bool may_step() const;
    void stand();
    void end(const Step& step);
    void request_unload();
    void tell_owner();

    Simulated_Script& script_;
    Script_Clock& clock_;
    Debugger* debugger_;
    Interpreter interpreter_;
    Simulated_Decoder& decoder_ = SimDecoderState();
    bool over_ = false;        ///< the script has left its lines
    bool step_held_ = false;   ///< a step was due when the debugger stopped it
    bool single_step_ = false; ///< the next tick is a single step
    bool stepping_ = false;    ///< editor or cab are being called
    bool unload_asked_ = false;
    QString last_words_; ///< of a script that has left its lines
    QTimer later_;       ///< tells the owner when everything under way has returned
    std::unique_ptr<Cab> SimFahrpult_;
    std::unique_ptr<timing::Tick_Timer> StepTimer_;
};

} // namespace sim
