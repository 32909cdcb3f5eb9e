#pragma once

#include <cstdint>
#include <optional>

namespace scripts {

/// @return the index of the parameter that holds the number of the state to jump to; nothing for
/// commands that never jump. The same in decoder, editor and file form.
std::optional<int> JumpParameter(std::int32_t command);

inline bool IsJumpCommand(std::int32_t command) { return JumpParameter(command).has_value(); }

} // namespace scripts
