#pragma once

#include "platform/jet/check/definition.h"
#include "platform/jet/check/key.h"
#include "platform/jet/check/tally.h"

#include <functional>

namespace jet::check {

/// The place of a row, as it stands at the end of an index entry: `u24 BE page, u8 row`.
inline constexpr std::size_t place_bytes = 4;

/// The row of an entry, which has at least those bytes.
Row_Place place_of(std::span<const std::uint8_t> entry);
/// The order of entries: that of their bytes.
bool precedes(const Key& a, const Key& b);
/// Leaves only the key of an entry.
void cut_place(Key& entry);

/// One page of an index tree with its entries in full length.
class Index_Page {
public:
    Index_Page(const Format& format, Bytes bytes) : format_(&format), bytes_(bytes) {}

    std::uint32_t type() const { return bytes_.u8(0); }
    std::uint32_t table() const { return bytes_.u32(4); }
    std::uint32_t free() const { return bytes_.u16(2); }
    std::uint32_t previous() const { return bytes_.u32(format_->previous); }
    std::uint32_t next() const { return bytes_.u32(format_->next); }
    std::uint32_t tail() const { return bytes_.u32(format_->tail); }
    std::uint32_t prefix() const { return bytes_.u16(format_->prefix); }

    /// Reads the entry mask. Must precede count() and entry().
    void read_mask();
    std::size_t count() const { return ends_.size(); }
    /// Bytes of entries as they are stored.
    std::uint32_t stored() const { return ends_.empty() ? 0 : ends_.back(); }
    /// Bytes of entry `i` as it is stored.
    std::uint32_t stored(std::size_t i) const { return ends_[i] - begin(i); }
    /// Puts the whole entry into `into`.
    void entry(std::size_t i, Key& into) const;
    /// Page of the child below entry `i` of a node.
    std::uint32_t child(std::size_t i) const {
        return bytes_.u32_be(std::size_t{format_->entries} + ends_[i] - 4);
    }

private:
    std::uint32_t begin(std::size_t i) const { return i == 0 ? 0 : ends_[i - 1]; }

    const Format* format_;
    Bytes bytes_;
    std::vector<std::uint32_t> ends_;
};

/// How far a tree can be used after its check.
struct Tree_State {
    bool complete = true; ///< every entry was reached
    bool sorted = true;   ///< and in order, along the links between leaves too
};

/// Walks real index `number` of the table, claims its pages and checks their structure and order;
/// every entry of a leaf goes to `visit`.
Tree_State check_tree(Inspection& inspection, const Definition& table, std::uint32_t number,
                      const std::function<void(const Key&)>& visit);

/// Every entry of the leaves of a tree that check_tree() found complete.
void visit_tree(Inspection& inspection, std::uint32_t root,
                const std::function<void(const Key&)>& visit);

/// Goes in order through the entries of a tree that check_tree() found complete and sorted.
class Leaf_Cursor {
public:
    Leaf_Cursor(Inspection& inspection, std::uint32_t root);
    /// @return false at the end.
    bool next(Key& entry);

private:
    void open(std::uint32_t page);

    Inspection& inspection_;
    Page keep_;
    Index_Page page_;
    std::size_t position_ = 0;
    std::uint32_t pages_left_;
};

} // namespace jet::check
