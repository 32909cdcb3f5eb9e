#pragma once

#include <QString>
#include <cstdint>

namespace link_types {

/// CV8 of the decoders that we serve: the number that the NMRA reserves for public-domain and
/// do-it-yourself decoders.
constexpr int ExpectedManufacturerId = 13;
/// What reading a CV gives instead of 0..255 when it has failed.
constexpr int no_value = 256;

/// What a decoder says of itself.
struct Decoder_Info {
    std::uint8_t CV7 = 0;  ///< version
    std::uint8_t CV65 = 0; ///< version behind the point
    std::uint8_t CV250 = 0;
    std::uint8_t CV251 = 0; ///< this and the next two: serial number
    std::uint8_t CV252 = 0;
    std::uint8_t CV253 = 0;
    bool operator==(const Decoder_Info&) const = default;
};

/// Decides which CVs a decoder takes and under which numbers.
enum class Family_Group {
    unknown,
    cv256, ///< decoders with 256 CVs
    cv1024,
    sound ///< names begin with QR, 1024 CVs
};

/// What the type code of a decoder means.
struct Decoder_Type {
    QString name;
    Family_Group group = Family_Group::unknown;
    std::int16_t cv_space = 1024; ///< how many CVs it has: 256, 1023 or 1024
    bool operator==(const Decoder_Type&) const = default;
};

/// What all who talk to decoders share. A job works on a copy and sends its values back.
struct Link_Values {
    std::int16_t ComPort = 1;       ///< 1..64
    bool BasuModeActive = false;    ///< the interface gives bytes to the track
    std::int32_t TimingCounter = 0; ///< rounds of an empty loop that make a bit; 0: not measured
    std::int16_t TimingTarget = 50; ///< in milliseconds
    std::int16_t PreambleCount = 10;
    std::uint8_t DecoderTypeCode = 0;
    Decoder_Type decoder;
    Decoder_Info info;
    bool operator==(const Link_Values&) const = default;
};

/// Takes every step of the link, a line each.
class Link_Log {
public:
    virtual ~Link_Log() = default;
    virtual void line(const QString& text) = 0;
};

} // namespace link_types
