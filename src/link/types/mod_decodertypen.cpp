#include "link/types/mod_decodertypen.h"

#include <algorithm>
#include <optional>

namespace link_types {
namespace {

enum class Names {
    own,     ///< a model of its own, told by its code
    generic, ///< the name in the row
};

/// The codes from `first` to `last`. Of several rows for a code the first counts.
struct Row {
    std::uint8_t first;
    std::uint8_t last;
    Names names;
    const char16_t* name;
    std::optional<Family_Group> group; ///< nothing: it stays as it was
    std::int16_t cv_space = 1024;
};

constexpr Row model(std::uint8_t first, std::uint8_t last, std::optional<Family_Group> group,
                    std::int16_t cv_space = 1024) {
    return {first, last, Names::own, u"Decoder %1", group, cv_space};
}

constexpr Row small(std::uint8_t first, std::uint8_t last) {
    return model(first, last, Family_Group::cv256, 256);
}

constexpr Row nameless(std::uint8_t first, std::uint8_t last) {
    return {first, last, Names::generic, u"Decoder", Family_Group::cv1024};
}

constexpr Row rows[] = {
    {0, 0, Names::generic, u"QR-Decoder", Family_Group::sound},
    model(1, 10, Family_Group::sound),
    {11, 127, Names::generic, u"QRxxx", Family_Group::sound},
    // codes that no model has
    nameless(128, 129),
    nameless(131, 131),
    nameless(138, 141),
    nameless(143, 151),
    nameless(153, 159),
    nameless(161, 164),
    nameless(167, 170),
    nameless(172, 174),
    nameless(179, 179),
    nameless(191, 191),
    nameless(202, 205),
    nameless(239, 239),
    nameless(255, 255),
    // models with 256 CVs
    small(171, 171),
    small(183, 184),
    small(187, 188),
    small(194, 196),
    small(199, 201),
    small(206, 207),
    small(211, 213),
    small(218, 220),
    small(223, 223),
    small(226, 226),
    small(228, 228),
    small(232, 236),
    small(238, 238),
    small(242, 242),
    // models with a rule of their own
    model(166, 166, Family_Group::cv1024, 1023),
    model(237, 237, std::nullopt),
    model(240, 241, std::nullopt),
    model(128, 254, Family_Group::cv1024),
};

} // namespace

void look_up_decoder_type(Link_Values& values) {
    const auto* row = std::ranges::find_if(rows, [&](const Row& each) {
        return each.first <= values.DecoderTypeCode && values.DecoderTypeCode <= each.last;
    });
    const QString name = QString::fromUtf16(row->name);
    values.decoder.name = row->names == Names::own ? name.arg(values.DecoderTypeCode) : name;
    values.decoder.group = row->group.value_or(values.decoder.group);
    values.decoder.cv_space = row->cv_space;
}

} // namespace link_types
