#pragma once

#include "link/transport/services.h"

namespace link_transport {

/// A decoder behind an interface that speaks SUSI: single CVs only, in frames with a checksum.
class cls_SUSI_Soundload final : public Services {
public:
    using Services::Services;

    bool Connect() override;
    void Disconnect() override;
    void ReadDecoderInfo() override {} ///< Connect has read it
    void ExitProgramming() override;
    int ReadCV(int cv) override;
    bool WriteCV(int cv, std::uint8_t value) override;
    bool SetCVStart() override { return false; } ///< SUSI knows no CV sets
    bool WriteSetCV(int, std::uint8_t) override { return false; }
    bool SetCVEnd() override { return false; }
    int GetSetCVCapacity() override { return 0; }
    bool out_of_step() override { return false; } ///< answers have a checksum

private:
    bool connect();
    std::optional<bool> identify(); ///< nothing: a CV could not be read
    serial::Bytes ask(const serial::Bytes& frame);
};

} // namespace link_transport
