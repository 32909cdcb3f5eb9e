#pragma once

#include "journal.h"

namespace decoder_sim {

/// How bytes that belong together were spread over time.
class Burst {
public:
    void add(const Seen& at);
    /// From the first to the last byte, as it was seen.
    Duration length() const { return last_.at - first_.at; }
    Duration longest() const { return last_.at - first_.earliest(); }
    Duration shortest() const { return last_.earliest() - first_.at; }
    std::string described() const;

private:
    Seen first_{}, last_{};
    Duration largest_gap_{};
    int bytes_ = 0;
};

/// Judges timing calibration and preamble, whose bytes are made of the time between them.
class Signal_Judge {
public:
    explicit Signal_Judge(Journal& journal) : journal_(journal) {}

    enum class Step {
        goes_on,
        linked, ///< the preamble is complete
        ended   ///< the byte belongs to neither of them
    };
    bool running() const { return part_ != Part::none; }
    /// Whether one of them begins with this byte.
    bool begin(Byte byte, const Seen& at);
    Step sent(Byte byte, const Seen& at);
    /// Something else comes: judged as ended.
    void end(Time at);
    /// The port was closed: whoever is cancelled may stop anywhere.
    void forget() { part_ = Part::none; }
    std::string state() const;

private:
    enum class Part { none, calibration, preamble };
    void begin_preamble(Byte byte, const Seen& at);
    void judge_calibration(Time at);

    Journal& journal_;
    Part part_ = Part::none;
    int count_ = 0; ///< bytes of the part
    Burst try_, last_try_, preamble_;
};

} // namespace decoder_sim
