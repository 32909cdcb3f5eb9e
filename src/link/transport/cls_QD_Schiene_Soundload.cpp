// Finding the decoder: port, BASU mode, timing, preamble, identity.

#include "link/transport/cls_QD_Schiene_Soundload.h"

#include "link/types/mod_decodertypen.h"

#include <algorithm>
#include <cmath>

namespace link_transport {
namespace {

using timing::Milliseconds;

constexpr std::uint8_t one_bit = 0xEF;
constexpr std::uint8_t zero_bit = 0xBF;
constexpr std::int32_t first_counter = 100000;
constexpr std::int32_t least_counter = 1000;
constexpr int last_try = 20; ///< counted from 0
constexpr int pairs_measured = 20;
constexpr Milliseconds power_up{5};
constexpr int most_attempts = 3;

QString boolean_text(bool value) {
    return value ? QStringLiteral("Wahr") : QStringLiteral("Falsch");
}

/// Halves go to the even neighbour, which is what the rounding mode of the processor does.
double rounded(double value) { return std::nearbyint(value); }

} // namespace

cls_QD_Schiene_Soundload::cls_QD_Schiene_Soundload(link_serial::frm_Soundload_cls& host,
                                                   link_types::Link_Values& values, Bit_Loop& loop)
    : Services(host, values), loop_(loop) {}

bool cls_QD_Schiene_Soundload::Connect() {
    crc_mode_ = was_silent_ = false;
    log({});
    log({});
    log(QStringLiteral("Öffne Port %1").arg(values_.ComPort));
    return connecting([this] { return connect(); });
}

bool cls_QD_Schiene_Soundload::connect() {
    open_port();
    int attempts = 0;
    const bool believed_on = values_.BasuModeActive;
    if (!believed_on) {
        switch_basu_on();
        attempts = 1;
    }
    receive_bytes();
    if (values_.TimingCounter == 0) calibrate();
    for (;;) {
        if (aborted()) return false;
        send_preamble();
        bool knows = false;
        ignoring_errors([&] { knows = ReadCV(8) == link_types::ExpectedManufacturerId; });
        if (knows) return identify();
        RtsOff();
        if (++attempts == most_attempts || !host_.SComm1.is_open()) {
            // it may have been without power since, and have forgotten it
            if (believed_on) values_.BasuModeActive = false;
            close_port();
            return false;
        }
        Pause(20 * attempts);
    }
}

void cls_QD_Schiene_Soundload::switch_basu_on() {
    Pause(50);
    log(QStringLiteral("KORLI suchen"));
    if (aborted()) return;
    host_.SComm1.write_text(QStringLiteral("\r"));
    Pause(10);
    host_.yield();
    if (aborted()) return;
    host_.SComm1.write_text(QStringLiteral("BASU_EIN\r"));
    Pause(50);
    if (host_.SComm1.read_text() != QStringLiteral("OK\r")) return;
    values_.BasuModeActive = true;
    log(QStringLiteral("KORLI gefunden"));
    Pause(20);
}

// A preamble or measurement that has begun is sent to its end: on the track a broken one is noise.
void cls_QD_Schiene_Soundload::send_bits(Bytes bits, std::int32_t counter) {
    for (const std::uint8_t bit : bits) {
        SendBytes({bit});
        loop_.count_to(counter);
    }
}

Milliseconds cls_QD_Schiene_Soundload::measure(std::int32_t counter) {
    const Milliseconds start = host_.time().now();
    for (int i = 0; i < pairs_measured; ++i) send_bits({one_bit, zero_bit}, counter);
    return host_.time().now() - start;
}

// What a cancel or a lost port has broken off is not kept: no later link would measure again.
void cls_QD_Schiene_Soundload::calibrate() {
    const double target = values_.TimingTarget;
    std::int32_t counter = first_counter;
    log(QStringLiteral("Timing messen. Soll=%1").arg(values_.TimingTarget));
    bool good = false;
    for (int attempt = 0; attempt <= last_try && !good; ++attempt) {
        if (aborted()) return;
        const auto measured = static_cast<double>(measure(counter).count());
        log(QStringLiteral("  Try=%1 : Counter=%2 : Zeit=%3")
                .arg(attempt)
                .arg(counter)
                .arg(measured));
        good = measured >= target && measured <= 1.5 * target;
        if (good) break;
        const double counted = std::max(measured, rounded(target / 2));
        const double corrected = rounded(counter / counted * target);
        counter = std::max(least_counter, static_cast<std::int32_t>(corrected));
        host_.yield();
    }
    values_.TimingCounter = counter;
    log(QStringLiteral("Timing ok = ") + boolean_text(good));
    log(QStringLiteral("Timing    = %1").arg(counter));
}

void cls_QD_Schiene_Soundload::send_preamble() {
    Pause(1);
    if (aborted()) return;
    RtsOn();
    const Milliseconds start = host_.time().now();
    if (!host_.time().wait_until(start + power_up, host_.abort())) return;
    for (int i = 0; i < values_.PreambleCount; ++i)
        send_bits({zero_bit, one_bit, one_bit}, values_.TimingCounter);
    const std::int64_t taken = milliseconds_since(start);
    Pause(10);
    log(QStringLiteral("Preamble gesendet. Anz.=%1 Zeit=%2ms")
            .arg(values_.PreambleCount)
            .arg(taken));
    host_.yield();
    host_.SComm1.clear_input();
}

// What the decoder does not say of itself counts as nothing, but a link that is cut is none.
bool cls_QD_Schiene_Soundload::identify() {
    const auto cut = [this] {
        log(QStringLiteral("Fehler beim CV lesen"));
        return false;
    };
    if (const int code = ReadCV(type_code_number); code != link_types::no_value)
        values_.DecoderTypeCode = static_cast<std::uint8_t>(code);
    link_types::look_up_decoder_type(values_);
    if (!may_go_on()) return cut();
    const int version = ReadCV(protocol_version_number);
    if (!may_go_on()) return cut();
    crc_mode_ = version != link_types::no_value && version > 0;
    return true;
}

void cls_QD_Schiene_Soundload::Disconnect() {
    connected_ = false;
    host_.Timer1_Enabled(false);
    ignoring_errors([this] { RtsOff(); });
    close_port();
    host_.close();
}

void cls_QD_Schiene_Soundload::ReadDecoderInfo() {
    using link_types::Decoder_Info;
    constexpr std::pair<int, std::uint8_t Decoder_Info::*> fields[] = {
        {7, &Decoder_Info::CV7},     {65, &Decoder_Info::CV65},   {250, &Decoder_Info::CV250},
        {251, &Decoder_Info::CV251}, {252, &Decoder_Info::CV252}, {253, &Decoder_Info::CV253}};
    for (const auto& [cv, field] : fields) {
        const int value = ReadCV(cv);
        if (value == link_types::no_value) {
            log(QStringLiteral("Fehler beim CV lesen"));
            return;
        }
        values_.info.*field = static_cast<std::uint8_t>(value);
    }
}

} // namespace link_transport
