#include "platform/jet/rows/row.h"

namespace jet {
namespace {

constexpr int most_hops = 8;
constexpr std::size_t most_rows = 256; // a row pointer has one byte for the slot

} // namespace

Data_Page::Data_Page(Pager& pager, const Layout& layout, Page_Number number)
    : page_(pager.read(number)), view_(*page_, number), slots_(layout.slots),
      count_(view_.u16(layout.slot_count)) {
    if (view_.u8(0) != 1) view_.fail("is no data page");
    if (count_ > most_rows || slots_ + 2 * count_ > view_.size())
        view_.fail("more rows than the page can hold");
}

View Data_Page::row(std::size_t slot) const {
    const auto begin = offset(slot);
    const auto end = slot == 0 ? view_.size() : offset(slot - 1);
    if (begin > end || begin < slots_ + 2 * count_)
        view_.fail("row " + std::to_string(slot) + " overlaps another");
    return view_.part(begin, end - begin);
}

Row_View::Row_View(View row, const Definition& definition)
    : row_(row), count_size_(definition.layout->count_size),
      columns_(row.number(0, definition.layout->count_size)) {
    const auto bitmap_size = (columns_ + 7) / 8;
    if (columns_ > definition.max_columns) row_.fail("a row with more columns than its table");
    if (row.size() < count_size_ + bitmap_size) row_.fail("a row that is too short");
    bitmap_ = row.size() - bitmap_size;
    if (columns_ <= definition.first_variable) return; // written without offsets
    if (bitmap_ < 2 * count_size_) row_.fail("a row without room for its offsets");
    const auto slots_at = bitmap_ - count_size_;
    slots_ = row.number(slots_at, count_size_);
    if (slots_ > definition.variable_slots)
        row_.fail("a row with more variable columns than its table");
    if (definition.layout->jet3) {
        jumps_ = (row.size() - 1) / 256;
        first_ = slots_at - jumps_ - 1;
        if (jumps_ > 0 && (first_ - slots_) / 256 < jumps_) --jumps_; // the last byte is a dummy
    } else {
        first_ = slots_at - 2;
    }
    if (slots_at <
        count_size_ * (slots_ + 2) + (row.size() - 1) / 256 * (definition.layout->jet3 ? 1U : 0U))
        row_.fail("a row without room for its offsets");
}

std::size_t Row_View::offset(std::size_t slot) const {
    return count_size_ == 1 ? offset_jet3(slot) : row_.u16(first_ - 2 * slot);
}

std::size_t Row_View::offset_jet3(std::size_t slot) const {
    const auto jumps_end = bitmap_ - 1; // the jump bytes are read backwards from the slot count
    std::size_t passed = 0;
    while (passed < jumps_ && row_.u8(jumps_end - 1 - passed) <= slot) ++passed;
    return row_.u8(first_ - slot) + 256 * passed;
}

View Row_View::variable(std::size_t slot) const {
    if (slot >= slots_) return row_.part(0, 0);
    const auto begin = offset(slot);
    const auto end = offset(slot + 1); // that of the last slot is where the values end
    if (begin > end) row_.fail("a cell that ends before it begins");
    return row_.part(begin, end - begin);
}

Data_Page Row_Source::own_page(Page_Number number) {
    Data_Page page(*pager_, *definition_->layout, number);
    if (page.owner() != definition_->page())
        throw damaged(number, "is not a page of the table that refers to it");
    return page;
}

const Data_Page& Row_Source::page(Page_Number number) {
    if (page_.number() != number || number == 0) page_ = own_page(number);
    return page_;
}

bool Row_Source::find(Row_Place id) {
    const auto& found = page(id.page);
    if (id.slot >= found.count()) return false;
    id_ = place_ = id;
    switch (found.kind(id.slot)) {
    case Slot_Kind::live:
        row_ = Row_View(found.row(id.slot), *definition_);
        return true;
    case Slot_Kind::pointer:
        follow(id, found.row(id.slot));
        return true;
    default:
        return false;
    }
}

void Row_Source::follow(Row_Place from, const View& pointer) {
    auto where = pointer;
    for (int hop = 0; hop < most_hops; ++hop) {
        const auto to = Row_Place::from(where.u32(0));
        if (target_.number() != to.page || to.page == 0) target_ = own_page(to.page);
        if (to.slot >= target_.count()) target_.row(0).fail("a moved row that is not there");
        place_ = to;
        const auto kind = target_.kind(to.slot);
        if (kind == Slot_Kind::deleted) throw damaged(to.page, "a moved row that is deleted");
        where = target_.row(to.slot);
        if (kind != Slot_Kind::pointer) {
            row_ = Row_View(where, *definition_);
            return;
        }
    }
    throw damaged(from.page, "a moved row whose pointers run in a circle");
}

} // namespace jet
