#pragma once

#include "platform/jet/format/definition.h"
#include "platform/jet/pages/pager.h"

namespace jet {

/// How many pages a file must have.
struct Pages_Claim {
    std::uint64_t pages = 0;
    bool sure = true; ///< else only where another map says so, too
};

/// What the global map tells, which has a bit for every page up to some place beyond the end: one
/// past the last page in use. Bits past the end of the file are set ("free") in all files met; a
/// map that ends with clear ones is full, or by a writer who does not keep to that.
Pages_Claim pages_in_use(Pager& pager);

/// How many pages a file must have for a table to be whole: one past the last page that one of its
/// maps names or where one of its trees begins. Free pages at the end are nobody's.
std::uint64_t pages_needed(Pager& pager, const Definition& definition);

/// A copy that was broken off may have the old length all the same, filled with zeros or 0xFF.
/// @param pages that the file must have, and has. @return as many, or how many lie before the filling
/// that the last of them belongs to
std::uint64_t pages_before_filling(Pager& pager, std::uint64_t pages);

/// Throws Error (damaged) where the last page of one of the table's maps is not one of the table.
void check_last_pages(Pager& pager, const Definition& definition);

} // namespace jet
