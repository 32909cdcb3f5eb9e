#pragma once

#include <QDateTime>
#include <chrono>
#include <functional>
#include <memory>

namespace timing {

using Milliseconds = std::chrono::milliseconds;

/// Ends waits before their time: from any thread, and for good until it is cleared.
class Interruption {
public:
    Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;
    ~Interruption();

    void raise();
    void clear();
    bool raised() const;
    /// Blocks the calling thread. @return whether it was raised before the time was over
    [[nodiscard]] bool wait_for(Milliseconds duration);

    /// For whoever waits for something else as well: as long as it lives, raising calls what it was
    /// given, in the thread that raises; at once where the interruption is raised already. When it
    /// has gone no call is under way. The call must not touch the interruption.
    class Listener {
    public:
        Listener(Interruption& to, std::function<void()> call);
        Listener(const Listener&) = delete;
        Listener& operator=(const Listener&) = delete;
        ~Listener();

    private:
        friend class Interruption;
        Interruption& to_;
        std::function<void()> call_;
    };

private:
    struct Inside;
    std::unique_ptr<Inside> inside_;
};

/// Calls its handler again and again while it is enabled, in the thread that made it. The handler
/// may switch the timer off or change its interval; one that takes longer than the interval loses
/// ticks instead of piling them up.
class Tick_Timer {
public:
    virtual ~Tick_Timer() = default;
    /// At least 1 ms. Begins a new interval where the timer is enabled.
    virtual void interval(Milliseconds length) = 0;
    virtual void enable(bool on) = 0;
    virtual bool enabled() const = 0;
};

/// What time it is, and waiting for it: the one way to time for everything above the platform.
class Time {
public:
    virtual ~Time() = default;
    /// Since some moment before the program began; never goes back.
    virtual Milliseconds now() const = 0;
    /// The local time that a person reads off a clock; may be set back at any moment.
    virtual QDateTime date() const = 0;
    /// Blocks the calling thread. @return false: interrupted before the time was over
    [[nodiscard]] virtual bool wait_until(Milliseconds moment, Interruption& by) = 0;
    /// A timer of the calling thread, which needs an event loop; disabled, with 1000 ms. It must
    /// not outlive this.
    virtual std::unique_ptr<Tick_Timer> tick_timer(std::function<void()> handler) = 0;
};

/// The time of this machine. Any number of threads may ask it.
Time& real_time();

} // namespace timing
