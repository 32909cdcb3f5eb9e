#include "platform/jet/pages/page_space.h"

#include <algorithm>

namespace jet {
namespace {

/// Header, global map and the definition of the catalogue never move.
constexpr Page_Number first_movable = 3;

} // namespace

Page_Number Page_Space::allocate() {
    const std::optional<Page_Number> reusable = free_.next_from(first_movable);
    const Page_Number page = reusable ? *reusable : pager_->append();
    mark(page, false);
    std::ranges::fill(pager_->change(page), std::byte{0});
    return page;
}

void Page_Space::release(Page_Number page) {
    if (page < first_movable || page >= pager_->page_count() || is_free(page))
        throw damaged(page, "it is given back, but was not in use");
    mark(page, true);
    // a wiped type byte shows checkers that nothing lives here any more
    std::ranges::fill(pager_->change(page).first(4), std::byte{0});
}

/// Pages for bits of the global map come from the end of the file: the map cannot ask itself.
Usage_Map::Growth Page_Space::growth() {
    return {.global = true, .longest = pager_->page_size(), .take_page = [this] {
                return pager_->append();
            }};
}

void Page_Space::mark(Page_Number page, bool free) {
    if (free_.set(page, free)) return;
    free_.cover(page, growth());
    free_.put(page, free);
}

} // namespace jet
