#include "wire.h"

#include <algorithm>

namespace decoder_sim {

namespace {

constexpr Byte flipped_bits = 0x24; ///< what a disturbed byte has otherwise

} // namespace

Bytes Wire::damaged(Byte byte, Trouble lose, Trouble twice, Trouble change) {
    // all are asked, as each of them counts
    const bool lost = troubles_.hits(lose), doubled = troubles_.hits(twice);
    if (troubles_.hits(change)) byte ^= flipped_bits;
    if (lost) return {};
    return doubled ? Bytes{byte, byte} : Bytes{byte};
}

void Wire::send(std::span<const Byte> bytes, Time due, const From source) {
    for (const Byte byte : bytes) {
        From from = source;
        const Bytes sent = from == From::noise
                               ? Bytes{byte}
                               : damaged(byte, Trouble::lose_answer, Trouble::double_answer,
                                         Trouble::change_answer);
        for (const Byte each : sent) {
            waiting_.push_back({each, due, from});
            from = From::noise; // a second one is nothing that the decoder could keep to itself
        }
    }
}

void Wire::withdraw_answers() {
    std::erase_if(waiting_, [](const Waiting& each) { return each.from == From::decoder; });
}

bool Wire::answer_pending() const {
    return std::ranges::any_of(waiting_,
                               [](const Waiting& each) { return each.from == From::decoder; });
}

std::optional<Time> Wire::next(Duration byte_time) const {
    if (waiting_.empty()) return std::nullopt;
    return std::max(waiting_.front().due, free_to_host_) + byte_time;
}

std::optional<Byte> Wire::left(Time now, Duration byte_time) {
    const std::optional<Time> at = next(byte_time);
    if (!at || *at > now) return std::nullopt;
    const Byte byte = waiting_.front().byte;
    waiting_.pop_front();
    free_to_host_ = now; // not *at: a line that was late does not catch up
    return byte;
}

Bytes Wire::arriving(Byte byte) {
    return damaged(byte, Trouble::lose_byte, Trouble::double_byte, Trouble::change_byte);
}

Time Wire::arrival(Time written, Duration byte_time) {
    free_from_host_ = std::max(written, free_from_host_) + byte_time;
    return free_from_host_;
}

} // namespace decoder_sim
