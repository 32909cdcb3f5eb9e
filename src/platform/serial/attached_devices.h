#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace serial {

/// Where the system shows its devices; other folders in tests.
struct Device_Places {
    std::string devices = "/dev";
    std::string tty_class = "/sys/class/tty";
    /// So long the links that name a new device may take to appear.
    std::chrono::milliseconds settling{1000};
};

struct Attached_Device {
    std::string path;        ///< "/dev/ttyUSB0"
    std::string description; ///< what the device says it is, else what its node is called
    /// What names this very adapter, wherever it is plugged in, as far as it can be told: "id:" and
    /// its name in serial/by-id, else "path:" and where it is plugged in, else "name:" and the name
    /// of its node. Empty for a built-in port.
    std::string adapter;
};

/// The built-in ports that really exist, in the order of their numbers, then USB and ACM ports in
/// the order of `adapter`.
std::vector<Attached_Device> attached_devices(const Device_Places& places);

} // namespace serial
