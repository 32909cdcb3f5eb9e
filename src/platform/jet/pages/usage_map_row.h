#pragma once

#include "platform/jet/format/bytes.h"
#include "platform/jet/pages/pager.h"

#include <optional>
#include <span>

namespace jet {

/// A row on a page of map rows.
struct Map_Row {
    std::size_t offset = 0; ///< on its page
    std::span<const std::byte> bytes;
};

/// Finds a live row on a page of map rows (Jet 3 and 4). Throws Error (damaged).
Map_Row map_row(std::span<const std::byte> page, Row_Place place);

/// Puts `row`, at least as long as the present one, in its place; rows below it move. @return
/// false, with nothing changed, when the page has no room. Jet 4 only, like all that follows.
[[nodiscard]] bool replace_map_row(Pager& pager, Row_Place place, std::span<const std::byte> row);

/// @return nothing when `page` is no page of map rows or has no room.
[[nodiscard]] std::optional<Row_Place> append_map_row(Pager& pager, Page_Number page,
                                                      std::span<const std::byte> row);

/// Makes a page of zeros a page of map rows without rows.
void format_map_page(Pager& pager, Page_Number page);

} // namespace jet
