#pragma once

#include "judge.h"

#include <filesystem>

namespace decoder_sim {

/// The pseudo-terminal that stands for the serial port; this is the interface's end of it.
/// @throws std::system_error where the system has none
class Terminal {
public:
    Terminal();
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    const std::string& port() const { return port_; } ///< path of the host's end
    int descriptor() const { return master_; }
    struct Read {
        Bytes bytes;
        bool closed = false; ///< nobody has the host's end open, and nothing is left to read
    };
    Read read();
    void write(Byte byte) const;
    Line_Settings line() const;
    /// A serial port keeps nothing for the next one who opens it; a pseudo-terminal would.
    void drop_unread() const;

private:
    int master_;
    std::string port_;
};

/// A symbolic link to the port, and its device name beside it. Gone at the end, if they are still ours.
class Port_Link {
public:
    /// @param link empty: no link @param name of the device; empty: no file
    /// @throws std::filesystem::filesystem_error, also where something else than a link is there
    Port_Link(std::filesystem::path link, const std::string& name, const std::string& port);
    ~Port_Link();
    Port_Link(const Port_Link&) = delete;
    Port_Link& operator=(const Port_Link&) = delete;

private:
    std::filesystem::path link_, name_file_;
    std::string port_;
};

} // namespace decoder_sim
