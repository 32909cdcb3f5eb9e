#pragma once

#include "platform/failure/error.h"

namespace scripts {

/// Thrown by the script model; the subject names the thing ("script 2, line 17").
using failure::Error;
using Failure = failure::Kind;

} // namespace scripts
