#include "journal.h"

#include <algorithm>
#include <fstream>
#include <thread>
#include <utility>

namespace decoder_sim {

namespace {

constexpr std::size_t most_entries = 400'000;

constexpr struct {
    Rule rule;
    std::string_view sentence;
} rule_rows[] = {
    {Rule::unknown_bytes, "no rule explains these bytes"},
    {Rule::broken_off, "a packet was broken off"},
    {Rule::line_settings,
     "the line is not raw, at 38400 baud and with two stop bits (the search may use one)"},
    {Rule::return_missing, "BASU_EIN without a lone CR before it"},
    {Rule::bytes_before_ok, "bytes were sent before the interface had said OK"},
    {Rule::not_in_mode, "the interface was not asked into the mode for these bytes"},
    {Rule::pause_missing, "the pause before these bytes was too short"},
    {Rule::calibration_count, "the timing was not measured in 1 to 21 tries of twenty pairs"},
    {Rule::calibration_burst,
     "the last timing measurement came as one burst: its loops took no time"},
    {Rule::calibration_length,
     "the last timing measurement took more than 75 ms, and no other followed"},
    {Rule::preamble_missing, "a packet without a preamble before it"},
    {Rule::preamble_count, "the preamble was not ten groups of BF EF EF"},
    {Rule::preamble_burst, "the preamble came as one burst: its loops took no time"},
    {Rule::wrong_checksum, "the checksum is wrong"},
    {Rule::wrong_form, "the write packet has not the form that the protocol version asks for"},
    {Rule::no_such_cv, "a CV above 1024"},
    {Rule::never_written, "this CV is never written"},
    {Rule::set_order, "CV-set start, writes and end are not in their order"},
    {Rule::clock_too_early, "the next bit clock came before the answer"},
    {Rule::clock_after_end, "a bit clock after the last bit"},
    {Rule::next_before_answer,
     "the next packet came before the answer, and before the wait for it was over"},
    {Rule::left_off, "a read was left off without the eight zeros"},
    {Rule::recovery_too_early, "zeros came before the wait for an answer was over"},
    {Rule::recovery_unfounded, "zeros without an answer of a read that did not come"},
    {Rule::recovery_count, "not eight zeros"},
    {Rule::too_many_attempts, "more attempts than allowed"},
};

/// Those that turn on time.
constexpr Rule timed_rules[] = {Rule::broken_off,         Rule::bytes_before_ok,
                                Rule::pause_missing,      Rule::calibration_burst,
                                Rule::calibration_length, Rule::preamble_burst,
                                Rule::next_before_answer, Rule::recovery_too_early};

/// Bytes come through the pseudo-terminal with the help of a thread of the system. Where very many
/// others want the processor it is late by tens of milliseconds, and nobody tells by how much.
bool computer_is_busy() {
    constexpr unsigned many_for_each = 5;
    std::string load;
    unsigned runnable = 0;
    std::ifstream in("/proc/loadavg");
    in >> load >> load >> load >> runnable;
    return runnable > many_for_each * std::thread::hardware_concurrency();
}

} // namespace

std::string_view sentence(Rule rule) {
    for (const auto& row : rule_rows)
        if (row.rule == rule) return row.sentence;
    return {};
}

void Journal::add(Entry entry) {
    if (entries_.size() >= most_entries)
        entries_.erase(entries_.begin(), entries_.begin() + most_entries / 2);
    fresh_.push_back(entry);
    entries_.push_back(std::move(entry));
}

void Journal::from_host(std::span<const Byte> bytes, Time at) {
    add({at, Entry::Kind::from_host, {bytes.begin(), bytes.end()}, {}});
}

void Journal::to_host(Byte byte, Time at) { add({at, Entry::Kind::to_host, {byte}, {}}); }

void Journal::note(std::string text, Time at) { add({at, Entry::Kind::note, {}, std::move(text)}); }

void Journal::fault(Rule rule, std::string state, Bytes bytes, Time at, bool doubtful) {
    std::string text(sentence(rule));
    text += " (" + state + (bytes.empty() ? "" : "; bytes " + hex(bytes)) + ")";
    if (doubtful || (std::ranges::count(timed_rules, rule) > 0 && computer_is_busy()))
        return note("not judged, as this computer is too busy: " + text, at);
    add({at, Entry::Kind::fault, bytes, std::move(text)});
    faults_.push_back({at, rule, std::move(state), std::move(bytes)});
}

std::vector<Entry> Journal::take_fresh() { return std::exchange(fresh_, {}); }

} // namespace decoder_sim
