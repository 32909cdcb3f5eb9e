#pragma once

#include "platform/jet/pages/page_space.h"
#include "platform/jet/pages/usage_map.h"
#include "platform/jet/rows/page_editor.h"

#include <map>
#include <span>

namespace jet {

/// The page where the last row of a heap was put; the search for room begins there.
using Heap_Hints = std::map<Row_Place, Page_Number>;

/// The data pages of a table, or the long-value pages of a column: finds room for rows and gives
/// back pages that become empty. Its two maps are kept right.
class Row_Heap {
public:
    static constexpr std::uint32_t long_values = 0x4C41564C; ///< the owner "LVAL"

    /// @param owned,free the maps; `free` may be 0:0: there is none.
    Row_Heap(Pager& pager, Page_Space& space, Heap_Hints& hints, std::uint32_t owner,
             Row_Place owned, Row_Place free)
        : pager_(&pager), space_(&space), hints_(&hints), owner_(owner), owned_(pager, owned),
          free_(pager, free) {}

    /// @param fresh on a page of its own, taken new.
    [[nodiscard]] Row_Place add(std::span<const std::byte> row, Slot_Kind kind, bool fresh = false);
    /// @return false (and nothing changed) when the page has no room.
    [[nodiscard]] bool replace(Row_Place at, std::span<const std::byte> row, Slot_Kind kind);
    void remove(Row_Place at);

private:
    std::optional<Row_Place> add_where_room_is(std::span<const std::byte> row, Slot_Kind kind);
    std::optional<Row_Place> try_page(Page_Number page, std::span<const std::byte> row,
                                      Slot_Kind kind);
    bool has_free_map() const { return free_.place().page != 0; }

    Pager* pager_;
    Page_Space* space_;
    Heap_Hints* hints_;
    std::uint32_t owner_;
    Usage_Map owned_;
    Usage_Map free_;
};

} // namespace jet
