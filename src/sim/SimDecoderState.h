#pragma once

#include <array>
#include <cstdint>

namespace sim {

/// Decoder values by the index of the query-parameter list that scripts, interpreter and cab name.
enum Wert : std::size_t {
    drive_step = 0,        ///< "Fahrgeschwindigkeit", 0..255
    target_drive_step = 1, ///< "Zielgeschwindigkeit", 0..255
    drive_sound = 2,       ///< 0 or 1
    target_set = 3,
    current_set = 4,
    diesel_step = 5,
    timer_value = 6,
    acceleration = 7,
    deceleration = 8,
    direction = 9,         ///< in which the loco moves; 0 forward, 1 reverse
    target_direction = 10, ///< which the cab wants
    consist_active = 11,
    consist_inverse = 12, ///< 0 or 1
    operating_mode = 22,  ///< 1 digital, 2 analogue
};

constexpr std::size_t wert_count = 23;
constexpr std::size_t key_slots = 257; ///< 0..27 F1..F28, 28 F0; nobody writes the others
constexpr std::size_t no_key = 256;
constexpr std::size_t event_count = 16;
constexpr std::size_t variable_count = 4;
constexpr std::size_t input_count = 4;
constexpr std::size_t output_count = 23;

/// What the simulated decoder is and does. There is one in the program; interpreter, cab and editor
/// share it, and values stay from one run of the simulation to the next.
struct Simulated_Decoder {
    std::int16_t SimCurrentState = 0; ///< line that the next step executes, 0..255
    bool SimActive = false;           ///< a simulation exists
    bool SimStopped = false;          ///< its cab has begun to close: no more steps
    bool SimPaused = false;

    std::array<std::int16_t, wert_count> Werte{};
    std::array<std::int16_t, key_slots> KeyState{}; ///< 1 on, 0 off

    bool DriveSetSpeed = false;     ///< DriveSpeedValue is the speed
    bool DriveLimitSpeed = false;   ///< and no more than that
    bool DriveScaleSpeed = false;   ///< the cab's speed times DriveSpeedValue / 256
    bool DriveSetDirection = false; ///< the direction is that of DriveDirectionMode
    std::int16_t DriveSpeedValue = 0;
    std::int32_t DriveDirectionMode = 0; ///< 0 the cab's, 1 against it, 2 forward, 3 reverse
    bool DriveStop = false;
    bool DriveHoldAccel = false; ///< the speed may fall, not rise

    std::array<std::int32_t, event_count> Events{};       ///< 0..255
    std::array<std::int16_t, variable_count> Variables{}; ///< 0..255

    std::array<bool, input_count> ReedLevel{}; ///< held on now
    std::array<bool, input_count> ReedPulse{}; ///< switched on since the cycle began
    std::array<bool, input_count>
        ReedSeen{}; ///< switched on during the cycle before: what scripts see

    std::int16_t EffectiveSpeed = 0;                  ///< to which the ramp leads
    std::int16_t EffectiveDirection = 0;              ///< which the loco is to take
    std::array<std::int16_t, output_count> Outputs{}; ///< PWM 0..31, as the script switched them

    bool operator==(const Simulated_Decoder&) const = default;
};

/// The one of the program.
Simulated_Decoder& SimDecoderState();

} // namespace sim
