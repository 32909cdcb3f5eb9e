#include "sim/script_clock.h"

#include "platform/failure/sure.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace sim {

using timing::Milliseconds;

/// A timer that goes on when the clock is switched over.
class Script_Clock::Timer final : public timing::Tick_Timer {
public:
    Timer(Script_Clock& clock, std::function<void()> handler)
        : clock_(clock), handler_(std::move(handler)),
          below_(clock.below_.tick_timer([this] { tick_below(); })) {
        clock_.timers_.push_back(this);
    }
    ~Timer() override {
        std::erase(clock_.timers_, this);
        clock_.pace();
    }

    void interval(Milliseconds length) override {
        length_ = std::max(length, Milliseconds{1});
        if (enabled_) enable(true);
    }
    void enable(bool on) override {
        enabled_ = false; // what it counted before holds no time up
        begin(on);
        clock_.pace();
    }
    bool enabled() const override { return enabled_; }

    /// When it ticks next; of two at one moment the one that was asked for first.
    auto due() const { return std::tie(moment_, number_); }
    Milliseconds moment() const { return moment_; }

    void switch_over() { count_down(std::max(moment_, clock_.now())); }
    void tick() {
        begin(true);
        call();
    }

private:
    void begin(bool on) {
        const Milliseconds moment = clock_.now() + length_;
        enabled_ = on;
        number_ = ++clock_.asked_;
        count_down(moment);
    }
    void count_down(Milliseconds moment) {
        moment_ = moment;
        const Milliseconds rest = moment_ - clock_.now();
        shortened_ = rest != length_;
        below_->enable(false);
        if (!enabled_ || clock_.own_) return;
        below_->interval(rest);
        below_->enable(true);
    }
    void tick_below() {
        moment_ = clock_.now() + length_;
        if (std::exchange(shortened_, false)) below_->interval(length_);
        call();
    }
    void call() const {
        const auto handler = handler_; // which may remove the timer
        handler();
    }

    Script_Clock& clock_;
    std::function<void()> handler_;
    std::unique_ptr<Tick_Timer> below_;
    Milliseconds length_{1000};
    Milliseconds moment_{0};
    std::uint64_t number_ = 0;
    bool enabled_ = false;
    bool shortened_ = false; ///< the first interval is what another one had left
};

Script_Clock::Script_Clock(timing::Time& below)
    : below_(below), pacer_(below.tick_timer([this] {
          pacer_->enable(false);
          const Timer* due = next();
          if (due == nullptr) return;
          // no more than one moment, so that slow handlers leave the event loop its turn
          const Milliseconds moment = due->moment();
          while (runs_ && due != nullptr && due->moment() <= moment) {
              happen_next();
              due = next();
          }
          pace();
      })) {}

Script_Clock::~Script_Clock() { SURE(timers_.empty()); }

Milliseconds Script_Clock::now() const {
    if (!own_) return below_.now() + shift_;
    if (!runs_ || happening_) return now_;
    const Milliseconds moved = now_ + std::max(below_.now() - since_, Milliseconds{0});
    const Timer* due = next();
    return due == nullptr ? moved : std::min(moved, std::max(due->moment(), now_));
}

bool Script_Clock::wait_until(Milliseconds moment, timing::Interruption& by) {
    if (!own_) return below_.wait_until(moment - shift_, by);
    for (const Timer* due = next(); !by.raised() && due != nullptr && due->moment() <= moment;
         due = next())
        happen_next();
    if (by.raised()) return false;
    move_to(moment);
    pace();
    return true;
}

std::unique_ptr<timing::Tick_Timer> Script_Clock::tick_timer(std::function<void()> handler) {
    return std::make_unique<Timer>(*this, std::move(handler));
}

void Script_Clock::own(bool on) {
    if (on == own_) return;
    const Milliseconds moment = now();
    own_ = on;
    now_ = moment;
    since_ = below_.now();
    shift_ = moment - since_;
    for (Timer* timer : timers_) timer->switch_over();
    pace();
}

void Script_Clock::run(bool on) {
    if (on == runs_) return;
    if (own_) move_to(now());
    runs_ = on;
    since_ = below_.now();
    pace();
}

bool Script_Clock::happen_next() {
    SURE(own_);
    Timer* due = next();
    if (due == nullptr) return false;
    move_to(due->moment());
    struct Happening {
        bool& now;
        bool before = std::exchange(now, true);
        ~Happening() { now = before; }
    } const happening{happening_};
    due->tick();
    return true;
}

Script_Clock::Timer* Script_Clock::next() const {
    Timer* found = nullptr;
    for (Timer* timer : timers_)
        if (timer->enabled() && (found == nullptr || timer->due() < found->due())) found = timer;
    return found;
}

/// What it is behind the time below, it catches up, but not much of it.
void Script_Clock::move_to(Milliseconds moment) {
    constexpr Milliseconds most_behind{100};
    moment = std::max(moment, now_);
    since_ = std::max(since_ + (moment - now_), below_.now() - most_behind);
    now_ = moment;
}

void Script_Clock::pace() {
    if (happening_) return; // done when the tick is over
    const Timer* due = own_ && runs_ ? next() : nullptr;
    pacer_->enable(false);
    if (due == nullptr) return;
    pacer_->interval(since_ + (due->moment() - now_) - below_.now());
    pacer_->enable(true);
}

} // namespace sim
