#pragma once

#include "platform/jet/index/index_tree_page.h"

namespace jet {

/// Puts an entry into a leaf by moving what stands behind it. @return false, with nothing changed,
/// when the page has to be written anew: for lack of room, or because its prefix may change.
[[nodiscard]] bool insert_in_place(Pager& pager, const Index_Page& leaf, std::size_t position,
                                   std::span<const std::byte> entry);

/// Takes an entry out of a leaf likewise.
[[nodiscard]] bool erase_in_place(Pager& pager, const Index_Page& leaf, std::size_t position);

} // namespace jet
