#pragma once

#include "protocol.h"

#include <chrono>
#include <string>
#include <vector>

namespace decoder_sim {

using Clock = std::chrono::steady_clock;
using Time = Clock::time_point;
using Duration = Clock::duration;

/// When bytes were seen, and by how much that may have been late: we had to wait for the processor or
/// were about something else. Nobody is blamed for what may have come earlier.
struct Seen {
    Time at;
    Duration late{};
    Time earliest() const { return at - late; }
    Duration since(const Seen& other) const { return at - other.at; }
    Duration longest_since(const Seen& other) const { return at - other.earliest(); }
    Duration longest_since(Time moment) const { return at - moment; }
    Duration shortest_since(Time moment) const { return earliest() - moment; }
    operator Time() const { return at; }
};

/// What a host must not do.
enum class Rule {
    unknown_bytes,
    broken_off,
    line_settings,
    return_missing,
    bytes_before_ok,
    not_in_mode,
    pause_missing,
    calibration_count,
    calibration_burst,
    calibration_length,
    preamble_missing,
    preamble_count,
    preamble_burst,
    wrong_checksum,
    wrong_form,
    no_such_cv,
    never_written,
    set_order,
    clock_too_early,
    clock_after_end,
    next_before_answer,
    left_off,
    recovery_too_early,
    recovery_unfounded,
    recovery_count,
    too_many_attempts
};

/// A sentence about the host that broke the rule.
std::string_view sentence(Rule rule);

struct Fault {
    Time at;
    Rule rule;
    std::string state; ///< what was going on
    Bytes bytes;
};

struct Entry {
    enum class Kind {
        from_host, ///< as they came; one entry is what came at once
        to_host,   ///< one byte that has left
        note,      ///< what the decoder did, in a sentence
        fault
    };
    Time at;
    Kind kind;
    Bytes bytes;
    std::string text;
};

/// Everything that happened, in its order. Of a very long run the older half of the entries goes;
/// faults stay.
class Journal {
public:
    void from_host(std::span<const Byte> bytes, Time at);
    void to_host(Byte byte, Time at);
    void note(std::string text, Time at);
    /// Of rules that turn on time only a note, where the computer is too busy to tell.
    /// @param doubtful what was seen late may have been right
    void fault(Rule rule, std::string state, Bytes bytes, Time at, bool doubtful = false);

    const std::vector<Entry>& entries() const { return entries_; }
    const std::vector<Fault>& faults() const { return faults_; }
    /// Entries that were not taken yet, for those who follow.
    std::vector<Entry> take_fresh();

private:
    void add(Entry entry);

    std::vector<Entry> entries_;
    std::vector<Fault> faults_;
    std::vector<Entry> fresh_;
};

} // namespace decoder_sim
