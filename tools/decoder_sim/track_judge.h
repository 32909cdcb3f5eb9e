#pragma once

#include "signal_judge.h"

#include <optional>

namespace decoder_sim {

/// The least that a host must wait, each some way below what it is told to wait.
struct Waits {
    Duration answer;      ///< for an answer, before it gives up: told are 50 ticks
    Duration susi_answer; ///< the same for a read over SUSI: 10 ticks and a pause of 10
    Duration before_basu; ///< from the lone CR to BASU_EIN: 10 ticks
    Duration ok;          ///< for OK: 20 ticks (search), 50 (connection)
    Duration after_ok;    ///< SUSI, from OK to the first frame: 50 ticks
    Duration preamble;    ///< to the first packet: 10 ticks
    Duration packet;      ///< the most within a packet; nothing tells it
    explicit Waits(Duration tick);
};

/// Judges what a host sends in BASU mode, from what it has sent and what was delivered to it: the
/// decoder may have heard and said something else.
class Track_Judge {
public:
    Track_Judge(Journal& journal, const Waits& waits)
        : journal_(journal), waits_(waits), signal_(journal) {}

    /// false: no rule explains the byte.
    bool sent(Byte byte, const Seen& at);
    void delivered(Byte byte, Time at);
    /// A command to the interface comes instead of the next byte.
    void interrupted(const Seen& at);
    void port_closed();
    /// A packet that has waited too long for its next byte has ended.
    bool in_packet(const Seen& at) const {
        return phase_ == Phase::packet && at.shortest_since(last_) <= waits_.packet;
    }
    std::string state() const;

private:
    enum class Phase { between, packet, reading, acknowledge, recovery };
    bool begin(Byte byte, const Seen& at);
    bool collect(Byte byte, const Seen& at);
    bool in_reading(Byte byte, const Seen& at);
    bool after_write(Byte byte, const Seen& at);
    bool recover(Byte byte, const Seen& at);
    void link(const Seen& at);
    bool clock(Byte byte, const Seen& at);
    bool waited(const Seen& at) const { return at.longest_since(asked_) >= waits_.answer; }
    bool read_to_the_end() const { return delivered_ >= 8 && clocks_ == 7; }
    bool begin_recovery(Byte byte, const Seen& at);
    void remember(bool failed) { failed_bytes_ = failed ? bytes_ : Bytes{}; }
    void complete(const Seen& at);
    void judge_content(const Seen& at);
    void judge_form(Time at);
    void judge_set_order(Time at);
    void judge_attempts(Time at);
    void fault(Rule rule, Bytes bytes, Time at) {
        journal_.fault(rule, state(), std::move(bytes), at);
    }

    Journal& journal_;
    Waits waits_;
    Signal_Judge signal_;
    Phase phase_ = Phase::between;
    bool linked_ = false;
    Seen linked_at_{};

    Bytes bytes_; ///< of the packet that comes, or of the last one
    Time last_{};
    Packet packet_;
    Time asked_{};      ///< last byte of the request, or the last bit clock
    int clocks_ = 0;    ///< sent since the request
    int delivered_ = 0; ///< bytes since the request
    Time last_delivery_{};
    bool acknowledged_ = false;
    int value_ = 0; ///< of the bits as the host reads them
    bool value_certain_ = true;
    int zeros_ = 0;

    Bytes failed_bytes_; ///< the last packet, when it was not answered as wanted; else empty
    int attempts_ = 0;
    bool set_open_ = false;
    std::optional<bool> checked_form_; ///< nothing: what the host has read is not certain
};

} // namespace decoder_sim
