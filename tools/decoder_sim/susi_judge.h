#pragma once

#include "track_judge.h"

namespace decoder_sim {

/// Judges what a host sends after it has asked for SUSI mode.
class Susi_Judge {
public:
    Susi_Judge(Journal& journal, const Waits& waits) : journal_(journal), waits_(waits) {}

    /// false: no rule explains the byte.
    bool sent(Byte byte, const Seen& at);
    void delivered(Byte byte, Time at);
    void begin_mode(); ///< SUSIV2 was sent
    void ok_delivered(Time at) { ok_at_ = at; }
    void interrupted(Time at); ///< another command comes
    void port_closed();
    bool in_frame(const Seen& at) const {
        return !frame_.empty() && at.shortest_since(last_) <= waits_.packet;
    }
    std::string state() const;

private:
    void complete(const Seen& at);
    void judge_answered(bool leaves, const Seen& at);
    void judge_attempts(Time at);
    bool answered() const;
    void fault(Rule rule, Bytes bytes, Time at) {
        journal_.fault(rule, state(), std::move(bytes), at);
    }

    Journal& journal_;
    Waits waits_;
    Bytes frame_;
    Time last_{};
    std::optional<Time> ok_at_; ///< nothing: OK did not come, and only leaving is right
    bool left_ = false;
    std::optional<Frame> waiting_; ///< for its answer
    Bytes waiting_bytes_;
    Bytes answer_;
    Time asked_{};
    Bytes failed_bytes_;
    int attempts_ = 0;
};

} // namespace decoder_sim
