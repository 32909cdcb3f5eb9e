#pragma once

#include "susi_judge.h"

namespace decoder_sim {

/// How the host has set its end of the line.
struct Line_Settings {
    bool raw = false;
    bool baud_38400 = false;
    int stop_bits = 1;
};

/// Judges a host from both ends of its wire: every byte that it sends must be explained by a rule
/// of the protocol, with regard to what was delivered to it. Knows nothing of the decoder.
class Judge {
public:
    Judge(Journal& journal, Duration tick);

    /// @param bytes what came at once
    void sent(std::span<const Byte> bytes, const Seen& at, const Line_Settings& line);
    void delivered(Byte byte, Time at);
    /// By the host or by a pulled plug: what was going on has ended and is not judged.
    void port_closed();

private:
    enum class Asked { nothing, basu, susi };
    void take(Byte byte, const Seen& at);
    void take_command(Byte byte, const Seen& at);
    void judge_command(Command command, const Bytes& bytes, const Seen& at);
    void judge_line(bool search, Time at);
    void judge_wait_for_ok(Byte byte, const Seen& at);
    bool in_mode(Byte byte, const Seen& at);
    void lose(std::span<const Byte> bytes, const Seen& at);
    std::string state() const;

    Journal& journal_;
    Waits waits_;
    Track_Judge track_;
    Susi_Judge susi_;
    Command_Reader commands_;
    Asked asked_ = Asked::nothing;
    Time asked_at_{};
    std::string answer_; ///< the end of it, since the mode was asked for
    bool ok_ = false;
    bool ok_judged_ = false; ///< bytes before OK are said once
    std::optional<Seen> lone_return_;
    Line_Settings line_;
    bool line_judged_ = false;
    std::optional<Time> lost_at_; ///< nothing explains the bytes until the host is quiet
    Bytes lost_;
};

} // namespace decoder_sim
