#pragma once

#include "platform/jet/format/bytes.h"
#include "platform/jet/format/value.h"
#include "platform/jet/index/index_tree_page.h"
#include "platform/jet/pages/page_space.h"
#include "platform/jet/pages/pager.h"

#include <compare>
#include <optional>
#include <span>
#include <vector>

namespace jet {

/// An index as it stands in the file: a tree of pages whose leaves hold key and row of every row,
/// in ascending order of their bytes. Keys come from key_of() and are nothing but bytes here.
///
/// Reading works on Jet 3 and 4, survives any damage and throws Error (damaged) where pages
/// contradict each other. Changing is for Jet 4, within a write transaction.
class Index_Tree {
public:
    struct Entry {
        Bytes key;
        Row_Place row; ///< the original place of the row, also when it has moved
        auto operator<=>(const Entry&) const = default;
    };

    /// The longest key that a page is sure to take. Whoever stores rows refuses longer ones first.
    static constexpr std::size_t longest_key = 1800;

    /// @param table definition page of the table; all pages of the tree bear it.
    /// @param map the pages of the tree; not looked at while reading.
    Index_Tree(Pager& pager, Page_Number table, Page_Number root, Row_Place map)
        : pager_(&pager), table_(table), root_(root), map_(map) {}

    /// A place among the entries. Changing the tree makes it meaningless.
    class Cursor {
    public:
        bool at_end() const { return page_.end() == 0 || position_ == page_.end(); }
        /// Valid until the cursor moves.
        std::span<const std::byte> key();
        Row_Place row() const { return page_.row(position_); }
        void next();
        /// From the end to the last entry; before the first entry lies the end too.
        void previous();

    private:
        friend class Index_Tree;
        Cursor(Pager& pager, Page_Number table, Index_Page page, std::size_t position)
            : pager_(&pager), table_(table), page_(std::move(page)), position_(position) {}
        void skip_to_entry();
        void load(Page_Number leaf);

        Pager* pager_;
        Page_Number table_;
        Index_Page page_;
        std::size_t position_;
        std::uint64_t hops_ = 0; ///< bounded, so that links in a circle are noticed
        Bytes key_;
    };

    Cursor first() const;
    Cursor last() const; ///< on the last entry; at the end if there is none
    /// The first entry whose bytes are not below `key`.
    Cursor lower_bound(std::span<const std::byte> key) const;
    /// Rows with exactly this key, in the order of their pointers.
    std::vector<Row_Place> rows(std::span<const std::byte> key) const;
    bool contains(std::span<const std::byte> key) const;

    /// @return whether the key is new, which the statistic of different keys counts.
    /// Throws Error: refused for a key that is too long, damaged when the entry is there already.
    [[nodiscard]] bool insert(Page_Space& space, std::span<const std::byte> key, Row_Place row);
    /// Pages left empty are given back. Throws Error (damaged) when the entry is not there.
    void erase(Page_Space& space, std::span<const std::byte> key, Row_Place row);
    /// Fills an empty tree, leaves packed full. @return the number of different keys.
    [[nodiscard]] std::size_t build(Page_Space& space, std::vector<Entry> entries);

    /// Makes an empty tree: a root page without entries, and a map that holds it (placed by
    /// Usage_Map::make with `near`).
    static Index_Tree make(Pager& pager, Page_Space& space, Page_Number table, Page_Number near);

    Page_Number root() const { return root_; }
    Row_Place map() const { return map_; }

private:
    Index_Page page(Page_Number number) const;
    template <typename Choose>
    Index_Page descend(Choose choose) const;

    Pager* pager_;
    Page_Number table_;
    Page_Number root_;
    Row_Place map_;
};

} // namespace jet
