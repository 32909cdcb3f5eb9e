#include "platform/failure/sure.h"

#include <cstdio>
#include <cstdlib>

namespace failure {

void broken(const char* expression, const char* file, int line) noexcept {
    std::fprintf(stderr, "%s:%d: this must hold: %s\n", file, line, expression);
    std::abort();
}

} // namespace failure
