#pragma once

#include "link/transport/bit_loop.h"
#include "link/transport/services.h"

#include <array>

namespace link_transport {

/// A decoder on the programming track, behind an interface that turns every byte into track signal
/// and every answer of the decoder into a byte.
class cls_QD_Schiene_Soundload final : public Services {
public:
    cls_QD_Schiene_Soundload(link_serial::frm_Soundload_cls& host, link_types::Link_Values& values,
                             Bit_Loop& loop = real_bit_loop());

    bool Connect() override;
    void Disconnect() override;
    void ReadDecoderInfo() override;
    void ExitProgramming() override {}
    int ReadCV(int cv) override;
    bool WriteCV(int cv, std::uint8_t value) override;
    bool SetCVStart() override;
    bool WriteSetCV(int cv, std::uint8_t value) override;
    bool SetCVEnd() override;
    int GetSetCVCapacity() override;
    bool out_of_step() override;

private:
    using Set_Packet = std::array<std::uint8_t, 5>;

    bool connect();
    void switch_basu_on();
    void calibrate();
    void send_bits(Bytes bits, std::int32_t counter);
    timing::Milliseconds measure(std::int32_t counter);
    void send_preamble();
    bool identify();

    std::optional<std::uint8_t> read_attempt(int cv);
    std::optional<std::uint8_t> read_bits(const char16_t* line, timing::Milliseconds start);
    void send_read_request(int cv, timing::Milliseconds start);
    void recover();
    void wait_for_answer();
    void settle();
    Set_Packet set_packet(std::uint8_t command, std::uint8_t low, std::uint8_t value);
    bool SendAcked(const Set_Packet& packet);

    Bit_Loop& loop_;
    bool crc_mode_ = false;   ///< the decoder has a protocol version above 0
    bool was_silent_ = false; ///< since Connect, an answer did not come in time
};

/// Numbers under which ReadCV asks for what is no CV.
constexpr int type_code_number = 30000;
constexpr int protocol_version_number = 30001;

} // namespace link_transport
