#include "platform/serial/attached_devices.h"

#include "platform/serial/folder_entries.h"
#include "platform/serial/open_device.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <linux/serial.h>
#include <map>
#include <mutex>
#include <optional>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <utility>

namespace serial {
namespace {

namespace fs = std::filesystem;

/// A line of text about a device, without what does not belong into one; empty: none.
std::string attribute(const fs::path& file) {
    std::string text = first_line_of(file);
    std::erase_if(text, [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 0x7F; });
    while (text.ends_with(' ')) text.pop_back();
    return text.substr(0, 200);
}

/// "ttyS12" -> 12 for the prefix "ttyS".
std::optional<int> number_behind(const std::string& prefix, const std::string& name) {
    const std::string digits = name.starts_with(prefix) ? name.substr(prefix.size()) : "";
    if (digits.empty() || digits.size() > 4 ||
        !std::ranges::all_of(digits, [](unsigned char c) { return std::isdigit(c) != 0; })) {
        return std::nullopt;
    }
    return std::stoi(digits);
}

bool driver_knows(const std::string& path) {
    const Handle device(::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    if (device.number() < 0) return errno == EBUSY;
    serial_struct driver{};
    return ::ioctl(device.number(), TIOCGSERIAL, &driver) == 0 && driver.type != PORT_UNKNOWN;
}

/// The driver keeps nodes for ports that a computer might have. It says which it found; where only
/// the administrator may read that, those that firmware or a bus announced are real, and the others
/// are asked. Asking means opening, which would switch the lines of a real one, so it comes last.
bool is_real(const Device_Places& places, const std::string& name) {
    const fs::path entry = fs::path(places.tty_class) / name;
    if (const std::string type = attribute(entry / "type"); !type.empty()) return type != "0";
    std::error_code ignored;
    const std::string place = fs::canonical(entry, ignored).string();
    if (place.find("/platform/serial8250/") == std::string::npos) return true;
    static std::mutex mutex;
    static std::map<std::string, bool> answers; // once is enough
    const std::lock_guard guard(mutex);
    const std::string path = fs::path(places.devices) / name;
    const auto [answer, is_first] = answers.try_emplace(path, false);
    if (is_first) answer->second = driver_knows(path);
    return answer->second;
}

/// What the USB device calls itself, and its interface where it has a name of its own.
std::string description(const Device_Places& places, const std::string& name) {
    std::error_code ignored;
    fs::path folder = fs::canonical(fs::path(places.tty_class) / name, ignored);
    std::string interface;
    for (int level = 0; level < 6 && folder.has_relative_path(); ++level) {
        if (interface.empty()) interface = attribute(folder / "interface");
        std::string product = attribute(folder / "product");
        if (!product.empty()) {
            if (product.find(interface) == std::string::npos)
                product.append(", ").append(interface);
            return product;
        }
        folder = folder.parent_path();
    }
    return interface.empty() ? name : interface;
}

/// Which device each link in the folder leads to.
std::map<std::string, std::string> links_in(const fs::path& folder) {
    std::map<std::string, std::string> names;
    std::error_code ignored;
    for (const fs::path& link : entries_of(folder)) {
        const std::string device = fs::canonical(link, ignored).string();
        const std::string name = link.filename().string();
        if (device.empty()) continue;
        std::string& known = names[device]; // of several the same one every time
        if (known.empty() || name < known) known = name;
    }
    return names;
}

bool is_new(const std::string& path, std::chrono::milliseconds settling) {
    struct stat status {};
    if (::stat(path.c_str(), &status) < 0) return true;
    const auto made = std::chrono::seconds(status.st_ctim.tv_sec) +
                      std::chrono::nanoseconds(status.st_ctim.tv_nsec);
    const auto age = std::chrono::system_clock::now().time_since_epoch() - made;
    return age >= age.zero() && age < settling;
}

} // namespace

std::vector<Attached_Device> attached_devices(const Device_Places& places) {
    std::vector<std::pair<int, Attached_Device>> built_in;
    std::vector<Attached_Device> adapters;
    const auto ids = links_in(fs::path(places.devices) / "serial" / "by-id");
    const auto plugs = links_in(fs::path(places.devices) / "serial" / "by-path");
    std::error_code ignored;
    for (const fs::path& entry : entries_of(places.tty_class)) {
        const std::string name = entry.filename().string();
        const fs::path path = fs::path(places.devices) / name;
        if (!fs::exists(path, ignored)) continue;
        if (const std::optional<int> number = number_behind("ttyS", name)) {
            if (is_real(places, name)) built_in.push_back({*number, {path.string(), name, {}}});
            continue;
        }
        if (!number_behind("ttyUSB", name) && !number_behind("ttyACM", name)) continue;
        const std::string real = fs::canonical(path, ignored).string();
        std::string adapter = "name:" + name;
        if (const auto id = ids.find(real); id != ids.end()) {
            adapter = "id:" + id->second;
        } else if (const auto plug = plugs.find(real); plug != plugs.end()) {
            adapter = "path:" + plug->second;
        } else if (is_new(real, places.settling)) {
            continue;
        }
        adapters.push_back({path.string(), description(places, name), adapter});
    }
    std::ranges::sort(built_in, {}, &std::pair<int, Attached_Device>::first);
    std::ranges::sort(adapters, {}, &Attached_Device::adapter);
    std::vector<Attached_Device> all;
    all.reserve(built_in.size() + adapters.size());
    for (auto& [number, device] : built_in) all.push_back(std::move(device));
    std::ranges::move(adapters, std::back_inserter(all));
    return all;
}

} // namespace serial
