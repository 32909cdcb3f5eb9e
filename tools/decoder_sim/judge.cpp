#include "judge.h"

#include <utility>

namespace decoder_sim {

Judge::Judge(Journal& journal, Duration tick)
    : journal_(journal), waits_(tick), track_(journal, waits_), susi_(journal, waits_) {}

void Judge::sent(std::span<const Byte> bytes, const Seen& at, const Line_Settings& line) {
    line_ = line;
    for (const Byte byte : bytes) take(byte, at);
    if (lost_.empty()) return;
    const Rule rule = asked_ == Asked::nothing ? Rule::not_in_mode : Rule::unknown_bytes;
    journal_.fault(rule, state(), std::exchange(lost_, {}), at);
}

void Judge::lose(std::span<const Byte> bytes, const Seen& at) {
    lost_.insert(lost_.end(), bytes.begin(), bytes.end());
    lost_at_ = at;
}

/// What follows unknown bytes without a pause belongs to them.
void Judge::take(Byte byte, const Seen& at) {
    if (lost_at_ && at.shortest_since(*lost_at_) < waits_.before_basu) {
        if (*lost_at_ == at.at) lost_.push_back(byte);
        lost_at_ = at;
        return;
    }
    lost_at_.reset();
    judge_wait_for_ok(byte, at);
    const bool inside = asked_ == Asked::basu   ? track_.in_packet(at)
                        : asked_ == Asked::susi ? susi_.in_frame(at)
                                                : false;
    if (commands_.active() || (!inside && Command_Reader::begins(byte)))
        return take_command(byte, at);
    if (!in_mode(byte, at)) lose({&byte, 1}, at);
}

void Judge::judge_wait_for_ok(Byte byte, const Seen& at) {
    if (asked_ == Asked::nothing || ok_ || ok_judged_ || at.longest_since(asked_at_) >= waits_.ok)
        return;
    ok_judged_ = true;
    journal_.fault(Rule::bytes_before_ok, state(), {byte}, at);
}

bool Judge::in_mode(Byte byte, const Seen& at) {
    lone_return_.reset();
    if (asked_ == Asked::susi) return susi_.sent(byte, at);
    if (asked_ == Asked::basu) {
        if (byte == one_bit || byte == zero_bit) judge_line(false, at);
        return track_.sent(byte, at);
    }
    return false;
}

void Judge::take_command(Byte byte, const Seen& at) {
    if (!commands_.active()) {
        if (asked_ == Asked::basu) track_.interrupted(at);
        if (asked_ == Asked::susi) susi_.interrupted(at);
    }
    const Command_Reader::Step step = commands_.read(byte);
    if (step == Command_Reader::Step::partial) return;
    const Bytes bytes = commands_.forget();
    if (step == Command_Reader::Step::broken) return lose(bytes, at);
    judge_command(commands_.command(), bytes, at);
}

void Judge::judge_command(Command command, const Bytes& bytes, const Seen& at) {
    const std::optional<Seen> before = std::exchange(lone_return_, std::nullopt);
    if (command == Command::lone_return) {
        lone_return_ = at;
        return;
    }
    if (command == Command::basu_off) { // the line may be restored already for whoever is next
        if (asked_ != Asked::basu || !ok_) journal_.fault(Rule::not_in_mode, state(), bytes, at);
        asked_ = Asked::nothing;
        return;
    }
    judge_line(command == Command::basu_on, at);
    if (command == Command::basu_on) {
        if (!before)
            journal_.fault(Rule::return_missing, state(), bytes, at);
        else if (at.since(*before) < waits_.before_basu)
            journal_.fault(Rule::pause_missing, state(), bytes, at,
                           at.longest_since(*before) >= waits_.before_basu);
    }
    asked_ = command == Command::basu_on ? Asked::basu : Asked::susi;
    asked_at_ = at.earliest();
    answer_.clear();
    ok_ = ok_judged_ = false;
    if (asked_ == Asked::susi) susi_.begin_mode();
}

void Judge::judge_line(bool search, Time at) {
    const bool good = line_.raw && line_.baud_38400 && (search || line_.stop_bits == 2);
    if (good || line_judged_) return;
    line_judged_ = true;
    const std::string seen = std::string(line_.raw ? "raw" : "not raw") +
                             (line_.baud_38400 ? ", 38400 baud, " : ", not 38400 baud, ") +
                             std::to_string(line_.stop_bits) + " stop bits";
    journal_.fault(Rule::line_settings, seen, {}, at);
}

void Judge::delivered(Byte byte, Time at) {
    if (asked_ != Asked::nothing && !ok_) {
        answer_ = answer_.substr(answer_.size() < 2 ? 0 : answer_.size() - 2);
        answer_ += static_cast<char>(byte);
        ok_ = answer_.ends_with("OK\r");
        if (ok_ && asked_ == Asked::susi) susi_.ok_delivered(at);
        if (ok_ || at - asked_at_ < waits_.ok) return;
    }
    if (asked_ == Asked::basu) track_.delivered(byte, at);
    if (asked_ == Asked::susi) susi_.delivered(byte, at);
}

void Judge::port_closed() {
    track_.port_closed();
    susi_.port_closed();
    commands_.forget();
    lone_return_.reset();
    lost_at_.reset();
    line_judged_ = false;
}

std::string Judge::state() const {
    if (asked_ == Asked::nothing) return "no mode asked for";
    if (!ok_)
        return asked_ == Asked::basu ? "waiting for OK to BASU_EIN" : "waiting for OK to SUSIV2";
    return asked_ == Asked::basu ? track_.state() : susi_.state();
}

} // namespace decoder_sim
