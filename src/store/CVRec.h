#pragma once

#include <cstdint>

namespace store {

/// One CV row on its way between the database and whoever shows or writes it.
struct CVRec {
    std::uint8_t CVPageHi = 0; ///< value of CV31 for this CV
    std::uint8_t CVPageLo = 0; ///< value of CV32 for this CV
    std::int16_t CVNr = 0;
    std::int16_t CVWert = 0;
    std::int32_t CVID = 0;   ///< key of the row; filled by lookups and by storing
    bool LastRecord = false; ///< set by DB_Next_CV: no row follows
    bool operator==(const CVRec&) const = default;
};

/// Only the CVs 257..512 are paged by CV31 and CV32; every other one is stored on page 0:1.
constexpr bool is_paged(int cv_number) { return cv_number >= 257 && cv_number <= 512; }

} // namespace store
