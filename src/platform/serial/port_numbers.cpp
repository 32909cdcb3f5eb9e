#include "platform/serial/port_numbers.h"

#include "platform/files/replace.h"
#include "platform/serial/folder_entries.h"
#include "platform/serial/scomm.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <utility>

namespace serial {
namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t longest_memory = 65'536; // far more than 64 lines can have

std::string memory_file(const std::string& folder) { return folder + "/port_numbers.txt"; }

/// Nothing remembered where the file is missing or damaged.
Number_Memory stored_memory(files::Disk& disk, const std::string& folder) {
    try {
        const auto file = disk.open(memory_file(folder), files::Access::read);
        std::vector<std::byte> bytes(std::min(file->size(), longest_memory));
        bytes.resize(file->read_at(0, bytes));
        return Number_Memory::decode(bytes).value_or(Number_Memory());
    } catch (const files::Error&) { // what lasts is told when it is to be kept
        return {};
    }
}

/// The first line of the file beside a link, which says what its device is called.
QString name_beside(const fs::path& link) {
    const std::string line = first_line_of(link.string() + ".name");
    return QString::fromStdString(line).simplified().left(200);
}

/// The links com1..com64 by their numbers, each with the path that it leads to.
std::map<int, fs::path> links_of_user(const fs::path& folder) {
    std::map<int, fs::path> links;
    for (int number = 1; number <= highest_port; ++number) {
        std::error_code none;
        const fs::path link = folder / ("com" + std::to_string(number));
        const fs::path target = fs::read_symlink(link, none);
        if (!target.empty()) links[number] = (folder / target).lexically_normal();
    }
    return links;
}

std::string same_device(const fs::path& path) {
    std::error_code none;
    return fs::canonical(path, none).string();
}

} // namespace

Port_Numbers::Port_Numbers(files::Disk& disk, Port_Places places)
    : disk_(disk), places_(std::move(places)) {}

void Port_Numbers::look() {
    const std::lock_guard guard(mutex_);
    look_inside();
}

std::vector<Port> Port_Numbers::ports() {
    const std::lock_guard guard(mutex_);
    if (!looked_) look_inside();
    return ports_;
}

std::optional<Port> Port_Numbers::port(int number) {
    const std::lock_guard guard(mutex_);
    if (!looked_) look_inside();
    const auto found = std::ranges::find(ports_, number, &Port::number);
    return found == ports_.end() ? std::nullopt : std::optional(*found);
}

std::optional<files::Error> Port_Numbers::trouble() {
    const std::lock_guard guard(mutex_);
    return trouble_;
}

void Port_Numbers::look_inside() {
    looked_ = true;
    ports_.clear();
    std::vector<Attached_Device> devices = attached_devices(places_.devices);
    std::set<int> taken;
    give_to_links(devices, taken);
    give_to_built_in(devices, taken);
    give_to_adapters(devices, std::move(taken));
    std::ranges::sort(ports_, {}, &Port::number);
}

void Port_Numbers::add(int number, const std::string& path, const QString& description) {
    ports_.push_back({number, path, QStringLiteral("%1 (COM%2)").arg(description).arg(number)});
}

/// Takes the devices that links name out of the others.
void Port_Numbers::give_to_links(std::vector<Attached_Device>& devices, std::set<int>& taken) {
    const fs::path folder = fs::path(places_.user) / "ports";
    std::set<std::string> linked;
    for (const auto& [number, target] : links_of_user(folder)) {
        taken.insert(number);
        const std::string device = same_device(target);
        if (device.empty()) continue;
        linked.insert(device);
        QString name = name_beside(folder / ("com" + std::to_string(number)));
        const auto known = std::ranges::find(
            devices, device, [](const Attached_Device& other) { return same_device(other.path); });
        if (name.isEmpty()) {
            name = QString::fromStdString(known == devices.end() ? target.string()
                                                                 : known->description);
        }
        add(number, target.string(), name);
    }
    std::erase_if(devices, [&](const Attached_Device& device) {
        return linked.contains(same_device(device.path));
    });
}

void Port_Numbers::give_to_built_in(const std::vector<Attached_Device>& devices,
                                    std::set<int>& taken) {
    int next = 1;
    for (const Attached_Device& device : devices) {
        if (!device.adapter.empty()) continue;
        while (taken.contains(next)) ++next;
        if (next > highest_port) return;
        taken.insert(next);
        add(next, device.path, QString::fromStdString(device.description));
    }
}

void Port_Numbers::give_to_adapters(const std::vector<Attached_Device>& devices,
                                    std::set<int> taken) {
    const Number_Memory stored = stored_memory(disk_, places_.user);
    memory_.learn(stored);
    std::vector<std::string> adapters;
    for (const Attached_Device& device : devices) {
        if (!device.adapter.empty()) adapters.push_back(device.adapter);
    }
    const std::vector<int> numbers = memory_.numbers(adapters, std::move(taken));
    std::size_t i = 0;
    for (const Attached_Device& device : devices) {
        if (device.adapter.empty()) continue;
        const int number = numbers[i++];
        if (number != 0) add(number, device.path, QString::fromStdString(device.description));
    }
    if (memory_ == stored) return;
    try {
        files::replace_file(disk_, memory_file(places_.user), memory_.encode());
        trouble_.reset();
    } catch (const files::Error& error) {
        trouble_ = error;
    }
}

} // namespace serial
