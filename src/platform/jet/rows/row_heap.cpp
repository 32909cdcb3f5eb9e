#include "platform/jet/rows/row_heap.h"

namespace jet {
namespace {

/// So many pages with free space are tried before a new one is taken.
constexpr int most_tries = 16;
/// A page that had no room for a row and less than this is not tried again until a row goes.
constexpr std::size_t worth_trying = 512;

} // namespace

/// A page of map entries that are wrong is damage; it must not be written to.
std::optional<Row_Place> Row_Heap::try_page(Page_Number page, std::span<const std::byte> row,
                                            Slot_Kind kind) {
    if (Data_Page(*pager_, jet4_layout, page).owner() != owner_)
        throw damaged(page, "is in a map to which it does not belong");
    Page_Editor editor(*pager_, page);
    if (const auto slot = editor.add(row, kind)) return Row_Place{page, *slot};
    if (editor.free_bytes() < worth_trying) free_.remove(page);
    return std::nullopt;
}

std::optional<Row_Place> Row_Heap::add_where_room_is(std::span<const std::byte> row,
                                                     Slot_Kind kind) {
    if (!has_free_map()) return std::nullopt;
    const auto start = (*hints_)[owned_.place()];
    auto page = free_.next_from(start);
    bool wrapped = start == 0;
    for (int tries = 0; tries < most_tries; ++tries) {
        if (!page && !wrapped) {
            wrapped = true;
            page = free_.next_from(0);
        }
        if (!page || (wrapped && start != 0 && *page >= start)) return std::nullopt;
        if (const auto at = try_page(*page, row, kind)) return at;
        page = free_.next_from(*page + 1);
    }
    return std::nullopt;
}

Row_Place Row_Heap::add(std::span<const std::byte> row, Slot_Kind kind, bool fresh) {
    auto at = fresh ? std::nullopt : add_where_room_is(row, kind);
    if (!at) {
        const auto page = space_->allocate();
        Page_Editor editor(*pager_, page);
        editor.format(owner_);
        const auto slot = editor.add(row, kind);
        if (!slot) throw Error(Failure::refused, "row", "is longer than a page");
        at = Row_Place{page, *slot};
        owned_.add(*space_, page);
        if (has_free_map()) free_.add(*space_, page);
    }
    (*hints_)[owned_.place()] = at->page;
    return *at;
}

bool Row_Heap::replace(Row_Place at, std::span<const std::byte> row, Slot_Kind kind) {
    return Page_Editor(*pager_, at.page).replace(at.slot, row, kind);
}

void Row_Heap::remove(Row_Place at) {
    Page_Editor editor(*pager_, at.page);
    editor.remove(at.slot);
    if (!editor.empty()) {
        if (has_free_map()) free_.add(*space_, at.page);
        return;
    }
    if (has_free_map()) free_.remove(at.page);
    owned_.remove(at.page);
    space_->release(at.page);
}

} // namespace jet
