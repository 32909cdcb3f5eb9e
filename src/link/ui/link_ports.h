#pragma once

#include "link/transport/bit_loop.h"
#include "platform/serial/scomm.h"
#include "platform/timing/time.h"

#include <functional>
#include <memory>

namespace link_ui {

/// Through what the link reaches the world; others in tests.
struct Link_Ports {
    /// A control for one thread. May be called in the window's thread only.
    std::function<std::unique_ptr<serial::SComm>()> make_control;
    timing::Time& time;
    link_transport::Bit_Loop& loop;
};

/// Those of this machine: real devices, the clock, the processor.
Link_Ports real_ports();

} // namespace link_ui
