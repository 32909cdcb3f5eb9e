#include "platform/desktop/end_signals.h"

#include "platform/failure/sure.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace desktop {
namespace {

constexpr std::array end_signals{SIGTERM, SIGINT, SIGHUP};
std::array<struct sigaction, end_signals.size()> former_actions;
std::array<int, 2> ends{-1, -1}; ///< pipe from the handler to the event loop

// Only what is safe inside a signal handler: one byte for the event loop.
void on_signal(int) {
    const int saved = errno;
    [[maybe_unused]] const auto written = write(ends[1], "", 1);
    errno = saved;
}

int open_pipe() {
    SURE(ends[0] < 0);
    if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) ends = {-1, -1};
    return ends[0];
}

} // namespace

End_Signals::End_Signals(std::function<void()> wanted_end)
    : wanted_end_(std::move(wanted_end)), notifier_(open_pipe(), QSocketNotifier::Read) {
    QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] {
        std::array<char, 16> bytes{};
        while (read(ends[0], bytes.data(), bytes.size()) > 0) {
        }
        wanted_end_();
    });
    struct sigaction action {};
    action.sa_handler = on_signal; // NOLINT(cppcoreguidelines-pro-type-union-access)
    action.sa_flags = SA_RESTART;
    for (std::size_t i = 0; i < end_signals.size(); ++i) {
        sigaction(end_signals[i], &action, &former_actions[i]);
    }
}

End_Signals::~End_Signals() {
    for (std::size_t i = 0; i < end_signals.size(); ++i) {
        sigaction(end_signals[i], &former_actions[i], nullptr);
    }
    notifier_.setEnabled(false);
    for (int& end : ends) close(std::exchange(end, -1));
}

} // namespace desktop
