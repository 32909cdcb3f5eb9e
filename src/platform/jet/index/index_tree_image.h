#pragma once

#include "platform/jet/index/index_tree_page.h"

#include <utility>
#include <vector>

namespace jet {

/// An index page taken apart, with whole entries, for every change beyond a single entry in a leaf.
/// A node's children are numbered: one for each entry, then the tail.
class Index_Image {
public:
    explicit Index_Image(bool leaf = true) : leaf_(leaf) {}
    /// A node of unusual form comes out in the usual one: with two or more children, the last of
    /// them is the tail and has no entry.
    explicit Index_Image(const Index_Page& page);

    bool leaf() const { return leaf_; }
    std::size_t size() const { return entries_.size(); } ///< entries
    std::span<const std::byte> entry(std::size_t number) const;
    /// Key and row pointer of an entry, without the child of a node.
    std::span<const std::byte> key_and_row(std::size_t number) const;
    void insert(std::size_t number, std::span<const std::byte> entry);
    void replace(std::size_t number, std::span<const std::byte> entry);
    void erase(std::size_t number);

    // nodes
    std::size_t children() const { return size() + (tail != 0 ? 1 : 0); }
    Page_Number child(std::size_t number) const;
    void insert_child(std::size_t number, std::span<const std::byte> key_and_row,
                      Page_Number child);
    /// Gives a child another last entry; nothing to do for a tail, which has none.
    void set_key(std::size_t number, std::span<const std::byte> key_and_row);
    /// The last entry becomes the tail. @return its key and row pointer.
    Bytes make_tail();

    /// The entries from `number` on, and the tail, move to another image.
    Index_Image cut(std::size_t number);
    /// Bytes that the entries first..last-1 take on a page of their own.
    std::size_t stored_size(std::size_t first, std::size_t last) const;
    /// The entry that begins the second half of the bytes; 1 or above.
    std::size_t middle() const;
    bool fits() const { return stored_size(0, size()) <= jet4_index.room(); }
    /// Writes the page anew, compressed only if it does not fit otherwise.
    void store(Pager& pager, Page_Number page, Page_Number table) const;

    Page_Number previous = 0;
    Page_Number next = 0;
    Page_Number tail = 0;

private:
    std::size_t end_of_entry() const { return row_size + (leaf_ ? 0 : child_size); }
    std::size_t shared_length(std::size_t first, std::size_t last) const;

    struct Place {
        std::size_t at, size;
    };
    bool leaf_;
    Bytes bytes_; ///< what entries_ point into; entries that were taken out stay as waste
    std::vector<Place> entries_;
};

} // namespace jet
