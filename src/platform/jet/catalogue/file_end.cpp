#include "platform/jet/catalogue/file_end.h"

#include "platform/jet/pages/usage_map.h"

#include <algorithm>

namespace jet {

Pages_Claim pages_in_use(Pager& pager) {
    const Usage_Map free(pager, {1, 0});
    const auto last_used = free.last(false);
    if (!last_used) return {};
    return {*last_used + 1, free.last(true) > last_used};
}

std::uint64_t pages_needed(Pager& pager, const Definition& definition) {
    std::uint64_t needed = 0;
    const auto need = [&](std::uint64_t page) { needed = std::max(needed, page + 1); };
    const auto need_all = [&](Row_Place map) {
        need(map.page);
        if (map.page == 0 || map.page >= pager.page_count()) return;
        if (const auto last = Usage_Map(pager, map).last(true)) need(*last);
    };
    need_all(definition.owned);
    for (const auto& maps : definition.long_maps) need_all(maps.owned);
    for (const auto& real : definition.reals) {
        need(real.root);
        need_all(real.map);
    }
    return needed;
}

} // namespace jet
