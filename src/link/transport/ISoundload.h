#pragma once

#include "link/serial/frm_Soundload_cls.h"
#include "link/types/link_values.h"

#include <cstdint>
#include <optional>

namespace link_transport {

/// All traffic with a decoder. Nothing here throws: what the port refuses ends an operation as a
/// failed one, and trouble() says why. Every operation but Connect does nothing, and returns 0 or
/// false, while not connected.
class ISoundload : public link_serial::Ticked {
public:
    virtual bool Connect() = 0;
    virtual void Disconnect() = 0; ///< also after a Connect that failed
    virtual void ReadDecoderInfo() = 0;
    virtual void ExitProgramming() = 0;
    /// @param cv from 1
    /// @return 0..255, or no_value
    virtual int ReadCV(int cv) = 0;
    virtual bool WriteCV(int cv, std::uint8_t value) = 0;
    virtual bool SetCVStart() = 0;
    virtual bool WriteSetCV(int cv, std::uint8_t value) = 0;
    virtual bool SetCVEnd() = 0;
    virtual int GetSetCVCapacity() = 0; ///< capacity class, or no_value

    /// Whether more answers came than were asked for, which shifts all that is read afterwards. Waits
    /// for a tick.
    virtual bool out_of_step() = 0;
    /// What the port refused last, and whether that ended the link.
    virtual const std::optional<serial::Error>& trouble() const = 0;
};

} // namespace link_transport
