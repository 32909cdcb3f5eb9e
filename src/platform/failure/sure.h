#pragma once

namespace failure {

/// Prints what did not hold and where, and ends the program at once, before it does harm.
[[noreturn]] void broken(const char* expression, const char* file, int line) noexcept;

} // namespace failure

/// For what cannot be otherwise unless the program itself is wrong; what comes from a file, the
/// medium or the user is refused with an Error instead. The expression is evaluated in every build.
#define SURE(...)                                                                                  \
    ((__VA_ARGS__) ? static_cast<void>(0) : ::failure::broken(#__VA_ARGS__, __FILE__, __LINE__))
