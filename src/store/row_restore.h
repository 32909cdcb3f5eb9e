#pragma once

#include "store/changes.h"
#include "store/library_operation.h"
#include "store/row_surroundings.h"

#include <vector>

namespace store {

/// Brings rows from what they were before to what they were after; see clsDBConn::replay. `all` is
/// what the changes come to.
[[nodiscard]] Replayed restore_rows(Library_Operation& operation,
                                    const std::vector<Row_Change>& changes,
                                    const std::vector<Row_Change>& all, const Oddities& odd);

} // namespace store
