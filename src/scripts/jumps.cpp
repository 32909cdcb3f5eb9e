#include "scripts/jumps.h"

#include <algorithm>
#include <array>

namespace scripts {
namespace {

struct Jump {
    std::int32_t command;
    int parameter;
};

constexpr std::array jumps{Jump{4, 2},  Jump{5, 3},  Jump{6, 0},
                           Jump{21, 2}, Jump{22, 3}, Jump{23, 3}};

} // namespace

std::optional<int> JumpParameter(std::int32_t command) {
    const auto* jump = std::ranges::find(jumps, command, &Jump::command);
    if (jump == jumps.end()) return std::nullopt;
    return jump->parameter;
}

} // namespace scripts
