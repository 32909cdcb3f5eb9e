#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace msgpack {

enum class Failure {
    overflow, ///< a count, length or address beyond what its bytes can hold
    negative, ///< the writer has no encoding for numbers below 0
    outside   ///< no such address slot, or a target array too short for the stream
};

/// Thrown by the writer; the stream is as it was before the call.
struct Error : std::runtime_error {
    Error(Failure kind_, std::string subject_, std::string detail_)
        : std::runtime_error(subject_ + ": " + detail_), kind(kind_), subject(std::move(subject_)),
          detail(std::move(detail_)) {}
    Failure kind;
    std::string subject;
    std::string detail;
};

} // namespace msgpack
