#pragma once

#include "platform/jet/format/definition.h"
#include "platform/jet/rows/cell.h"
#include "platform/jet/rows/row.h"

#include <optional>
#include <vector>

namespace jet {

/// The stored bytes of the cells of a row, in the order of Definition::columns; nothing: null.
/// A Boolean that is true has no bytes, but is there.
using Raw_Cells = std::vector<std::optional<Bytes>>;

/// The longest row that other programs write.
inline constexpr std::size_t longest_row = 4060;

/// All cells of a row as they stand, also those whose types we do not know.
Raw_Cells raw_cells(const Definition& definition, const Row_View& row);

/// Bytes of a Jet 4 row with all columns that the table has now.
Bytes encode_row(const Definition& definition, const Raw_Cells& cells);

} // namespace jet
