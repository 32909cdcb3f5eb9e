#pragma once

#include "journal.h"
#include "troubles.h"

#include <deque>
#include <optional>

namespace decoder_sim {

/// The serial line with what goes wrong on it. Bytes to the host leave one after the other, each in
/// the time that it takes.
class Wire {
public:
    explicit Wire(Troubles& troubles) : troubles_(troubles) {}

    enum class From { interface, decoder, noise };
    void send(std::span<const Byte> bytes, Time due, From from);
    /// What the decoder has not begun to say it does not say any more.
    void withdraw_answers();
    bool answer_pending() const;
    /// The line went away.
    void clear() { waiting_.clear(); }

    /// When the next byte has left, if one is waiting.
    std::optional<Time> next(Duration byte_time) const;
    /// The byte that has left by now.
    std::optional<Byte> left(Time now, Duration byte_time);

    /// What of a byte from the host reaches the other end: itself, nothing, two, another one.
    Bytes arriving(Byte byte);
    /// When a byte that the host wrote now has gone over the line.
    Time arrival(Time written, Duration byte_time);

private:
    struct Waiting {
        Byte byte;
        Time due;
        From from;
    };
    Bytes damaged(Byte byte, Trouble lose, Trouble twice, Trouble change);

    Troubles& troubles_;
    std::deque<Waiting> waiting_;
    Time free_to_host_{};
    Time free_from_host_{};
};

} // namespace decoder_sim
