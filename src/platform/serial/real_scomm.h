#pragma once

#include "platform/serial/port_numbers.h"
#include "platform/serial/scomm.h"

#include <memory>

namespace serial {

/// A control over the ports of this computer, its waits by the clock of timing::real_time(). The
/// numbers must outlive it.
std::unique_ptr<SComm> real_scomm(Port_Numbers& numbers);

} // namespace serial
