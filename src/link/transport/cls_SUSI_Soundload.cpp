#include "link/transport/cls_SUSI_Soundload.h"

#include "link/transport/crc8.h"
#include "link/types/mod_decodertypen.h"

#include <utility>

namespace link_transport {
namespace {

using link_types::no_value;

constexpr std::uint8_t susi_acknowledge = 0x06;
constexpr std::size_t answer_length = 3; ///< status, value, checksum of the value
constexpr std::size_t checked_from = 5;  ///< what stands before is not in the checksum of a frame
constexpr int read_attempts = 6;
constexpr int write_attempts = 11;
constexpr int ticks_for_reading = 10;
constexpr int ticks_for_writing = 50;

serial::Bytes with_checksum(serial::Bytes frame) {
    frame.push_back(PacketChecksum(std::span(frame).subspan(checked_from), 0));
    return frame;
}

serial::Bytes read_frame(int cv) {
    return with_checksum({0, 0, 0, 2, 1, 1, 0, 0, 0, high_byte(cv), low_byte(cv)});
}

serial::Bytes write_frame(int cv, std::uint8_t value) {
    return with_checksum({0, 0, 0, 0, 1, 2, 0, 0, 0, high_byte(cv), low_byte(cv), value});
}

serial::Bytes leave_frame() { return with_checksum({0, 0, 0, 0, 0, 7, 0x55, 0xAA, 0}); }

/// The value of an answer that is whole.
int value_in(std::span<const std::uint8_t> answer) {
    const bool whole = answer.size() == answer_length;
    return whole && PacketChecksum(answer.subspan(1, 1), 0) == answer[2] ? answer[1] : no_value;
}

} // namespace

bool cls_SUSI_Soundload::Connect() {
    return connecting([this] { return connect(); });
}

bool cls_SUSI_Soundload::connect() {
    open_port();
    Pause(50);
    if (aborted()) return false;
    host_.SComm1.write_text(QStringLiteral("SUSIV2\r"));
    Pause(50);
    const QString answer = host_.SComm1.read_text();
    host_.SComm1.receive_threshold(1);
    if (!answer.contains(QStringLiteral("OK\r"))) return false;
    Pause(50);
    const std::optional<bool> known = identify();
    if (!known) log(QStringLiteral("Fehler beim CV lesen"));
    return known.value_or(false);
}

std::optional<bool> cls_SUSI_Soundload::identify() {
    using link_types::Decoder_Info;
    if (ReadCV(8) != link_types::ExpectedManufacturerId) return false;
    const int code = ReadCV(250);
    if (code == no_value) return std::nullopt;
    values_.DecoderTypeCode = static_cast<std::uint8_t>(code);
    link_types::look_up_decoder_type(values_);
    constexpr std::pair<int, std::uint8_t Decoder_Info::*> fields[] = {{7, &Decoder_Info::CV7},
                                                                       {65, &Decoder_Info::CV65},
                                                                       {251, &Decoder_Info::CV251},
                                                                       {252, &Decoder_Info::CV252},
                                                                       {253, &Decoder_Info::CV253}};
    Decoder_Info& info = values_.info;
    for (const auto& [cv, field] : fields) {
        const int value = ReadCV(cv);
        if (value == no_value) return std::nullopt;
        info.*field = static_cast<std::uint8_t>(value);
        if (cv == 65) info.CV250 = values_.DecoderTypeCode;
    }
    if (info.CV251 == 255 && info.CV252 == 255 && info.CV253 == 255)
        info.CV250 = 255; // no serial number
    return true;
}

void cls_SUSI_Soundload::Disconnect() {
    if (host_.SComm1.is_open()) ExitProgramming();
    connected_ = false;
    host_.Timer1_Enabled(false);
    close_port();
    host_.close();
}

// Leaving is owed to the interface even after a cancel, and nothing waits for its answer then.
void cls_SUSI_Soundload::ExitProgramming() {
    ignoring_errors([this] {
        receive_bytes();
        SendBytes(leave_frame());
        WaitReceive(ticks_for_writing);
    });
}

/// @return what came of an answer in time
serial::Bytes cls_SUSI_Soundload::ask(const serial::Bytes& frame) {
    host_.SComm1.clear_input();
    SendBytes(frame);
    serial::Bytes answer;
    ticks_left_ = ticks_for_reading;
    timed_out_ = false;
    host_.Timer1_Enabled(true);
    while (answer.size() < answer_length && !timed_out_ && !aborted()) {
        host_.yield();
        for (const std::uint8_t byte : host_.SComm1.read_bytes())
            if (answer.size() < answer_length) answer.push_back(byte);
    }
    host_.Timer1_Enabled(false);
    if (!timed_out_) return answer;
    Pause(10);
    timed_out_ = true; // the pause has its own end
    return answer;
}

int cls_SUSI_Soundload::ReadCV(int cv) {
    if (!connected_) return 0;
    int value = no_value;
    serial::Bytes answer;
    timed_out_ = false;
    ignoring_errors([&] {
        host_.SComm1.read_length(0);
        host_.SComm1.receive_threshold(0); // what comes is collected here
        for (int attempt = 0; attempt < read_attempts && value == no_value && may_go_on();
             ++attempt) {
            if (attempt > 0) log(QStringLiteral("Read retry %1").arg(attempt));
            answer = ask(read_frame(cv));
            value = timed_out_ ? no_value : value_in(answer);
        }
    });
    if (timed_out_) {
        log(QStringLiteral("Read CV Timeout"));
        return value;
    }
    QString data;
    for (const std::uint8_t byte : answer) data += QString::number(byte) + u' ';
    log(QStringLiteral("Read CV%1 Bytes Read: %2 Data: ").arg(cv).arg(answer.size()) + data);
    return value;
}

bool cls_SUSI_Soundload::WriteCV(int cv, std::uint8_t value) {
    if (!connected_) return false;
    if (cv == 7 || cv == 8) return true;
    bool written = false;
    ignoring_errors([&] {
        receive_bytes();
        host_.SComm1.clear_input();
        for (int left = write_attempts; left > 0 && !written && may_go_on(); --left) {
            SendBytes(write_frame(cv, value));
            WaitReceive(ticks_for_writing);
            written = received(susi_acknowledge);
        }
    });
    return written;
}

} // namespace link_transport
