#include "platform/timing/virtual_time.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace timing {

class Virtual_Time::Timer final : public Tick_Timer {
public:
    Timer(Virtual_Time& time, std::function<void()> handler)
        : time_(time), handler_(std::move(handler)) {}
    ~Timer() override { enable(false); }

    void interval(Milliseconds length) override {
        length_ = std::max(length, Milliseconds{1});
        if (enabled_) enable(true);
    }
    void enable(bool on) override {
        std::erase_if(time_.due_, [this](const Due& due) { return due.timer == this; });
        enabled_ = on;
        if (on) time_.schedule({time_.now_ + length_, 0, this, {}});
    }
    bool enabled() const override { return enabled_; }
    void tick() {
        enable(true);                  // before the handler, which may switch it off
        const auto handler = handler_; // or remove the timer
        handler();
    }

private:
    Virtual_Time& time_;
    std::function<void()> handler_;
    Milliseconds length_{1000};
    bool enabled_ = false;
};

Virtual_Time::Virtual_Time(QDateTime date) : date_(std::move(date)) {}
Virtual_Time::~Virtual_Time() = default;

QDateTime Virtual_Time::date() const { return date_.addMSecs(now_.count()); }

void Virtual_Time::schedule(Due due) {
    due.number = ++asked_;
    due_.push_back(std::move(due));
}

void Virtual_Time::at(Milliseconds moment, std::function<void()> event) {
    schedule({std::max(moment, now_), 0, nullptr, std::move(event)});
}

bool Virtual_Time::happen_next(Milliseconds until) {
    const auto next = std::ranges::min_element(
        due_, {}, [](const Due& due) { return std::tie(due.moment, due.number); });
    if (next == due_.end() || next->moment > until) return false;
    const Due due = std::move(*next);
    due_.erase(next);
    now_ = due.moment;
    due.timer ? due.timer->tick() : due.event();
    return true;
}

void Virtual_Time::advance(Milliseconds by) {
    const Milliseconds until = now_ + by;
    while (happen_next(until)) {
    }
    now_ = std::max(now_, until);
}

bool Virtual_Time::wait_until(Milliseconds moment, Interruption& by) {
    while (!by.raised() && happen_next(moment)) {
    }
    if (by.raised()) return false;
    now_ = std::max(now_, moment);
    return true;
}

std::unique_ptr<Tick_Timer> Virtual_Time::tick_timer(std::function<void()> handler) {
    return std::make_unique<Timer>(*this, std::move(handler));
}

} // namespace timing
