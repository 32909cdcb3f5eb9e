#include "track_judge.h"

#include <algorithm>
#include <utility>

namespace decoder_sim {

namespace {

constexpr int most_attempts = 5;

} // namespace

Waits::Waits(Duration tick)
    : answer(40 * tick), susi_answer(15 * tick), before_basu(5 * tick), ok(15 * tick),
      after_ok(25 * tick), preamble(5 * tick), packet(25 * tick) {}

bool Track_Judge::sent(Byte byte, const Seen& at) {
    if (signal_.running()) {
        const Signal_Judge::Step step = signal_.sent(byte, at);
        if (step == Signal_Judge::Step::linked) link(at);
        if (step == Signal_Judge::Step::ended) return begin(byte, at);
        return true;
    }
    switch (phase_) {
    case Phase::packet:
        return collect(byte, at);
    case Phase::reading:
        return in_reading(byte, at);
    case Phase::acknowledge:
        return after_write(byte, at);
    case Phase::recovery:
        return recover(byte, at);
    case Phase::between:
        break;
    }
    return begin(byte, at);
}

void Track_Judge::link(const Seen& at) {
    linked_ = true;
    linked_at_ = at;
    failed_bytes_.clear();
    set_open_ = false;
    delivered_ = 0;
    checked_form_ = false;
}

bool Track_Judge::begin(Byte byte, const Seen& at) {
    phase_ = Phase::between;
    if (signal_.begin(byte, at)) return true;
    if (byte == 0) {
        fault(Rule::recovery_unfounded, {byte}, at);
        return begin_recovery(byte, at);
    }
    if (packet_length(byte) > 0) {
        phase_ = Phase::packet;
        bytes_.clear();
        last_ = at;
        return collect(byte, at);
    }
    if (byte != bit_clock || !is_answered_in_bits(packet_.kind)) return false;
    fault(Rule::clock_after_end, {byte}, at);
    return true;
}

bool Track_Judge::begin_recovery(Byte byte, const Seen& at) {
    phase_ = Phase::recovery;
    zeros_ = 0;
    return recover(byte, at);
}

bool Track_Judge::collect(Byte byte, const Seen& at) {
    if (at.shortest_since(last_) > waits_.packet) {
        fault(Rule::broken_off, bytes_, at);
        return begin(byte, at);
    }
    last_ = at;
    bytes_.push_back(byte);
    if (bytes_.size() == packet_length(bytes_.front())) complete(at);
    return true;
}

/// Bytes that came too often for the last request may be taken as answers to the next one.
void Track_Judge::complete(const Seen& at) {
    const int wanted = is_answered_in_bits(packet_.kind) ? 8 : 1;
    delivered_ = std::max(0, delivered_ - wanted);
    packet_ = decoded_packet(bytes_);
    judge_content(at);
    judge_form(at);
    judge_attempts(at);
    judge_set_order(at);
    phase_ = is_answered_in_bits(packet_.kind) ? Phase::reading : Phase::acknowledge;
    asked_ = at.earliest();
    clocks_ = value_ = 0;
    acknowledged_ = false;
    value_certain_ = delivered_ == 0;
}

void Track_Judge::judge_content(const Seen& at) {
    if (!linked_) fault(Rule::preamble_missing, bytes_, at);
    if (linked_ && at.since(linked_at_) < waits_.preamble)
        journal_.fault(Rule::pause_missing, state(), bytes_, at,
                       at.longest_since(linked_at_) >= waits_.preamble);
    linked_ = true; // said once
    if (packet_.kind == Packet_Kind::unknown) fault(Rule::unknown_bytes, bytes_, at);
    if (!packet_.checksum_good) fault(Rule::wrong_checksum, bytes_, at);
    if (packet_.cv > last_cv) fault(Rule::no_such_cv, bytes_, at);
}

void Track_Judge::judge_form(Time at) {
    const bool plain = packet_.kind == Packet_Kind::write_plain;
    const bool checked = packet_.kind == Packet_Kind::write_checked;
    const bool in_set = packet_.kind == Packet_Kind::set_write;
    if ((plain || checked) && checked_form_.value_or(checked) != checked)
        fault(Rule::wrong_form, bytes_, at);
    if ((plain || checked || in_set) &&
        (packet_.cv == 7 || packet_.cv == 8 || (in_set && packet_.cv == 65)))
        fault(Rule::never_written, bytes_, at);
    if (bytes_.front() == 0x09) checked_form_ = true;
}

/// A start that was not taken is followed by writes and the end all the same.
void Track_Judge::judge_set_order(Time at) {
    const bool again = attempts_ > 1;
    switch (packet_.kind) {
    case Packet_Kind::set_start:
        if (set_open_ && !again) fault(Rule::set_order, bytes_, at);
        set_open_ = true;
        return;
    case Packet_Kind::set_write:
        if (!set_open_) fault(Rule::set_order, bytes_, at);
        return;
    case Packet_Kind::set_end:
        if (!set_open_ && !again) fault(Rule::set_order, bytes_, at);
        set_open_ = false;
        return;
    default:
        return;
    }
}

void Track_Judge::judge_attempts(Time at) {
    attempts_ = bytes_ == failed_bytes_ ? attempts_ + 1 : 1;
    const int most = packet_.kind == Packet_Kind::capacity ? 1 : most_attempts;
    if (attempts_ > most) fault(Rule::too_many_attempts, bytes_, at);
}

/// Where a byte too many or a late one came, host and judge may differ in which one was the answer:
/// then zeros are right after the wait, although enough bytes were delivered.
bool Track_Judge::in_reading(Byte byte, const Seen& at) {
    if (byte == bit_clock && !read_to_the_end()) return clock(byte, at);
    const bool may_give_up = waited(at);
    if (read_to_the_end()) {
        const bool differs =
            !value_certain_ || at.longest_since(last_delivery_) < waits_.before_basu;
        const bool gave_up = byte == 0 && may_give_up && differs;
        remember(gave_up);
        return gave_up ? begin_recovery(byte, at) : begin(byte, at);
    }
    remember(true);
    if (byte == 0) {
        if (!may_give_up) fault(Rule::recovery_too_early, {byte}, at);
        return begin_recovery(byte, at);
    }
    if (!may_give_up && delivered_ <= clocks_)
        fault(Rule::next_before_answer, {byte}, at);
    else if (packet_.kind != Packet_Kind::capacity || !may_give_up) // which has no second attempt
        fault(Rule::left_off, {byte}, at);
    return begin(byte, at);
}

bool Track_Judge::clock(Byte byte, const Seen& at) {
    if (clocks_ == 7 || delivered_ <= clocks_) fault(Rule::clock_too_early, {byte}, at);
    if (clocks_ < 7) ++clocks_;
    asked_ = at.earliest();
    return true;
}

bool Track_Judge::after_write(Byte byte, const Seen& at) {
    if (delivered_ == 0 && !waited(at)) fault(Rule::next_before_answer, {byte}, at);
    remember(!acknowledged_);
    return begin(byte, at);
}

bool Track_Judge::recover(Byte byte, const Seen& at) {
    if (byte == 0) {
        if (++zeros_ == recovery_bytes) phase_ = Phase::between;
        return true;
    }
    fault(Rule::recovery_count, Bytes(static_cast<std::size_t>(zeros_), 0), at);
    return begin(byte, at);
}

void Track_Judge::delivered(Byte byte, Time at) {
    last_delivery_ = at;
    if (phase_ == Phase::reading) {
        if (delivered_ > clocks_) value_certain_ = false;
        if (byte == yes && delivered_ < 8) value_ |= 1 << delivered_;
        const bool last = ++delivered_ == 8;
        if (last && packet_.kind == Packet_Kind::protocol_version && !checked_form_.value_or(false))
            checked_form_ = value_certain_ ? std::optional(value_ > 0) : std::nullopt;
        return;
    }
    ++delivered_;
    if (byte == yes) acknowledged_ = true;
}

void Track_Judge::interrupted(const Seen& at) {
    if (signal_.running()) signal_.end(at);
    if (phase_ == Phase::packet) fault(Rule::broken_off, bytes_, at);
    if (phase_ == Phase::reading && !read_to_the_end()) fault(Rule::left_off, {}, at);
    if (phase_ == Phase::recovery) fault(Rule::recovery_count, {}, at);
    phase_ = Phase::between;
}

void Track_Judge::port_closed() {
    signal_.forget();
    phase_ = Phase::between;
    linked_ = false;
    failed_bytes_.clear();
}

std::string Track_Judge::state() const {
    if (signal_.running()) return signal_.state();
    switch (phase_) {
    case Phase::packet:
        return "in a packet";
    case Phase::reading:
        return "reading " + described(packet_) + ", bit " + std::to_string(clocks_);
    case Phase::acknowledge:
        return described(packet_) + ", waiting for the answer";
    case Phase::recovery:
        return "after " + std::to_string(zeros_) + " zeros";
    case Phase::between:
        break;
    }
    return linked_ ? "between packets" : "before the preamble";
}

} // namespace decoder_sim
