#include "signal_judge.h"

#include <algorithm>
#include <cstdio>

namespace decoder_sim {

namespace {

using std::chrono::duration;
using std::chrono::milliseconds;

constexpr int try_bytes = 2 * calibration_pairs;
constexpr int preamble_bytes = 3 * preamble_groups;
constexpr int most_tries = 21;

// The host measures 50 to 75 ms for twenty pairs, from before the first byte to after the last loop.
// What is seen lies within that: never longer, but shorter by what the host waits for the processor
// at either end. A burst is far below all the same.
constexpr milliseconds longest_try{76};
constexpr milliseconds burst_try{25}, burst_preamble{15};

double ms(Duration length) { return duration<double, std::milli>(length).count(); }

} // namespace

void Burst::add(const Seen& at) {
    if (bytes_ == 0) first_ = last_ = at;
    largest_gap_ = std::max(largest_gap_, at.at - last_.at);
    last_ = at;
    ++bytes_;
}

std::string Burst::described() const {
    char text[80];
    std::snprintf(text, sizeof text, "%d bytes in %.1f ms, longest gap %.1f ms", bytes_,
                  ms(length()), ms(largest_gap_));
    return text;
}

bool Signal_Judge::begin(Byte byte, const Seen& at) {
    if (byte == zero_bit) {
        begin_preamble(byte, at);
        return true;
    }
    if (byte != one_bit) return false;
    part_ = Part::calibration;
    count_ = 0;
    sent(byte, at);
    return true;
}

void Signal_Judge::begin_preamble(Byte byte, const Seen& at) {
    part_ = Part::preamble;
    count_ = 0;
    preamble_ = {};
    sent(byte, at);
}

Signal_Judge::Step Signal_Judge::sent(Byte byte, const Seen& at) {
    if (part_ == Part::calibration) {
        if (byte == (count_ % 2 == 0 ? one_bit : zero_bit)) {
            if (count_ % try_bytes == 0) try_ = {};
            try_.add(at);
            if (++count_ % try_bytes == 0) last_try_ = try_;
            return Step::goes_on;
        }
        end(at);
        if (byte != zero_bit) return Step::ended;
        begin_preamble(byte, at);
        return Step::goes_on;
    }
    if (byte != (count_ % 3 == 0 ? zero_bit : one_bit)) {
        end(at);
        return Step::ended;
    }
    preamble_.add(at);
    if (++count_ < preamble_bytes) return Step::goes_on;
    part_ = Part::none;
    journal_.note("preamble: " + preamble_.described(), at);
    if (preamble_.length() < burst_preamble)
        journal_.fault(Rule::preamble_burst, preamble_.described(), {}, at,
                       preamble_.longest() >= burst_preamble);
    return Step::linked;
}

void Signal_Judge::end(Time at) {
    if (part_ == Part::calibration) judge_calibration(at);
    if (part_ == Part::preamble) journal_.fault(Rule::preamble_count, state(), {}, at);
    part_ = Part::none;
}

void Signal_Judge::judge_calibration(Time at) {
    const int tries = count_ / try_bytes;
    if (count_ % try_bytes != 0 || tries > most_tries)
        return journal_.fault(Rule::calibration_count, state(), {}, at);
    const std::string what = "try " + std::to_string(tries) + ": " + last_try_.described();
    journal_.note("timing calibration, " + what, at);
    if (last_try_.length() < burst_try)
        journal_.fault(Rule::calibration_burst, what, {}, at, last_try_.longest() >= burst_try);
    else if (tries < most_tries && last_try_.shortest() > longest_try)
        journal_.fault(Rule::calibration_length, what, {}, at);
}

std::string Signal_Judge::state() const {
    return "byte " + std::to_string(count_ + 1) + " of the " +
           (part_ == Part::calibration ? "timing calibration" : "preamble");
}

} // namespace decoder_sim
