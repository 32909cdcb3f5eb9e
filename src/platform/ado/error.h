#pragma once

#include "platform/failure/error.h"

namespace ado {

/// Thrown by everything in this folder; the subject names the file, table, column or statement.
using failure::Error;
using Failure = failure::Kind;

} // namespace ado
