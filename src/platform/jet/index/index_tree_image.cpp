#include "platform/jet/index/index_tree_image.h"

#include "platform/failure/sure.h"

#include <algorithm>

namespace jet {

Index_Image::Index_Image(const Index_Page& page)
    : previous(page.previous()), next(page.next()), tail(page.tail()), leaf_(page.leaf()) {
    bytes_.reserve(2 * jet4_index.room());
    entries_.reserve(512);
    Bytes entry;
    for (std::size_t at = 0; at < page.end(); at = page.after(at)) {
        page.copy_entry(at, entry);
        insert(size(), entry);
    }
    if (leaf_) return;
    if (tail != 0 && size() > 0 && child(size() - 1) == tail) tail = 0;
    if (tail == 0 && size() > 1) make_tail();
}

std::span<const std::byte> Index_Image::entry(std::size_t number) const {
    return std::span(bytes_).subspan(entries_[number].at, entries_[number].size);
}

std::span<const std::byte> Index_Image::key_and_row(std::size_t number) const {
    const auto whole = entry(number);
    return leaf_ ? whole : whole.first(whole.size() - child_size);
}

void Index_Image::insert(std::size_t number, std::span<const std::byte> entry) {
    const Place place{bytes_.size(), entry.size()};
    bytes_.insert(bytes_.end(), entry.begin(), entry.end());
    entries_.insert(entries_.begin() + static_cast<std::ptrdiff_t>(number), place);
}

void Index_Image::replace(std::size_t number, std::span<const std::byte> entry) {
    entries_[number] = {bytes_.size(), entry.size()};
    bytes_.insert(bytes_.end(), entry.begin(), entry.end());
}

void Index_Image::erase(std::size_t number) {
    SURE(number < size());
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(number));
}

Page_Number Index_Image::child(std::size_t number) const {
    if (number == size()) return tail;
    Page_Number child = 0;
    for (const std::byte byte : entry(number).last(child_size))
        child = child << 8U | std::to_integer<Page_Number>(byte);
    return child;
}

namespace {

Bytes node_entry(std::span<const std::byte> key_and_row, Page_Number child) {
    Bytes entry(key_and_row.begin(), key_and_row.end());
    for (const unsigned shift : {24U, 16U, 8U, 0U})
        entry.push_back(static_cast<std::byte>(child >> shift));
    return entry;
}

} // namespace

void Index_Image::insert_child(std::size_t number, std::span<const std::byte> key_and_row,
                               Page_Number child) {
    insert(number, node_entry(key_and_row, child));
}

void Index_Image::set_key(std::size_t number, std::span<const std::byte> key_and_row) {
    if (number < size()) replace(number, node_entry(key_and_row, child(number)));
}

Bytes Index_Image::make_tail() {
    SURE(size() > 0);
    const auto last = key_and_row(size() - 1);
    Bytes key(last.begin(), last.end());
    tail = child(size() - 1);
    erase(size() - 1);
    return key;
}

Index_Image Index_Image::cut(std::size_t number) {
    Index_Image right(leaf_);
    for (std::size_t i = number; i < size(); ++i) right.insert(i - number, entry(i));
    entries_.resize(number);
    right.tail = std::exchange(tail, 0);
    return right;
}

/// The beginning that the keys of these entries have in common; never a part of a row pointer.
std::size_t Index_Image::shared_length(std::size_t first, std::size_t last) const {
    std::size_t shared = common_length(entry(first), entry(last - 1));
    for (std::size_t i = first; i < last; ++i)
        shared = std::min(shared, entries_[i].size - end_of_entry());
    return shared;
}

std::size_t Index_Image::stored_size(std::size_t first, std::size_t last) const {
    std::size_t total = 0;
    for (std::size_t i = first; i < last; ++i) total += entries_[i].size;
    if (total <= jet4_index.room()) return total;
    return total - shared_length(first, last) * (last - first - 1);
}

std::size_t Index_Image::middle() const {
    const std::size_t shared = shared_length(0, size());
    std::size_t total = 0;
    for (const Place& place : entries_) total += place.size - shared;
    std::size_t number = 0;
    for (std::size_t before = 0; before < total / 2; ++number)
        before += entries_[number].size - shared;
    return std::max<std::size_t>(number, 1);
}

void Index_Image::store(Pager& pager, Page_Number number, Page_Number table) const {
    constexpr std::size_t junk_byte = 0x1A; // stays as other programs wrote it
    std::size_t whole = 0;
    for (const Place& place : entries_) whole += place.size;
    const std::size_t shared = whole <= jet4_index.room() ? 0 : shared_length(0, size());
    const auto page = pager.change(number);
    std::ranges::fill(page.first(junk_byte), std::byte{0});
    std::ranges::fill(page.subspan(jet4_index.mask), std::byte{0});
    page[0] = leaf_ ? index_leaf_type : index_node_type;
    page[1] = std::byte{1};
    store_u32(&page[4], table);
    store_u32(&page[jet4_index.previous], previous);
    store_u32(&page[jet4_index.next], next);
    store_u32(&page[jet4_index.tail], tail);
    store_u16(&page[jet4_index.prefix], shared);
    std::size_t end = 0;
    for (std::size_t i = 0; i < size(); ++i) {
        const auto stored = entry(i).subspan(i == 0 ? 0 : shared);
        std::ranges::copy(stored, page.subspan(jet4_index.entries + end).begin());
        end += stored.size();
        page[jet4_index.mask + end / 8] |= static_cast<std::byte>(1U << (end % 8));
    }
    store_u16(&page[2], jet4_index.room() - end);
}

} // namespace jet
