#pragma once

#include <cstdint>

namespace link_transport {

/// The empty loop that gives a bit on the track its length.
class Bit_Loop {
public:
    virtual ~Bit_Loop() = default;
    /// Takes a time that is proportional to the number of rounds, and gives the thread away to
    /// nobody.
    virtual void count_to(std::int32_t rounds) = 0;
};

/// The loop on this machine's processor.
Bit_Loop& real_bit_loop();

} // namespace link_transport
