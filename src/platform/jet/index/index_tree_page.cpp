#include "platform/jet/index/index_tree_page.h"

#include "platform/jet/index/index_tree_mask.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace jet {
namespace {

constexpr std::size_t owner_offset = 4;

Entry_Mask mask_of(std::span<const std::byte> page, const Index_Layout& layout) {
    return Entry_Mask(page.subspan(layout.mask, layout.entries - layout.mask));
}

std::strong_ordering order_of(std::span<const std::byte> one, std::span<const std::byte> other) {
    const std::size_t common = std::min(one.size(), other.size());
    const int order = common == 0 ? 0 : std::memcmp(one.data(), other.data(), common);
    return order != 0 ? order <=> 0 : one.size() <=> other.size();
}

} // namespace

Index_Page::Index_Page(Page page, Page_Number number, Page_Number table)
    : page_(std::move(page)), number_(number),
      layout_(page_->size() == jet3_index.page_size ? &jet3_index : &jet4_index) {
    const std::byte type = (*page_)[0];
    if (type != index_node_type && type != index_leaf_type) fail("should belong to an index");
    if (link(owner_offset) != table) fail("belongs to the index of another table");
    const Entry_Mask mask = mask_of(bytes(), *layout_);
    end_ = mask.previous(mask.bits() - 1).value_or(0);
    if (end_ > layout_->room()) fail("has index entries beyond its end");
    if (end_ == 0) return;
    prefix_length_ = load_u16(&(*page_)[layout_->prefix]);
    const std::size_t first = after(0);
    if (first < row_size + size_of_tail() + 1 || prefix_length_ + size_of_tail() > first)
        fail("has an index entry that is too short");
}

std::size_t Index_Page::after(std::size_t position) const {
    return mask_of(bytes(), *layout_).next(position + 1).value_or(end_);
}

std::size_t Index_Page::before(std::size_t position) const {
    return mask_of(bytes(), *layout_).previous(position - 1).value_or(0);
}

std::size_t Index_Page::number_before(std::size_t position) const {
    if (position == 0) return 0;
    const Entry_Mask mask = mask_of(bytes(), *layout_);
    std::size_t number = 0;
    for (std::size_t word = 0; word * 64 <= position; ++word) {
        std::uint64_t bits = mask.load(word);
        if (word == position / 64) bits &= ~std::uint64_t{0} >> (63 - position % 64);
        number += static_cast<std::size_t>(std::popcount(bits));
    }
    return number;
}

std::span<const std::byte> Index_Page::stored(std::size_t position) const {
    const auto entry = area().subspan(position, after(position) - position);
    const std::size_t left_out = position == 0 ? 0 : prefix_length_;
    if (entry.size() < size_of_tail() || left_out + entry.size() < row_size + size_of_tail() + 1)
        fail("has an index entry that is too short");
    return entry;
}

void Index_Page::copy_entry(std::size_t position, Bytes& into) const {
    const auto rest = stored(position);
    into.clear();
    if (position != 0) into.assign(prefix().begin(), prefix().end());
    into.insert(into.end(), rest.begin(), rest.end());
}

/// The last bytes before the child field; part of them may stand in the prefix.
std::span<const std::byte> Index_Page::last_bytes(std::size_t position, std::size_t count,
                                                  std::span<std::byte> into) const {
    const auto entry = stored(position);
    const auto rest = entry.first(entry.size() - size_of_tail());
    if (rest.size() >= count) return rest.last(count);
    const std::size_t missing = count - rest.size();
    std::ranges::copy(prefix().last(missing), into.begin());
    std::ranges::copy(rest, into.subspan(missing).begin());
    return into;
}

Row_Place Index_Page::row(std::size_t position) const {
    std::array<std::byte, row_size> buffer{};
    const auto bytes = last_bytes(position, row_size, buffer);
    const auto part = [&](std::size_t at) { return std::to_integer<Page_Number>(bytes[at]); };
    return {part(0) << 16U | part(1) << 8U | part(2), load_u8(&bytes[3])};
}

Page_Number Index_Page::child(std::size_t position) const {
    if (position == end_) return tail();
    const auto bytes = stored(position).last(child_size);
    Page_Number child = 0;
    for (const std::byte byte : bytes) child = child << 8U | std::to_integer<Page_Number>(byte);
    return child;
}

std::strong_ordering Index_Page::order(std::size_t position,
                                       std::span<const std::byte> wanted) const {
    const auto entry = stored(position);
    const auto rest = entry.first(entry.size() - size_of_tail());
    if (position == 0 || prefix_length_ == 0) return order_of(rest, wanted);
    if (wanted.size() < prefix_length_) return order_of(prefix(), wanted);
    const auto in_prefix = order_of(prefix(), wanted.first(prefix_length_));
    return in_prefix != 0 ? in_prefix : order_of(rest, wanted.subspan(prefix_length_));
}

std::size_t Index_Page::lower_bound(std::span<const std::byte> wanted) const {
    const Entry_Mask mask = mask_of(bytes(), *layout_);
    std::size_t low = 0;
    std::size_t high = end_;
    while (low < high) {
        const std::size_t middle = mask.previous(low + (high - low) / 2).value_or(0);
        if (order(middle, wanted) < 0)
            low = after(middle);
        else
            high = middle;
    }
    return low;
}

std::size_t Index_Page::branch(std::span<const std::byte> wanted) const {
    const std::size_t position = lower_bound(wanted);
    return position == end_ && tail() == 0 && end_ > 0 ? before(end_) : position;
}

bool Index_Page::holds(std::size_t position, std::span<const std::byte> key) const {
    const auto rest = stored(position);
    const std::size_t left_out = position == 0 ? 0 : prefix_length_;
    if (left_out + rest.size() != key.size() + row_size + size_of_tail()) return false;
    const std::size_t shared = std::min(left_out, key.size());
    return std::ranges::equal(prefix().first(shared), key.first(shared)) &&
           std::ranges::equal(rest.first(key.size() - shared), key.subspan(shared));
}

Bytes entry_bytes(std::span<const std::byte> key, Row_Place row) {
    Bytes entry;
    entry.reserve(key.size() + row_size + child_size);
    entry.assign(key.begin(), key.end());
    for (const unsigned shift : {16U, 8U, 0U})
        entry.push_back(static_cast<std::byte>(row.page >> shift));
    entry.push_back(static_cast<std::byte>(row.slot));
    return entry;
}

std::size_t common_length(std::span<const std::byte> one, std::span<const std::byte> other) {
    return static_cast<std::size_t>(std::ranges::mismatch(one, other).in1 - one.begin());
}

} // namespace jet
