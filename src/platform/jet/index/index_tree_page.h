#pragma once

#include "platform/jet/format/bytes.h"
#include "platform/jet/format/value.h"
#include "platform/jet/pages/pager.h"

#include <compare>
#include <cstdint>
#include <optional>
#include <span>

namespace jet {

/// Where things stand on an index page, and how much room its entries have. Offsets in bytes.
struct Index_Layout {
    std::size_t previous, next, tail, prefix, mask, entries, page_size;
    std::size_t room() const { return page_size - entries; }
};
inline constexpr Index_Layout jet4_index{12, 16, 20, 0x18, 0x1B, 0x1E0, 4096};
inline constexpr Index_Layout jet3_index{8, 12, 16, 0x14, 0x16, 0xF8, 2048};

constexpr std::byte index_node_type{3};
constexpr std::byte index_leaf_type{4};
constexpr std::size_t row_size = 4;   ///< of the row pointer that ends the entry of a leaf
constexpr std::size_t child_size = 4; ///< follows it in the entry of a node
constexpr std::size_t deepest_tree = 32;

/// An index page, read without taking it apart: the mask with its bit at the end of each entry is
/// enough to bisect. A position is the offset of an entry behind the start of all entries; `end()`
/// is the position behind the last one, which on a node stands for the tail.
class Index_Page {
public:
    /// Throws Error (damaged) when it is no index page of the table, or lengths cannot be right.
    Index_Page(Page page, Page_Number number, Page_Number table);

    Page_Number number() const { return number_; }
    bool leaf() const { return (*page_)[0] == index_leaf_type; }
    Page_Number previous() const { return link(layout_->previous); }
    Page_Number next() const { return link(layout_->next); }
    Page_Number tail() const { return link(layout_->tail); }
    std::span<const std::byte> bytes() const { return *page_; }

    std::size_t end() const { return end_; }
    std::size_t after(std::size_t position) const;
    std::size_t before(std::size_t position) const;        ///< position > 0
    std::size_t number_before(std::size_t position) const; ///< of entries

    std::size_t prefix_length() const { return prefix_length_; }
    /// The first `prefix_length()` bytes of every entry.
    std::span<const std::byte> prefix() const { return area().first(prefix_length_); }
    /// The whole entry, including row pointer and child.
    void copy_entry(std::size_t position, Bytes& into) const;
    Row_Place row(std::size_t position) const;
    /// Of an entry, or the tail at end(). A node without a tail has nothing there: 0.
    Page_Number child(std::size_t position) const;
    /// Orders an entry, without child, against key or key and row pointer.
    std::strong_ordering order(std::size_t position, std::span<const std::byte> wanted) const;
    /// The first entry that is not below `wanted`, else end().
    std::size_t lower_bound(std::span<const std::byte> wanted) const;
    /// The entry of a node, or its tail, below which `wanted` belongs. A node without a tail has
    /// all that is larger below its last entry.
    std::size_t branch(std::span<const std::byte> wanted) const;
    bool holds(std::size_t position, std::span<const std::byte> key) const; ///< exactly this key

private:
    Page_Number link(std::size_t at) const { return load_u32(&(*page_)[at]); }
    std::span<const std::byte> area() const { return bytes().subspan(layout_->entries); }
    std::span<const std::byte> stored(std::size_t position) const;
    std::size_t size_of_tail() const { return leaf() ? 0 : child_size; }
    std::span<const std::byte> last_bytes(std::size_t position, std::size_t count,
                                          std::span<std::byte> into) const;
    [[noreturn]] void fail(const char* reason) const { throw damaged(number_, reason); }

    Page page_;
    Page_Number number_;
    const Index_Layout* layout_;
    std::size_t prefix_length_ = 0;
    std::size_t end_ = 0;
};

/// The key of an entry and its row as they stand in the file: u24 BE page, u8 row behind the key.
Bytes entry_bytes(std::span<const std::byte> key, Row_Place row);

/// Length of what both begin with.
std::size_t common_length(std::span<const std::byte> one, std::span<const std::byte> other);

} // namespace jet
