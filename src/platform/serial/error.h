#pragma once

#include "platform/failure/error.h"

#include <string>

namespace serial {

using Failure = failure::Kind;

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
struct [[nodiscard]] Error : failure::Error {
    using failure::Error::Error;
    Missing_Rights rights; ///< of denied
    std::string holder; ///< of locked_elsewhere: the program and its number, as far as it is told
};

} // namespace serial
