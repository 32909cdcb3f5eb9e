#include "link/transport/bit_loop.h"

namespace link_transport {
namespace {

struct Real_Loop final : Bit_Loop {
    void count_to(std::int32_t rounds) override {
        for (std::int32_t i = 0; i <= rounds; ++i) asm volatile("" : "+r"(i)); // stays in the code
    }
};

} // namespace

Bit_Loop& real_bit_loop() {
    static Real_Loop loop;
    return loop;
}

} // namespace link_transport
