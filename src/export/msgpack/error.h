#pragma once

#include "platform/failure/error.h"

namespace msgpack {

/// Thrown by the writer; the stream is as it was before the call.
using failure::Error;
using Failure = failure::Kind;

} // namespace msgpack
