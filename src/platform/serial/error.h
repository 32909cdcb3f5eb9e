#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace serial {

/// What went wrong with a port; decides what the program does and says.
enum class Failure {
    not_found, ///< no device has the number, or the device is not there
    no_rights, ///< see Missing_Rights
    held,      ///< by another program, or by another control of this one
    no_port,   ///< what has the number is no serial port
    settings,  ///< a settings text that is none, or one that the driver does not take
    vanished,  ///< was open and is gone: unplugged, hung up
    not_open,
    device ///< any other failure
};

/// What a user would need to open a device.
struct Missing_Rights {
    std::string owner; ///< who may
    std::string group; ///< its members may; empty: no group may
    bool joined =
        false; ///< the list of users has us in the group, but this session began before that
    bool listed = false; ///< there is an access list for certain users, and we are not in it
};

/// Thrown by everything in this folder. `subject` is the path of the device, "COM7" where the
/// number has none; `detail` the system's own words.
struct Error : std::runtime_error {
    Error(Failure kind_, std::string subject_, std::string detail_)
        : std::runtime_error(subject_ + ": " + detail_), kind(kind_), subject(std::move(subject_)),
          detail(std::move(detail_)) {}
    Failure kind;
    std::string subject;
    std::string detail;
    Missing_Rights rights; ///< of no_rights
    std::string holder;    ///< of held: the program and its number, as far as the system tells
};

} // namespace serial
