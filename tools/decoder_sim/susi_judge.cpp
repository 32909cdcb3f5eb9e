#include "susi_judge.h"

#include <utility>

namespace decoder_sim {

namespace {

/// Attempts in all, by kind of frame; leaving is tried once by whoever leaves.
int most_susi_attempts(Frame_Kind kind) {
    return kind == Frame_Kind::read ? 6 : kind == Frame_Kind::write ? 11 : 2;
}

std::string described(const Frame& frame) {
    const std::string cv = " CV " + std::to_string(frame.cv);
    switch (frame.kind) {
    case Frame_Kind::read:
        return "SUSI, read" + cv;
    case Frame_Kind::write:
        return "SUSI, write" + cv;
    case Frame_Kind::leave:
        return "SUSI, leave";
    case Frame_Kind::unknown:
        break;
    }
    return "SUSI";
}

} // namespace

void Susi_Judge::begin_mode() {
    frame_.clear();
    ok_at_.reset();
    left_ = false;
    waiting_.reset();
    failed_bytes_.clear();
}

bool Susi_Judge::sent(Byte byte, const Seen& at) {
    if (!frame_.empty() && !in_frame(at)) fault(Rule::broken_off, std::exchange(frame_, {}), at);
    last_ = at;
    frame_.push_back(byte);
    if (!begins_frame(frame_)) {
        frame_.clear();
        return false;
    }
    if (is_whole_frame(frame_)) complete(at);
    return true;
}

/// A read is answered by value and check, a write by the first byte.
bool Susi_Judge::answered() const {
    if (waiting_->kind != Frame_Kind::read) return !answer_.empty() && answer_.front() == susi_yes;
    return answer_.size() >= 3 && crc8({&answer_[1], 1}, 0) == answer_[2];
}

/// Leaving waits for nothing: whoever is cancelled leaves at once.
void Susi_Judge::judge_answered(bool leaves, const Seen& at) {
    if (!waiting_) return;
    const bool is_read = waiting_->kind == Frame_Kind::read;
    const bool whole = answer_.size() >= (is_read ? 3U : 1U);
    if (!whole && !leaves &&
        at.longest_since(asked_) < (is_read ? waits_.susi_answer : waits_.answer))
        fault(Rule::next_before_answer, frame_, at);
    failed_bytes_ = answered() ? Bytes{} : waiting_bytes_;
    waiting_.reset();
}

void Susi_Judge::judge_attempts(Time at) {
    attempts_ = frame_ == failed_bytes_ ? attempts_ + 1 : 1;
    if (attempts_ > most_susi_attempts(waiting_->kind)) fault(Rule::too_many_attempts, frame_, at);
}

void Susi_Judge::complete(const Seen& at) {
    const Frame frame = decoded_frame(frame_);
    const bool leaves = frame.kind == Frame_Kind::leave;
    judge_answered(leaves, at);
    if (!frame.checksum_good) fault(Rule::wrong_checksum, frame_, at);
    if ((left_ || !ok_at_) && !leaves) fault(Rule::not_in_mode, frame_, at);
    if (ok_at_ && !leaves && at.longest_since(*ok_at_) < waits_.after_ok)
        fault(Rule::pause_missing, frame_, at);
    if (frame.cv > last_cv) fault(Rule::no_such_cv, frame_, at);
    if (frame.kind == Frame_Kind::write && (frame.cv == 7 || frame.cv == 8))
        fault(Rule::never_written, frame_, at);
    waiting_ = frame;
    judge_attempts(at);
    left_ = left_ || leaves;
    waiting_bytes_ = std::exchange(frame_, {});
    answer_.clear();
    asked_ = at.earliest();
}

void Susi_Judge::delivered(Byte byte, Time /*at*/) {
    if (waiting_) answer_.push_back(byte);
}

void Susi_Judge::interrupted(Time at) {
    if (!frame_.empty()) fault(Rule::broken_off, std::exchange(frame_, {}), at);
    waiting_.reset();
}

void Susi_Judge::port_closed() {
    frame_.clear();
    waiting_.reset();
    failed_bytes_.clear();
}

std::string Susi_Judge::state() const {
    if (waiting_ && frame_.empty()) return described(*waiting_) + ", waiting for the answer";
    return left_ ? "SUSI, after leaving" : ok_at_ ? "SUSI, between frames" : "SUSI, before OK";
}

} // namespace decoder_sim
