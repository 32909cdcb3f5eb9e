#pragma once

#include "link/types/link_values.h"
#include "platform/serial/scomm.h"

#include <functional>
#include <optional>

namespace link_serial {

/// The ports that there are, up to a number, in ascending order. Looks for them anew.
std::vector<int> existing_ports(serial::SComm& control, int highest = serial::highest_port);

/// What the name of the interface's own ports contains.
inline const QString interface_name = QStringLiteral("KELDA Interface");

/// Makes sure that there is a port to talk to before a job begins. Belongs to the window's thread,
/// since it may ask the user.
class cls_comm {
public:
    /// @param show_ports lets the user choose, and changes ComPort
    cls_comm(serial::SComm& control, link_types::Link_Values& values,
             std::function<void()> show_ports);

    /// 2: the decoder is reached over SUSI; else on the programming track.
    void transport(int which) { susi_ = which == 2; }
    bool susi() const { return susi_; }
    void SelectPort();

private:
    bool port_exists();
    std::optional<int> find_interface();

    serial::SComm& control_;
    link_types::Link_Values& values_;
    std::function<void()> show_ports_;
    bool susi_ = false;
};

} // namespace link_serial
