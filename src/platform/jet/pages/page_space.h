#pragma once

#include "platform/jet/pages/usage_map.h"

namespace jet {

/// Which pages of the file are in use: row 0 of page 1 has a bit for every free one. A page is free
/// only if its own bit is there and set; pages that the map does not reach are in use.
/// All calls belong into a write transaction of the pager.
class Page_Space {
public:
    explicit Page_Space(Pager& pager) : pager_(&pager), free_(pager, {1, 0}) {}

    /// A page of zeros, marked as in use: the lowest free one, else a new one at the end of the
    /// file.
    [[nodiscard]] Page_Number allocate();
    /// Gives a page back. Whoever owned it has taken it out of its maps. Throws Error (damaged)
    /// when it is free already.
    void release(Page_Number page);
    bool is_free(Page_Number page) const { return free_.contains(page); }

private:
    Usage_Map::Growth growth();
    void mark(Page_Number page, bool free);

    Pager* pager_;
    Usage_Map free_;
};

} // namespace jet
