#include "link/ui/link_ports.h"

#include "app/mod_main.h"
#include "platform/files/disk.h"
#include "platform/serial/real_scomm.h"

namespace link_ui {

Link_Ports real_ports() {
    // made at the first use, when the folder of the user's data is known
    const auto make_control = [numbers = std::shared_ptr<serial::Port_Numbers>()]() mutable {
        if (!numbers)
            numbers = std::make_shared<serial::Port_Numbers>(
                files::real_disk(),
                serial::Port_Places{{}, app::globals.UserDataDir.toStdString()});
        return serial::real_scomm(*numbers);
    };
    return {make_control, timing::real_time(), link_transport::real_bit_loop()};
}

} // namespace link_ui
