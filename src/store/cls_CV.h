#pragma once

#include <cstdint>

namespace store {

/// One CV value of a set.
struct cls_CV {
    std::int16_t Index = 0; ///< position in its page, from 1, as it was when the CV was added
    std::int16_t CVNr = 0;
    std::uint8_t Wert = 0;
};

} // namespace store
