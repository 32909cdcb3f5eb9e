#include "devices.h"

#include <array>
#include <utility>

namespace decoder_sim {

namespace {

using std::chrono::milliseconds;

/// A packet that stops in the middle is forgotten after this time.
constexpr milliseconds packet_patience{100};
/// Everything but `yes` means no, so a host that waits for one of them only is found out.
constexpr std::array<Byte, 4> no_bytes{0x00, 0x1D, 0xFC, 0x38};
constexpr std::array<Byte, 6> ok_noise{0x00, 'O', 0xFF, 'K', 0x1C, '?'};

Duration delay(const Surroundings& around) {
    return around.answer_delay + milliseconds(around.troubles.late_ms());
}

} // namespace

// --- on the track ------------------------------------------------------------------------------

void Track_Decoder::lose_power() {
    linked_ = false;
    preamble_ = 0;
    packet_.clear();
    reading_.reset();
    around_.wire.withdraw_answers();
}

void Track_Decoder::hear_preamble(Byte byte, Time at) {
    const Byte expected = preamble_ % 3 == 0 ? zero_bit : one_bit;
    if (byte == expected)
        ++preamble_;
    else
        preamble_ = byte == zero_bit ? 1 : 0;
    if (preamble_ < 3 * preamble_groups) return;
    preamble_ = 0;
    linked_ = true;
    around_.journal.note("the decoder listens", at);
}

void Track_Decoder::hear(Byte byte, Time at) {
    if (at - last_ > packet_patience) packet_.clear();
    last_ = at;
    if (!linked_) return hear_preamble(byte, at);
    if (packet_.empty()) {
        if (byte == bit_clock) {
            if (reading_ && !around_.wire.answer_pending()) answer_bit(at);
            return;
        }
        if (reading_)
            around_.journal.note("the read of " + reading_->of + " was left off before bit " +
                                     std::to_string(reading_->bit),
                                 at);
        reading_.reset();
        around_.wire.withdraw_answers();
        if (packet_length(byte) == 0) return;
    }
    packet_.push_back(byte);
    if (packet_.size() < packet_length(packet_.front())) return;
    act(decoded_packet(packet_), at);
    packet_.clear();
}

bool Track_Decoder::understands(const Packet& packet) const {
    switch (packet.kind) {
    case Packet_Kind::unknown:
        return false;
    case Packet_Kind::write_checked:
        return around_.decoder.understands_checksums();
    case Packet_Kind::protocol_version:
        return around_.decoder.traits().protocol.has_value();
    case Packet_Kind::capacity:
        return around_.decoder.traits().capacity_class != 0;
    case Packet_Kind::set_start:
    case Packet_Kind::set_write:
    case Packet_Kind::set_end:
        return around_.decoder.knows_sets();
    default:
        return true;
    }
}

void Track_Decoder::act(const Packet& packet, Time at) {
    if (!understands(packet))
        return around_.journal.note("not understood: " + described(packet), at);
    if (!packet.checksum_good)
        return around_.journal.note("wrong checksum: " + described(packet), at);
    const Traits& traits = around_.decoder.traits();
    switch (packet.kind) {
    case Packet_Kind::read:
        return start_reading(packet, around_.decoder.read(packet.cv), at);
    case Packet_Kind::type_code:
        return start_reading(packet, static_cast<Byte>(traits.type_code), at);
    case Packet_Kind::protocol_version:
        return start_reading(packet, static_cast<Byte>(*traits.protocol), at);
    case Packet_Kind::capacity:
        return start_reading(packet, static_cast<Byte>(traits.capacity_class), at);
    default:
        return write(packet, at);
    }
}

void Track_Decoder::start_reading(const Packet& packet, std::optional<Byte> value, Time at) {
    if (!value) return around_.journal.note("there is no " + described(packet), at);
    reading_ = Reading{described(packet), *value, 0};
    answer_bit(at);
}

void Track_Decoder::answer_bit(Time at) {
    answer((reading_->value >> reading_->bit & 1) != 0, at);
    if (++reading_->bit < 8) return;
    around_.journal.note("read " + reading_->of + " -> " + std::to_string(reading_->value), at);
    reading_.reset();
}

void Track_Decoder::answer(bool taken, Time at) {
    if (around_.troubles.hits(Trouble::wrong_answer)) taken = !taken;
    if (around_.troubles.answers_silent()) return;
    const Byte byte = taken ? yes : no_bytes[no_turn_++ % no_bytes.size()];
    around_.wire.send({&byte, 1}, at + delay(around_), Wire::From::decoder);
}

bool Track_Decoder::done(const Packet& packet) {
    const auto value = static_cast<Byte>(packet.value);
    switch (packet.kind) {
    case Packet_Kind::set_start:
        around_.decoder.start_set();
        return true;
    case Packet_Kind::set_write:
        return around_.decoder.add_to_set(packet.cv, value);
    case Packet_Kind::set_end:
        return around_.decoder.end_set();
    default:
        return around_.decoder.write(packet.cv, value);
    }
}

void Track_Decoder::write(const Packet& packet, Time at) {
    const bool refused = around_.troubles.hits(Trouble::refuse_write);
    const bool taken = !refused && done(packet);
    around_.journal.note((taken ? "" : "refused: ") + described(packet), at);
    if (!around_.troubles.hits(Trouble::ignore_write)) answer(taken, at);
}

// --- over SUSI ---------------------------------------------------------------------------------

bool Susi_Decoder::hear(Byte byte, Time at) {
    if (at - last_ > packet_patience) frame_.clear();
    last_ = at;
    if (frame_.empty()) around_.wire.withdraw_answers();
    frame_.push_back(byte);
    if (!begins_frame(frame_)) frame_.clear();
    if (!is_whole_frame(frame_)) return false;
    const Frame frame = decoded_frame(std::exchange(frame_, {}));
    if (frame.checksum_good) return act(frame, at);
    around_.journal.note("SUSI: wrong checksum", at);
    return false;
}

bool Susi_Decoder::act(const Frame& frame, Time at) {
    switch (frame.kind) {
    case Frame_Kind::read:
        read(frame, at);
        return false;
    case Frame_Kind::write:
        write(frame, at);
        return false;
    default:
        answer({susi_yes}, at);
        around_.journal.note("SUSI: programming mode left", at);
        return true;
    }
}

void Susi_Decoder::read(const Frame& frame, Time at) {
    const std::optional<Byte> value = around_.decoder.read(frame.cv);
    const std::string cv = "CV " + std::to_string(frame.cv);
    if (!value) return around_.journal.note("SUSI: there is no " + cv, at);
    around_.journal.note("SUSI: read " + cv + " -> " + std::to_string(*value), at);
    const Byte check = crc8({&*value, 1}, 0);
    const Byte wrong = around_.troubles.hits(Trouble::wrong_answer) ? 0x10 : 0;
    answer({susi_yes, static_cast<Byte>(*value ^ wrong), check}, at);
}

void Susi_Decoder::write(const Frame& frame, Time at) {
    constexpr Byte susi_no = 0x15;
    const bool refused = around_.troubles.hits(Trouble::refuse_write);
    const bool taken = !refused && around_.decoder.write(frame.cv, static_cast<Byte>(frame.value));
    around_.journal.note(std::string("SUSI: ") + (taken ? "" : "refused: ") + "write CV " +
                             std::to_string(frame.cv) + " = " + std::to_string(frame.value),
                         at);
    const bool right = !around_.troubles.hits(Trouble::wrong_answer);
    if (!around_.troubles.hits(Trouble::ignore_write))
        answer({taken == right ? susi_yes : susi_no}, at);
}

void Susi_Decoder::answer(Bytes bytes, Time at) {
    if (!around_.troubles.answers_silent())
        around_.wire.send(bytes, at + delay(around_), Wire::From::decoder);
}

// --- the interface -----------------------------------------------------------------------------

Interface::Interface(const Surroundings& around, bool knows_basu, bool knows_susi,
                     Duration ok_delay)
    : around_(around), knows_basu_(knows_basu), knows_susi_(knows_susi), ok_delay_(ok_delay),
      track_(around), susi_(around) {}

void Interface::hear(Byte byte, Time at) {
    const bool inside = mode_ == Mode::track  ? track_.in_packet()
                        : mode_ == Mode::susi ? susi_.in_frame()
                                              : false;
    if (!commands_.active() && (inside || !Command_Reader::begins(byte)))
        return pass_on({&byte, 1}, at);
    const Command_Reader::Step step = commands_.read(byte);
    if (step == Command_Reader::Step::partial) return;
    const Bytes read = commands_.forget();
    if (step == Command_Reader::Step::broken) return pass_on(read, at);
    obey(commands_.command(), at);
}

void Interface::pass_on(std::span<const Byte> bytes, Time at) {
    for (const Byte byte : bytes) {
        if (decoder_off_ || mode_ == Mode::text) return;
        if (mode_ == Mode::track)
            track_.hear(byte, at);
        else if (susi_.hear(byte, at))
            mode_ = Mode::text;
    }
}

void Interface::obey(Command command, Time at) {
    switch (command) {
    case Command::lone_return:
        return;
    case Command::basu_on:
        if (!knows_basu_) return;
        mode_ = Mode::track;
        around_.journal.note("BASU mode on", at);
        return say_ok(at);
    case Command::basu_off:
        if (mode_ == Mode::track) mode_ = Mode::text;
        track_.lose_power();
        return around_.journal.note("BASU mode off", at);
    case Command::susi_on:
        if (!knows_susi_) return;
        mode_ = Mode::susi;
        track_.lose_power();
        susi_.start_anew();
        around_.journal.note("SUSI mode on", at);
        return say_ok(at);
    }
}

void Interface::say_ok(Time at) {
    constexpr std::array<Byte, 3> ok{'O', 'K', '\r'};
    const Time due = at + ok_delay_ + milliseconds(around_.troubles.late_ms());
    if (around_.troubles.noise_before_ok()) around_.wire.send(ok_noise, due, Wire::From::noise);
    if (!around_.troubles.ok_silent()) around_.wire.send(ok, due, Wire::From::interface);
}

void Interface::take_decoder(bool off, Time at) {
    decoder_off_ = off;
    track_.lose_power();
    susi_.start_anew();
    around_.journal.note(off ? "decoder taken from the track" : "decoder put on the track", at);
}

void Interface::lose_port() {
    track_.lose_power();
    susi_.start_anew();
    commands_.forget();
}

void Interface::restart() {
    lose_port();
    mode_ = Mode::text;
}

} // namespace decoder_sim
