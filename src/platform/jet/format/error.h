#pragma once

#include "platform/failure/blocked.h"
#include "platform/failure/error.h"

namespace jet {

/// Thrown by everything in this folder; the subject names the file, table or column.
using failure::Error;
using Failure = failure::Kind;
using failure::Blocked;

} // namespace jet
