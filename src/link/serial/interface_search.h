#pragma once

#include "link/types/link_values.h"
#include "platform/serial/scomm.h"
#include "platform/timing/time.h"

#include <array>
#include <functional>
#include <optional>
#include <vector>

namespace link_serial {

enum class Port_Kind {
    exists, ///< and nothing more is known
    basul,  ///< the update device that answers a change of RTS
    korli   ///< KORLI or FENTO, which answers a command and gives bytes to the track
};

/// How a port stands in the list: "COM7 - KORLI/FENTO".
QString port_text(int number, Port_Kind kind);

/// The status byte of a BASUL, bit 0 first.
std::array<bool, 8> decoded_status(serial::Byte status);

/// Finds out behind which port an interface is. A job: it runs in a thread that it may block, and
/// sees nothing but its control and the stop.
class Interface_Search {
public:
    struct Found {
        int port = 0;
        Port_Kind kind = Port_Kind::exists;
    };
    struct Result {
        std::optional<Found> found;
        std::optional<std::int16_t> ComPort; ///< that of the interface, or the first one
        bool BasuModeActive = false;         ///< the interface is in BASU mode now
        std::array<bool, 8> status{};        ///< of a BASUL
    };

    Interface_Search(serial::SComm& control, timing::Time& time, timing::Interruption& stop,
                     link_types::Link_Log& log);

    /// @param candidates existing ports, in the order in which they are tried. Those that cannot be
    /// opened are passed over.
    Result run(const std::vector<int>& candidates);
    /// Takes an interface out of BASU mode.
    void leave_basu(int port);

private:
    bool is_korli(int port);
    bool is_basul(int port);
    std::optional<int> first(const std::vector<int>& candidates,
                             bool (Interface_Search::*test)(int));
    void open(int port);
    void pause(int ticks);

    serial::SComm& control_;
    timing::Time& time_;
    timing::Interruption& stop_;
    link_types::Link_Log& log_;
    std::array<bool, 8> status_{};
};

} // namespace link_serial
