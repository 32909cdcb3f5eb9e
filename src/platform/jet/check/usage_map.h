#pragma once

#include "platform/jet/check/inspection.h"

#include <optional>

namespace jet::check {

/// Pages listed by a usage map, ascending; only pages that exist.
using Page_List = std::vector<std::uint32_t>;

/// Reads the usage map that `pointer` leads to; `subject` names it in sentences ("the map of ...").
/// Claims the pages in which it is kept.
/// @return nothing, with a fault, when it cannot be read.
std::optional<Page_List> read_usage_map(Inspection& inspection, std::uint32_t pointer,
                                        const std::string& subject);

/// The map of free pages, row 0 of page 1.
struct Global_Map {
    std::vector<bool> free;       ///< one bit for each page of the file
    std::uint32_t first_page = 0; ///< pages below are in use or forgotten: the map cannot tell
};

/// @return nothing, with a fault, when page 1 or its map cannot be read.
std::optional<Global_Map> read_global_map(Inspection& inspection);

} // namespace jet::check
