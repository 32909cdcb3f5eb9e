#include "platform/jet/catalogue/file_end.h"

#include "platform/jet/pages/usage_map.h"

#include <algorithm>
#include <initializer_list>

namespace jet {
namespace {

constexpr std::byte data_type{1};
constexpr std::byte node_type{3};
constexpr std::byte leaf_type{4};
constexpr std::uint32_t long_values = 0x4C41564C; // "LVAL"

bool is_filling(const Page_Bytes& page) {
    return (page.front() == std::byte{} || page.front() == std::byte{0xFF}) &&
           std::ranges::all_of(page, [&](std::byte byte) { return byte == page.front(); });
}

void check_last_page(Pager& pager, Row_Place map, std::initializer_list<std::byte> types,
                     std::uint32_t owner) {
    if (map.page == 0 || map.page >= pager.page_count()) return;
    const auto last = Usage_Map(pager, map).last(true);
    if (!last || *last >= pager.page_count()) return;
    const auto number = static_cast<Page_Number>(*last);
    const Page page = pager.read(number);
    if (std::ranges::find(types, page->front()) == types.end() || load_u32(&(*page)[4]) != owner)
        throw damaged(number, "is not what the map of its table says");
}

} // namespace

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

std::uint64_t pages_before_filling(Pager& pager, std::uint64_t pages) {
    while (pages > 1 && is_filling(*pager.read(static_cast<Page_Number>(pages - 1)))) --pages;
    return pages;
}

void check_last_pages(Pager& pager, const Definition& definition) {
    check_last_page(pager, definition.owned, {data_type}, definition.page());
    for (const auto& maps : definition.long_maps)
        check_last_page(pager, maps.owned, {data_type}, long_values);
    for (const auto& real : definition.reals)
        check_last_page(pager, real.map, {node_type, leaf_type}, definition.page());
}

} // namespace jet
