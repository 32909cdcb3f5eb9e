#pragma once

#include "platform/jet/format/value.h"
#include "platform/jet/rows/row_encoder.h"

#include <vector>

namespace jet {

/// A row that is going to be stored, as far as its statement sets it.
struct New_Row {
    std::vector<Value> values; ///< those of indexes, and all that are set
    std::vector<bool> changed; ///< which are set
    Raw_Cells cells;           ///< their bytes; a long value that goes beside the row: itself
    std::vector<bool> beside;  ///< those that do so; empty: none
};

/// The longest row that a page holds.
inline constexpr std::size_t longest_on_page = jet4_layout.page_size - jet4_layout.slots - 2;

/// Makes the cells of the fitted values that are set. What makes a row too long is put beside it
/// where that is possible; texts that come back are then stored in their shortest form.
/// @param kept the cells as they stand, for those that are not set
/// @return whether the row has at most `longest` bytes. Throws refused for a text without a form,
/// damaged for a column that has no place for its long values.
[[nodiscard]] bool lay_out(const Definition& definition, New_Row& row, const Raw_Cells& kept,
                           std::size_t longest, Origin origin);

} // namespace jet
