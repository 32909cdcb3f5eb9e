#include "platform/jet/index/index_tree_patch.h"

#include "platform/jet/index/index_tree_mask.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace jet {
namespace {

constexpr std::size_t mask_size = jet4_index.entries - jet4_index.mask;
constexpr std::size_t mask_words = (mask_size + 7) / 8;
using Words = std::array<std::uint64_t, mask_words>;

/// All bits above `bit` that move by `distance`, up or down; the others are 0.
Words moved_up(const Words& words, std::size_t distance) {
    Words moved{};
    const std::size_t whole = distance / 64;
    const std::size_t part = distance % 64;
    for (std::size_t i = mask_words; i-- > whole;) {
        moved[i] = words[i - whole] << part;
        if (part > 0 && i > whole) moved[i] |= words[i - whole - 1] >> (64 - part);
    }
    return moved;
}

Words moved_down(const Words& words, std::size_t distance) {
    Words moved{};
    const std::size_t whole = distance / 64;
    const std::size_t part = distance % 64;
    for (std::size_t i = 0; i + whole < mask_words; ++i) {
        moved[i] = words[i + whole] >> part;
        if (part > 0 && i + whole + 1 < mask_words) moved[i] |= words[i + whole + 1] << (64 - part);
    }
    return moved;
}

Words load_mask(std::span<const std::byte> page) {
    const Entry_Mask mask(page.subspan(jet4_index.mask, mask_size));
    Words words{};
    for (std::size_t i = 0; i < mask_words; ++i) words[i] = mask.load(i);
    return words;
}

void store_mask(std::span<std::byte> page, const Words& words) {
    for (std::size_t i = 0; i < mask_words; ++i)
        store_number(&page[jet4_index.mask + 8 * i], words[i],
                     std::min<std::size_t>(8, mask_size - 8 * i));
}

/// Splits at `bit`: bits up to it stay, those above are returned.
Words take_above(Words& words, std::size_t bit) {
    Words above = words;
    const std::size_t word = (bit + 1) / 64;
    std::fill_n(above.begin(), word, std::uint64_t{0});
    const std::uint64_t low = (std::uint64_t{1} << ((bit + 1) % 64)) - 1;
    above[word] &= ~low;
    words[word] &= low;
    std::fill(words.begin() + static_cast<std::ptrdiff_t>(word) + 1, words.end(), 0);
    return above;
}

void unite(Words& words, const Words& others) {
    for (std::size_t i = 0; i < mask_words; ++i) words[i] |= others[i];
}

void flip(Words& words, std::size_t bit) { words[bit / 64] ^= std::uint64_t{1} << (bit % 64); }

std::span<const std::byte> without_row(std::span<const std::byte> entry) {
    return entry.first(entry.size() - row_size);
}

/// Whether these keys, the outermost ones of a page to be, have exactly its prefix in common.
bool prefix_stays(const Index_Page& leaf, std::span<const std::byte> first,
                  std::span<const std::byte> last) {
    return common_length(without_row(first), without_row(last)) == leaf.prefix_length();
}

/// Whether a compressed page stays as it is when `entry` comes in at a position.
bool prefix_takes(const Index_Page& leaf, std::size_t position, std::span<const std::byte> entry) {
    const std::size_t prefix = leaf.prefix_length();
    if (entry.size() < prefix + row_size || leaf.after(0) < prefix + row_size) return false;
    if (!std::ranges::equal(leaf.prefix(), entry.first(prefix))) return false;
    Bytes other;
    if (position == 0) {
        leaf.copy_entry(leaf.before(leaf.end()), other);
        return prefix_stays(leaf, entry, other);
    }
    if (position < leaf.end()) return true;
    leaf.copy_entry(0, other);
    return prefix_stays(leaf, other, entry);
}

/// Whether a compressed page stays as it is when the entry at a position goes.
bool prefix_survives(const Index_Page& leaf, std::size_t position) {
    const std::size_t end = leaf.after(position);
    if (position != 0 && end != leaf.end()) return true;
    if (position == 0 && end == leaf.end()) return false;
    if (leaf.after(0) < leaf.prefix_length() + row_size) return false;
    Bytes first;
    leaf.copy_entry(position == 0 ? end : 0, first);
    Bytes last;
    leaf.copy_entry(leaf.before(position == 0 ? leaf.end() : position), last);
    return prefix_stays(leaf, first, last);
}

} // namespace

// The first entry of a compressed page is stored whole, and begins with the prefix. So an entry
// that comes in or goes at the front leaves the prefix where it is: what moves begins behind it.

bool insert_in_place(Pager& pager, const Index_Page& leaf, std::size_t position,
                     std::span<const std::byte> entry) {
    const std::size_t prefix = leaf.prefix_length();
    if (prefix > 0 && !prefix_takes(leaf, position, entry)) return false;
    const auto stored = entry.subspan(prefix);
    const std::size_t used = leaf.end();
    if (used + stored.size() > jet4_index.room()) return false;
    const std::size_t start = position == 0 ? prefix : position;
    const auto page = pager.change(leaf.number());
    std::byte* at = &page[jet4_index.entries + start];
    std::memmove(at + stored.size(), at, used - start);
    std::ranges::copy(stored, at);
    Words mask = load_mask(page);
    const Words above = take_above(mask, start);
    unite(mask, moved_up(above, stored.size()));
    flip(mask, start + stored.size());
    store_mask(page, mask);
    store_u16(&page[jet4_index.prefix], prefix);
    store_u16(&page[2], jet4_index.room() - used - stored.size());
    return true;
}

bool erase_in_place(Pager& pager, const Index_Page& leaf, std::size_t position) {
    const std::size_t prefix = leaf.prefix_length();
    if (prefix > 0 && !prefix_survives(leaf, position)) return false;
    const std::size_t start = position == 0 ? prefix : position;
    const std::size_t end = leaf.after(position);
    const std::size_t size = end - start;
    const std::size_t used = leaf.end();
    const auto page = pager.change(leaf.number());
    std::byte* at = &page[jet4_index.entries + start];
    std::memmove(at, at + size, used - end);
    std::memset(at + (used - end), 0, size);
    Words mask = load_mask(page);
    flip(mask, end);
    const Words above = take_above(mask, start);
    unite(mask, moved_down(above, size));
    store_mask(page, mask);
    store_u16(&page[2], jet4_index.room() - used + size);
    return true;
}

} // namespace jet
