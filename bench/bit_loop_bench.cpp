// bench_bit_loop_O2, bench_bit_loop_O3: how much longer the loop that times a bit takes for ten times the
// rounds, as the median of 21. 10 means that it is as linear as its calibration takes it to be.

#include "link/transport/bit_loop.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <iostream>

namespace {

double nanoseconds(std::int32_t rounds) {
    const auto start = std::chrono::steady_clock::now();
    link_transport::real_bit_loop().count_to(rounds);
    return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start)
        .count();
}

} // namespace

int main() {
    constexpr std::int32_t rounds = 100'000;
    std::array<double, 21> ratios{};
    for (double& ratio : ratios) {
        const double once = nanoseconds(rounds);
        ratio = nanoseconds(10 * rounds) / once;
    }
    std::ranges::nth_element(ratios, ratios.begin() + ratios.size() / 2);
    std::cout << ratios[ratios.size() / 2] << '\n';
}
