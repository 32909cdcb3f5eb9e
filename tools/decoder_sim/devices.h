#pragma once

#include "decoder.h"
#include "wire.h"

namespace decoder_sim {

/// What the other end has in common: where answers go and what goes wrong with them.
struct Surroundings {
    Decoder& decoder;
    Wire& wire;
    Troubles& troubles;
    Journal& journal;
    Duration answer_delay;
};

/// The decoder on the programming track, behind an interface in BASU mode. It takes what comes and
/// judges nothing.
class Track_Decoder {
public:
    explicit Track_Decoder(const Surroundings& around) : around_(around) {}

    void hear(Byte byte, Time at);
    bool in_packet() const { return !packet_.empty(); }
    /// The track was without current: a preamble is needed.
    void lose_power();

private:
    struct Reading {
        std::string of;
        Byte value;
        int bit;
    };
    void hear_preamble(Byte byte, Time at);
    void act(const Packet& packet, Time at);
    void start_reading(const Packet& packet, std::optional<Byte> value, Time at);
    void answer_bit(Time at);
    void answer(bool taken, Time at);
    void write(const Packet& packet, Time at);
    bool understands(const Packet& packet) const;
    bool done(const Packet& packet);

    Surroundings around_;
    bool linked_ = false;
    int preamble_ = 0; ///< bytes of it heard in a row
    Bytes packet_;
    Time last_{};
    std::optional<Reading> reading_;
    std::size_t no_turn_ = 0;
};

/// The decoder behind an interface in SUSI mode.
class Susi_Decoder {
public:
    explicit Susi_Decoder(const Surroundings& around) : around_(around) {}

    /// Whether the mode ends with this byte.
    bool hear(Byte byte, Time at);
    bool in_frame() const { return !frame_.empty(); }
    void start_anew() { frame_.clear(); }

private:
    bool act(const Frame& frame, Time at);
    void read(const Frame& frame, Time at);
    void write(const Frame& frame, Time at);
    void answer(Bytes bytes, Time at);

    Surroundings around_;
    Bytes frame_;
    Time last_{};
};

/// The interface: commands in text, whatever the mode; all other bytes go on to the decoder.
class Interface {
public:
    Interface(const Surroundings& around, bool knows_basu, bool knows_susi, Duration ok_delay);

    void hear(Byte byte, Time at);
    void take_decoder(bool off, Time at);
    void lose_port(); ///< the host has closed it: the track is without current
    void restart();   ///< pulled out and plugged in

private:
    enum class Mode { text, track, susi };
    void obey(Command command, Time at);
    void say_ok(Time at);
    void pass_on(std::span<const Byte> bytes, Time at);

    Surroundings around_;
    bool knows_basu_, knows_susi_;
    Duration ok_delay_;
    Mode mode_ = Mode::text;
    bool decoder_off_ = false;
    Command_Reader commands_;
    Track_Decoder track_;
    Susi_Decoder susi_;
};

} // namespace decoder_sim
