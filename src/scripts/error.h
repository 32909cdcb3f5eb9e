#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace scripts {

enum class Failure {
    missing, ///< no such state, parameter, script or set
    exists,  ///< a second entry under one key
    full,    ///< 256 states or 16 scripts are the end
    unfit    ///< a number that its place in the script block cannot hold
};

/// Thrown by the script model. `subject` names the thing ("script 2, line 17"), `detail` what is
/// wrong.
struct Error : std::runtime_error {
    Error(Failure kind_, std::string subject_, std::string detail_)
        : std::runtime_error(subject_ + ": " + detail_), kind(kind_), subject(std::move(subject_)),
          detail(std::move(detail_)) {}
    Failure kind;
    std::string subject;
    std::string detail;
};

} // namespace scripts
