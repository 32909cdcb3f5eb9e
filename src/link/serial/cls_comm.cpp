#include "link/serial/cls_comm.h"

namespace link_serial {

cls_comm::cls_comm(serial::SComm& control, link_types::Link_Values& values,
                   std::function<void()> show_ports)
    : control_(control), values_(values), show_ports_(std::move(show_ports)) {}

void cls_comm::SelectPort() {
    control_.look_for_ports();
    if (!susi_) {
        if (!port_exists()) show_ports_();
        return;
    }
    if (const auto port = find_interface())
        values_.ComPort = static_cast<std::int16_t>(*port);
    else
        show_ports_();
}

bool cls_comm::port_exists() {
    return control_.device_name(values_.ComPort).contains(QStringLiteral("COM"));
}

std::optional<int> cls_comm::find_interface() {
    for (int port = 1; port <= serial::highest_port; ++port)
        if (control_.device_name(port).contains(interface_name)) return port;
    return std::nullopt;
}

} // namespace link_serial
