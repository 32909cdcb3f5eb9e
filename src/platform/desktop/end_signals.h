#pragma once

#include <QSocketNotifier>
#include <functional>

namespace desktop {

/// Turns the signals with which a system or terminal ends a program (SIGTERM, SIGINT, SIGHUP) into
/// a call from the event loop, so that the program can end in order. One object at a time.
class End_Signals {
public:
    explicit End_Signals(std::function<void()> wanted_end);
    ~End_Signals(); ///< gives the signals their former meaning back
    End_Signals(const End_Signals&) = delete;
    End_Signals& operator=(const End_Signals&) = delete;

private:
    std::function<void()> wanted_end_;
    QSocketNotifier notifier_;
};

} // namespace desktop
