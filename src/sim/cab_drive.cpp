#include "sim/cab_drive.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <utility>

namespace sim {
namespace {

constexpr std::size_t slot_of_F0 = 28;
constexpr int coupling_cv = 310; ///< key that goes with the drive sound
constexpr int shown_steps = 126;
constexpr int scale = 256; ///< a drive step of so many leaves the speed as it is

std::int16_t narrowed(int value) {
    using Limits = std::numeric_limits<std::int16_t>;
    return static_cast<std::int16_t>(std::clamp<int>(value, Limits::min(), Limits::max()));
}

int floor_quotient(int dividend, int divisor) {
    return (dividend - ((dividend % divisor + divisor) % divisor)) / divisor;
}

int nearest_quotient(int dividend, int divisor) { // halves to even
    const int below = floor_quotient(dividend, divisor);
    const int twice_rest = (dividend - below * divisor) * 2;
    const bool up = twice_rest > divisor || (twice_rest == divisor && below % 2 != 0);
    return up ? below + 1 : below;
}

double read_decimal(const char* begin, const char* end) {
    const bool negative = begin != end && *begin == '-';
    if (begin != end && (*begin == '-' || *begin == '+')) ++begin;
    if (begin == end || (*begin != '.' && (*begin < '0' || *begin > '9'))) return 0; // "inf", too
    double number = 0;
    if (std::from_chars(begin, end, number).ec == std::errc::result_out_of_range)
        number = std::numeric_limits<double>::infinity();
    return negative ? -number : number;
}

double read_whole(const char* begin, const char* end, int base) {
    std::uint32_t number = 0;
    if (std::from_chars(begin, end, number, base).ec == std::errc::result_out_of_range)
        number = std::numeric_limits<std::uint32_t>::max();
    return number;
}

double Val(const QString& text) {
    QByteArray read = text.toUpper().toLatin1();
    read.removeIf([](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; });
    const char* const end = read.constData() + read.size();
    if (read.startsWith("&H")) return read_whole(read.constData() + 2, end, 16);
    if (read.startsWith("&O")) return read_whole(read.constData() + 2, end, 8);
    read.replace('D', 'E'); // both begin the exponent
    return read_decimal(read.constData(), read.constData() + read.size());
}

} // namespace

std::size_t KeyToSlot(int key) {
    if (key == 0) return slot_of_F0;
    return key > 0 && key < cab_keys ? static_cast<std::size_t>(key - 1) : no_key;
}

int SlotToKey(int slot) {
    if (slot == static_cast<int>(slot_of_F0)) return 0;
    return slot >= 0 && slot < static_cast<int>(slot_of_F0) ? slot + 1 : static_cast<int>(no_key);
}

std::optional<std::int16_t> typed_value(const QString& text) {
    const double value = Val(text);
    if (value < 0 || value > 255) return {};
    return static_cast<std::int16_t>(std::lrint(value)); // halves to even
}

std::optional<int> typed_rate(const QString& text) {
    if (text.isEmpty()) return {};
    return static_cast<int>(std::lrint(std::clamp(Val(text), 1.0, 255.0)));
}

Cab_Drive::Cab_Drive(Simulated_Decoder& decoder, Script_CV script_cv)
    : decoder_(decoder), script_cv_(std::move(script_cv)) {}

void Cab_Drive::reset() {
    CabSpeed_ = 0;
    CabDirection_ = 0;
    CabManKey_ = 0;
    CabKeys_.fill(0);
    decoder_.KeyState.fill(0);
    decoder_.ReedLevel.fill(false);
    decoder_.ReedPulse.fill(false);
    decoder_.ReedSeen.fill(false);
    decoder_.DriveStop = false;
}

void Cab_Drive::RampSpeed() {
    std::int16_t& now = decoder_.Werte[drive_step];
    if (now < decoder_.EffectiveSpeed) {
        if (!decoder_.DriveHoldAccel) ++now;
    } else if (now > decoder_.EffectiveSpeed) {
        --now;
    }
}

void Cab_Drive::tick() {
    RampSpeed();
    auto& werte = decoder_.Werte;
    const int missing = werte[target_drive_step] - werte[drive_step];
    werte[acceleration] = narrowed(std::max(missing, 0));
    werte[deceleration] = narrowed(std::max(-missing, 0));
    if (werte[drive_step] == 0) werte[direction] = decoder_.EffectiveDirection;
    UpdateDrive();
}

int Cab_Drive::wanted_direction() const {
    if (decoder_.DriveSetDirection) {
        switch (decoder_.DriveDirectionMode) {
        case 0:
            return CabDirection_;
        case 1:
            return 1 - CabDirection_;
        case 2:
            return 0;
        case 3:
            return 1;
        default:
            break;
        }
    }
    return decoder_.Werte[consist_inverse] == 1 ? 1 - CabDirection_ : CabDirection_;
}

int Cab_Drive::wanted_speed() const {
    const int given = decoder_.DriveSpeedValue;
    int speed = CabSpeed_;
    if (decoder_.DriveSetSpeed) speed = given;
    if (decoder_.DriveLimitSpeed) speed = std::min(speed, given);
    if (decoder_.DriveScaleSpeed) speed = nearest_quotient(given * CabSpeed_, scale);
    return decoder_.DriveStop ? 0 : speed;
}

void Cab_Drive::UpdateDrive() {
    auto& werte = decoder_.Werte;
    werte[target_drive_step] = CabSpeed_;
    werte[target_direction] = narrowed(CabDirection_);
    if (decoder_.DriveStop) werte[drive_step] = 0;
    decoder_.EffectiveDirection = narrowed(wanted_direction());
    const bool turns = decoder_.EffectiveDirection != werte[direction]; // only when it stands
    decoder_.EffectiveSpeed = turns ? std::int16_t{0} : narrowed(wanted_speed());
}

void Cab_Drive::choose_speed(int speed) {
    CabSpeed_ = narrowed(std::clamp(speed, 0, highest_step));
    UpdateDrive();
}

void Cab_Drive::press_direction() {
    CabDirection_ = 1 - CabDirection_;
    UpdateDrive();
}

void Cab_Drive::press_stop() {
    decoder_.DriveStop = !decoder_.DriveStop;
    if (!decoder_.DriveStop) return;
    CabSpeed_ = 0;
    for (const Wert each : {drive_step, target_drive_step, direction, target_direction})
        decoder_.Werte[each] = 0;
    decoder_.EffectiveSpeed = 0;
    decoder_.EffectiveDirection = 0;
}

// The CV that a set has not reads as 0, which is F0.
std::optional<int> Cab_Drive::key_out_of_step() const {
    const int key = script_cv_(coupling_cv);
    if (key < 0 || key >= cab_keys) return {};
    if (CabKeys_[static_cast<std::size_t>(key)] == decoder_.Werte[drive_sound]) return {};
    return key;
}

// The two call each other at most twice: a drive sound that has been pressed is 0 or 1, and then
// the key can be brought in step with it.
void Cab_Drive::press_key(int key) {
    std::int16_t& state = CabKeys_.at(static_cast<std::size_t>(key));
    state = state == 0 ? 1 : 0;
    decoder_.KeyState[KeyToSlot(key)] = state;
    if (key_out_of_step()) press_sound();
}

void Cab_Drive::press_sound() {
    std::int16_t& sound = decoder_.Werte[drive_sound];
    sound = sound == 0 ? 1 : 0;
    if (const auto key = key_out_of_step()) press_key(*key);
}

void Cab_Drive::press_man() { CabManKey_ = CabManKey_ == 0 ? 1 : 0; }

void Cab_Drive::press_input(std::size_t input) {
    bool& held = decoder_.ReedLevel.at(input);
    held = !held;
    if (held) decoder_.ReedPulse[input] = true;
}

int Cab_Drive::shown_speed() const {
    return floor_quotient(decoder_.EffectiveSpeed * shown_steps, highest_step);
}

} // namespace sim
