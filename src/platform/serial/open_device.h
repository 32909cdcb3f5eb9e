#pragma once

#include "platform/serial/error.h"

#include <string>
#include <utility>

namespace serial {

/// A descriptor that closes itself.
class Handle {
public:
    Handle() = default;
    explicit Handle(int number) : number_(number) {}
    Handle(Handle&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Handle& operator=(Handle&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Handle();
    int number() const { return number_; } ///< -1: none

private:
    int number_ = -1;
};

/// Where programs lay files that say who uses a device.
constexpr const char* lock_folder = "/run/lock";

/// Opens a terminal device without waiting for anything and keeps others from opening it. Throws
/// Error that says what a user needs to know.
Handle open_device_alone(const std::string& path, const std::string& locks = lock_folder);

} // namespace serial
