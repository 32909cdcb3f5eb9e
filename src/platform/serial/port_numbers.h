#pragma once

#include "platform/files/disk.h"
#include "platform/serial/attached_devices.h"
#include "platform/serial/number_memory.h"

#include <QString>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace serial {

struct Port {
    int number = 0;
    std::string path; ///< of the device
    QString name;     ///< description and number: "KELDA Interface (COM7)"
};

struct Port_Places {
    Device_Places devices;
    /// The program's folder in the data of this user: `ports` in it holds the links com1..com64,
    /// and `port_numbers.txt` the numbers that adapters were given.
    std::string user;
};

/// Which device has which number, 1..64: links of the user first, then the built-in ports from 1
/// up, then adapters, each under the number that it had before. A number whose link leads nowhere
/// stays reserved, and a device that a link names has no other number. Any thread may ask.
class Port_Numbers {
public:
    Port_Numbers(files::Disk& disk, Port_Places places);

    void look(); ///< anew
    /// In ascending order, as of the last look; the first one looks by itself.
    std::vector<Port> ports();
    std::optional<Port> port(int number);
    /// Why numbers given since the program began cannot be kept.
    std::optional<files::Error> trouble();

private:
    void look_inside();
    void give_to_links(std::vector<Attached_Device>& devices, std::set<int>& taken);
    void give_to_built_in(const std::vector<Attached_Device>& devices, std::set<int>& taken);
    void give_to_adapters(const std::vector<Attached_Device>& devices, std::set<int> taken);
    void add(int number, const std::string& path, const QString& description);

    files::Disk& disk_;
    Port_Places places_;
    std::mutex mutex_;
    bool looked_ = false;
    std::vector<Port> ports_;
    Number_Memory memory_;
    std::optional<files::Error> trouble_;
};

} // namespace serial
