#include "platform/jet/check/tree.h"

namespace jet::check {

Row_Place place_of(std::span<const std::uint8_t> entry) {
    const auto at = entry.last(place_bytes);
    return {std::uint32_t{at[0]} << 16 | std::uint32_t{at[1]} << 8 | at[2], at[3]};
}

bool precedes(const Key& a, const Key& b) { return std::ranges::lexicographical_compare(a, b); }

void cut_place(Key& entry) { entry.resize(entry.size() - std::min(entry.size(), place_bytes)); }

// Bit i is set where an entry ends, counted from the beginning of the entries.
void Index_Page::read_mask() {
    ends_.clear();
    for (std::uint32_t at = format_->mask; at < format_->entries; ++at) {
        const std::uint32_t bits = bytes_.u8(at);
        if (bits == 0) continue;
        for (std::uint32_t bit = 0; bit < 8; ++bit)
            if ((bits >> bit & 1) != 0) ends_.push_back(8 * (at - format_->mask) + bit);
    }
}

void Index_Page::entry(std::size_t i, Key& into) const {
    const auto append = [&](std::uint32_t from, std::uint32_t length) {
        const Bytes part = bytes_.part(std::size_t{format_->entries} + from, length);
        const std::size_t before = into.size();
        into.resize(before + part.size());
        std::ranges::transform(part.span(), into.begin() + static_cast<std::ptrdiff_t>(before),
                               [](std::byte byte) { return std::to_integer<std::uint8_t>(byte); });
    };
    into.clear();
    if (i > 0) append(0, std::min(prefix(), ends_[0]));
    append(begin(i), stored(i));
}

void visit_tree(Inspection& inspection, std::uint32_t root,
                const std::function<void(const Key&)>& visit) {
    const Page held = inspection.pages.page(root);
    Index_Page page(inspection.format, held.bytes);
    page.read_mask();
    Key entry;
    const bool leaf = page.type() == page_type::leaf;
    for (std::size_t i = 0; i < page.count(); ++i) {
        if (leaf) {
            page.entry(i, entry);
            visit(entry);
        } else {
            visit_tree(inspection, page.child(i), visit);
        }
    }
    const bool repeated = page.count() > 0 && page.tail() == page.child(page.count() - 1);
    if (!leaf && page.tail() != 0 && !repeated) visit_tree(inspection, page.tail(), visit);
}

Leaf_Cursor::Leaf_Cursor(Inspection& inspection, std::uint32_t root)
    : inspection_(inspection), page_(inspection.format, {}),
      pages_left_(inspection.ledger.pages()) {
    open(root);
    while (page_.type() == page_type::node && pages_left_ > 0)
        open(page_.count() > 0 ? page_.child(0) : page_.tail());
}

void Leaf_Cursor::open(std::uint32_t page) {
    if (!inspection_.ledger.exists(page)) pages_left_ = 0;
    if (pages_left_ == 0) return;
    --pages_left_;
    keep_ = inspection_.pages.page(page);
    page_ = Index_Page(inspection_.format, keep_.bytes);
    page_.read_mask();
    position_ = 0;
}

bool Leaf_Cursor::next(Key& entry) {
    while (position_ == page_.count()) {
        if (page_.next() == 0 || pages_left_ == 0) return false;
        open(page_.next());
    }
    page_.entry(position_++, entry);
    return true;
}

} // namespace jet::check
