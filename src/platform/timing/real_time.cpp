#include "platform/timing/time.h"

#include <QTimer>
#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <utility>
#include <vector>

namespace timing {

struct Interruption::Inside {
    mutable std::mutex mutex;
    std::condition_variable changed;
    bool raised = false;
    std::vector<Listener*> listeners;
};

Interruption::Interruption() : inside_(std::make_unique<Inside>()) {}
Interruption::~Interruption() = default;

void Interruption::raise() {
    {
        const std::lock_guard guard(inside_->mutex);
        inside_->raised = true;
        for (const Listener* listener : inside_->listeners) listener->call_();
    }
    inside_->changed.notify_all();
}

void Interruption::clear() {
    const std::lock_guard guard(inside_->mutex);
    inside_->raised = false;
}

bool Interruption::raised() const {
    const std::lock_guard guard(inside_->mutex);
    return inside_->raised;
}

bool Interruption::wait_for(Milliseconds duration) {
    std::unique_lock guard(inside_->mutex);
    return inside_->changed.wait_for(guard, duration, [this] { return inside_->raised; });
}

Interruption::Listener::Listener(Interruption& to, std::function<void()> call)
    : to_(to), call_(std::move(call)) {
    const std::lock_guard guard(to_.inside_->mutex);
    to_.inside_->listeners.push_back(this);
    if (to_.inside_->raised) call_();
}

Interruption::Listener::~Listener() {
    const std::lock_guard guard(to_.inside_->mutex);
    std::erase(to_.inside_->listeners, this);
}

namespace {

class Real_Timer final : public Tick_Timer {
public:
    explicit Real_Timer(std::function<void()> handler) {
        timer_.setTimerType(Qt::PreciseTimer);
        timer_.setInterval(1000);
        timer_.callOnTimeout(std::move(handler));
    }
    void interval(Milliseconds length) override {
        timer_.setInterval(std::max(length, Milliseconds{1}));
    }
    void enable(bool on) override { on ? timer_.start() : timer_.stop(); }
    bool enabled() const override { return timer_.isActive(); }

private:
    QTimer timer_;
};

class Real_Time final : public Time {
public:
    Milliseconds now() const override {
        return std::chrono::duration_cast<Milliseconds>(
            std::chrono::steady_clock::now().time_since_epoch());
    }
    QDateTime date() const override { return QDateTime::currentDateTime(); }
    bool wait_until(Milliseconds moment, Interruption& by) override {
        const auto until = std::chrono::steady_clock::time_point(moment);
        return !by.wait_for(
            std::chrono::ceil<Milliseconds>(std::max(until - std::chrono::steady_clock::now(),
                                                     std::chrono::steady_clock::duration::zero())));
    }
    std::unique_ptr<Tick_Timer> tick_timer(std::function<void()> handler) override {
        return std::make_unique<Real_Timer>(std::move(handler));
    }
};

} // namespace

Time& real_time() {
    static Real_Time time;
    return time;
}

} // namespace timing
