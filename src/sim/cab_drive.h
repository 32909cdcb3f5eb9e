#pragma once

#include "sim/SimDecoderState.h"
#include "sim/surroundings.h"

#include <QString>
#include <optional>

namespace sim {

constexpr int cab_keys = 29;
constexpr int highest_step = 255; ///< of the drive

/// Slot of a key F0..F28, given by its number; `no_key` for any other number.
std::size_t KeyToSlot(int key);
/// Number of the key of a slot; `no_key` for a slot without one.
int SlotToKey(int slot);

/// A typed text counts as the number at its beginning, as BASIC reads it: blanks anywhere are passed
/// over, what does not belong to the number ends it, and where there is none it is 0.
/// This is what it makes a value; nothing where that would not be in 0..255.
std::optional<std::int16_t> typed_value(const QString& text);
/// And this the rate of the ramp, 1..255; nothing for an empty text.
std::optional<int> typed_rate(const QString& text);

/// What the controls of the cab do to the decoder, and the ramp that leads its speed.
class Cab_Drive {
public:
    /// @param decoder lives longer
    Cab_Drive(Simulated_Decoder& decoder, Script_CV script_cv);

    /// The controls are all off again: so are the keys, inputs and stop of the decoder.
    void reset();
    /// The speed goes one step further, then UpdateDrive.
    void tick();
    /// Where the decoder is to go, from the cab and from what the script has said about it.
    void UpdateDrive();

    void choose_speed(int speed); ///< 0..255
    void press_direction();
    void press_stop();
    /// A key and the drive sound may be coupled by a CV; each presses the other.
    void press_key(int key); ///< 0..28
    void press_sound();
    void press_man();
    void press_input(std::size_t input); ///< 0..3

    int shown_speed() const; ///< the speed to be reached, in 126 steps

    std::int16_t CabSpeed() const { return CabSpeed_; }
    std::int32_t CabDirection() const { return CabDirection_; }
    std::int16_t CabManKey() const { return CabManKey_; }
    const std::array<std::int16_t, cab_keys>& CabKeys() const { return CabKeys_; }

private:
    int wanted_direction() const;
    int wanted_speed() const;
    void RampSpeed();
    std::optional<int> key_out_of_step() const;

    Simulated_Decoder& decoder_;
    Script_CV script_cv_;
    std::int16_t CabSpeed_ = 0;
    std::int32_t CabDirection_ = 0;
    std::int16_t CabManKey_ = 0;
    std::array<std::int16_t, cab_keys> CabKeys_{};
};

} // namespace sim
