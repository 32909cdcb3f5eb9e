#pragma once

#include "platform/timing/time.h"

#include <vector>

namespace timing {

/// A time that stands still until it is moved, for tests: hours pass in no time, and always alike.
/// Waiting moves it. What becomes due on the way happens in the order of its moments. One thread.
class Virtual_Time final : public Time {
public:
    explicit Virtual_Time(QDateTime date = QDateTime({2026, 3, 14}, {15, 9, 26}));
    ~Virtual_Time() override;

    Milliseconds now() const override { return now_; }
    QDateTime date() const override;
    bool wait_until(Milliseconds moment, Interruption& by) override;
    std::unique_ptr<Tick_Timer> tick_timer(std::function<void()> handler) override;

    void advance(Milliseconds by);
    /// What a person does to the clock on the wall.
    void set_date(const QDateTime& date) { date_ = date.addMSecs(-now_.count()); }
    /// Something that happens once, at a moment that is not over yet: a byte arrives, say.
    void at(Milliseconds moment, std::function<void()> event);

private:
    class Timer;
    struct Due {
        Milliseconds moment;
        std::uint64_t number; ///< of two at one moment the one that was asked for first
        Timer* timer = nullptr;
        std::function<void()> event;
    };
    void schedule(Due due);
    bool happen_next(Milliseconds until); ///< @return false: nothing more until then

    QDateTime date_; ///< at the moment 0
    Milliseconds now_{0};
    std::uint64_t asked_ = 0;
    std::vector<Due> due_;
};

} // namespace timing
