#include "lateness.h"

#include <array>
#include <charconv>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

namespace decoder_sim {

Lateness::~Lateness() {
    if (statistics_ >= 0) ::close(statistics_);
}

Seen Lateness::looked() {
    const Duration waited = waited_for_processor();
    const Time now = Clock::now();
    const Duration awake = now - last_look_ - slept_;
    const Seen seen{now, awake + (waited - waited_)};
    waited_ = waited;
    last_look_ = now;
    slept_ = {};
    return seen;
}

/// Since the thread began. The file holds three numbers, in nanoseconds the first two: time on the
/// processor, time waited for it, and turns.
Duration Lateness::waited_for_processor() {
    if (statistics_ == -2)
        statistics_ = ::open("/proc/thread-self/schedstat", O_RDONLY | O_CLOEXEC);
    std::array<char, 80> text{};
    const ssize_t length = ::pread(statistics_, text.data(), text.size(), 0);
    if (length <= 0) return waited_;
    const std::string_view numbers(text.data(), static_cast<std::size_t>(length));
    const std::size_t second = numbers.find(' ') + 1;
    std::int64_t waited = 0;
    std::from_chars(numbers.data() + second, numbers.data() + numbers.size(), waited);
    return std::chrono::nanoseconds(waited);
}

} // namespace decoder_sim
