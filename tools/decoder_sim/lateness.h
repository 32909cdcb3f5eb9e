#pragma once

#include "journal.h"

namespace decoder_sim {

/// By how much one look of a thread at something may be late, since the look before: all the time
/// that it did not sleep, and all that it was ready to run while others had the processor.
class Lateness {
public:
    Lateness() = default;
    ~Lateness();
    Lateness(const Lateness&) = delete;
    Lateness& operator=(const Lateness&) = delete;

    // All calls come from one thread.
    Seen looked();
    void begin_sleep() { slept_from_ = Clock::now(); }
    void end_sleep() { slept_ += Clock::now() - slept_from_; }

private:
    Duration waited_for_processor();

    int statistics_ = -2; ///< descriptor; -1: the system keeps none, -2: not asked yet
    Time last_look_ = Clock::now();
    Time slept_from_{};
    Duration slept_{};
    Duration waited_{};
};

} // namespace decoder_sim
