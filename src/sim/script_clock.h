#pragma once

#include "platform/timing/time.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace sim {

/// The time from which a simulation takes its timers: another one's, or its own. Its own moves only
/// while the simulation runs, from one tick to the next, so that everything happens at the same
/// moments of it and in the same order, however long one pauses on the way and however late the
/// computer is. Switching between the two keeps timers as they are: what was left until a tick is
/// left afterwards. One thread, with an event loop; must outlive its timers.
class Script_Clock final : public timing::Time {
public:
    using Milliseconds = timing::Milliseconds;

    explicit Script_Clock(timing::Time& below);
    Script_Clock(const Script_Clock&) = delete;
    Script_Clock& operator=(const Script_Clock&) = delete;
    ~Script_Clock() override;

    Milliseconds now() const override;
    QDateTime date() const override { return below_.date(); }
    bool wait_until(Milliseconds moment, timing::Interruption& by) override;
    std::unique_ptr<timing::Tick_Timer> tick_timer(std::function<void()> handler) override;

    /// Off at first. Not from the handler of one of its timers.
    void own(bool on);
    bool own() const { return own_; }

    /// For the simulation: whether its own time moves by itself. No at first.
    void run(bool on);
    bool runs() const { return runs_; }
    /// Moves its own time to the next tick, which happens. @return false: no timer is enabled
    bool happen_next();

private:
    class Timer;
    Timer* next() const;
    void move_to(Milliseconds moment);
    void pace();

    timing::Time& below_;
    Milliseconds shift_{0}; ///< from the time below to this one while it is not its own
    bool own_ = false;
    bool runs_ = false;
    bool happening_ = false; ///< a tick is being handled: time stands still
    Milliseconds now_{0};    ///< of its own, as far as it has come
    Milliseconds since_{0};  ///< when it came there, in the time below
    std::uint64_t asked_ = 0;
    std::vector<Timer*> timers_;
    std::unique_ptr<timing::Tick_Timer> pacer_; ///< ticks when the next tick of its own is due
};

} // namespace sim
