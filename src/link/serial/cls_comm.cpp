#include "link/serial/cls_comm.h"

namespace link_serial {

std::vector<int> existing_ports(serial::SComm& control, int highest) {
    control.look_for_ports();
    std::vector<int> found;
    for (int port = 1; port <= highest; ++port)
        if (!control.device_name(port).isEmpty()) found.push_back(port);
    return found;
}

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
