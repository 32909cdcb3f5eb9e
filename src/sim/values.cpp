#include "sim/values.h"

#include "scripts/catalogue/commands.h"
#include "scripts/catalogue/lists.h"

#include <type_traits>

namespace sim {
namespace {

/// Calls what was given with the field that a value stands in.
template <typename Decoder, typename Use>
void with_field(Decoder& decoder, Value_Ref value, Use use) {
    const auto at = static_cast<std::size_t>(value.index);
    switch (value.kind) {
    case Value_Kind::wert:
        return use(decoder.Werte[at]);
    case Value_Kind::event:
        return use(decoder.Events[at]);
    case Value_Kind::variable:
        return use(decoder.Variables[at]);
    case Value_Kind::key:
        return use(decoder.KeyState[at]);
    case Value_Kind::output:
        return use(decoder.Outputs[at]);
    case Value_Kind::input:
        return use(decoder.ReedSeen[at]);
    case Value_Kind::drive:
        break;
    }
    switch (value.index) {
    case speed_given:
        return use(decoder.DriveSetSpeed);
    case speed_limited:
        return use(decoder.DriveLimitSpeed);
    case speed_scaled:
        return use(decoder.DriveScaleSpeed);
    case direction_given:
        return use(decoder.DriveSetDirection);
    case loco_stopped:
        return use(decoder.DriveStop);
    case speed_held:
        return use(decoder.DriveHoldAccel);
    case drive_speed:
        return use(decoder.DriveSpeedValue);
    case drive_direction:
        return use(decoder.DriveDirectionMode);
    default:
        return;
    }
}

namespace catalogue = scripts_catalogue;

/// A key as the list of keys has it.
QString key_slot_name(std::int32_t slot) {
    constexpr std::int32_t f0 = 28, man = 29;
    return catalogue::KeyName(slot == f0 ? 0 : slot < f0 ? slot + 1 : slot == man ? man : -1);
}

QString output_name(std::int32_t output, int language) {
    // the list ends before the decoder's outputs do
    const int last = catalogue::entry_count(catalogue::List::output) - 1;
    if (output <= last) return catalogue::entry_text(catalogue::List::output, output, language);
    const QString word =
        language == catalogue::german ? QStringLiteral("FA") : QStringLiteral("FO");
    return word + QString::number(output - 1);
}

QString drive_name(std::int32_t value, int language) {
    constexpr std::int32_t control_loco = 7;
    const auto& columns = catalogue::command(control_loco)->columns;
    if (value == drive_speed) return columns[1].caption.in(language);
    if (value == drive_direction) return columns[2].caption.in(language);
    return catalogue::entry_text(catalogue::List::control, value + 1, language);
}

} // namespace

std::int32_t value_count(Value_Kind kind) {
    constexpr std::int32_t counts[] = {wert_count,   event_count, variable_count,   key_slots,
                                       output_count, input_count, drive_value_count};
    return counts[static_cast<std::size_t>(kind)];
}

std::int32_t value_of(const Simulated_Decoder& decoder, Value_Ref value) {
    std::int32_t number = 0;
    if (exists(value))
        with_field(decoder, value, [&](const auto& field) { number = std::int32_t{field}; });
    return number;
}

void put_value(Simulated_Decoder& decoder, Value_Ref value, std::int32_t number) {
    if (!exists(value)) return;
    with_field(decoder, value, [&]<typename Field>(Field& field) {
        if constexpr (std::is_same_v<Field, bool>)
            field = number != 0;
        else if constexpr (std::is_same_v<Field, std::int16_t>)
            field = static_cast<std::int16_t>(number);
        else
            field = number;
    });
}

QString name_of(Value_Ref value, int language) {
    if (!exists(value)) return {};
    switch (value.kind) {
    case Value_Kind::wert:
        return catalogue::QueryParameterName(value.index, language);
    case Value_Kind::event:
        return catalogue::entry_text(catalogue::List::event, value.index, language);
    case Value_Kind::variable:
        return catalogue::entry_text(catalogue::List::variable, value.index, language);
    case Value_Kind::key:
        return key_slot_name(value.index);
    case Value_Kind::output:
        return output_name(value.index, language);
    case Value_Kind::input:
        return catalogue::entry_text(catalogue::List::input, value.index, language);
    case Value_Kind::drive:
        return drive_name(value.index, language);
    }
    return {};
}

bool CompareValues(std::int16_t a, std::int32_t kind, std::int16_t b) {
    switch (kind) {
    case 0:
        return a == b;
    case 1:
        return a != b;
    case 2:
        return a > b;
    case 3:
        return a < b;
    default:
        return false;
    }
}

} // namespace sim
