#include "platform/jet/pages/usage_map_row.h"

#include "platform/jet/format/layout.h"

#include <algorithm>

namespace jet {
namespace {

constexpr std::byte data_page_type{1};
constexpr unsigned offset_mask = 0x1FFF;
constexpr unsigned flags_mask = 0xC000;
constexpr std::size_t most_slots = 255;

/// The slot table of a page: bounds are looked at wherever a number comes from the page.
class Slots {
public:
    Slots(std::span<const std::byte> page, Page_Number number)
        : page_(page), number_(number),
          layout_(page.size() == jet3_layout.page_size ? jet3_layout : jet4_layout),
          count_(load_u16(&page[layout_.slot_count])) {
        if (page[0] != data_page_type) fail("should hold map rows");
        if (table_end() > page.size()) fail("has too many slots");
    }

    std::size_t count() const { return count_; }
    std::size_t table_end() const { return layout_.slots + 2 * count_; }
    std::size_t place(std::size_t slot) const { return layout_.slots + 2 * slot; }
    unsigned entry(std::size_t slot) const { return load_u16(&page_[place(slot)]); }
    std::size_t start(std::size_t slot) const { return entry(slot) & offset_mask; }
    std::size_t end(std::size_t slot) const { return slot == 0 ? page_.size() : start(slot - 1); }
    std::size_t lowest() const { return end(count_); }
    bool live(std::size_t slot) const { return (entry(slot) & flags_mask) == 0; }
    /// Room between slot table and rows; 0 when the two overlap.
    std::size_t room() const { return lowest() < table_end() ? 0 : lowest() - table_end(); }

    [[noreturn]] void fail(const std::string& reason) const { throw damaged(number_, reason); }

private:
    std::span<const std::byte> page_;
    Page_Number number_;
    const Layout& layout_;
    std::size_t count_;
};

void store_free(std::span<std::byte> page, Page_Number number) {
    store_u16(&page[2], Slots(page, number).room());
}

} // namespace

Map_Row map_row(std::span<const std::byte> page, Row_Place place) {
    const Slots slots(page, place.page);
    const std::size_t slot = place.slot;
    if (slot >= slots.count() || !slots.live(slot))
        slots.fail("has no map row " + std::to_string(slot));
    const std::size_t start = slots.start(slot);
    const std::size_t end = slots.end(slot);
    if (start < slots.table_end() || end > page.size() || start >= end)
        slots.fail("map row " + std::to_string(slot) + " lies outside the page");
    return {start, page.subspan(start, end - start)};
}

bool replace_map_row(Pager& pager, Row_Place place, std::span<const std::byte> row) {
    const Page old = pager.read(place.page);
    const Map_Row present = map_row(*old, place);
    const Slots slots(*old, place.page);
    const std::size_t more = row.size() - present.bytes.size();
    const std::size_t lowest = slots.lowest();
    if (more > slots.room() || lowest > present.offset) return false;
    const auto page = pager.change(place.page);
    std::copy(old->begin() + static_cast<std::ptrdiff_t>(lowest),
              old->begin() + static_cast<std::ptrdiff_t>(present.offset),
              page.begin() + static_cast<std::ptrdiff_t>(lowest - more));
    std::ranges::copy(row, page.subspan(present.offset - more).begin());
    for (std::size_t slot = place.slot; slot < slots.count(); ++slot)
        store_u16(&page[slots.place(slot)], slots.entry(slot) - more);
    store_free(page, place.page);
    return true;
}

std::optional<Row_Place> append_map_row(Pager& pager, Page_Number number,
                                        std::span<const std::byte> row) {
    const Page old = pager.read(number);
    if (old->front() != data_page_type || load_u32(&(*old)[4]) != 0) return {};
    const Slots slots(*old, number);
    if (slots.count() >= most_slots || slots.room() < row.size() + 2) return {};
    const auto page = pager.change(number);
    const std::size_t start = slots.lowest() - row.size();
    std::ranges::copy(row, page.subspan(start).begin());
    store_u16(&page[jet4_layout.slot_count], slots.count() + 1);
    store_u16(&page[slots.place(slots.count())], start);
    store_free(page, number);
    return Row_Place{number, static_cast<std::uint8_t>(slots.count())};
}

void format_map_page(Pager& pager, Page_Number number) {
    const auto page = pager.change(number);
    page[0] = data_page_type;
    page[1] = std::byte{1};
    store_free(page, number);
}

} // namespace jet
