#pragma once

#include "platform/jet/index/index_tree_image.h"
#include "platform/jet/pages/page_space.h"

#include <optional>
#include <vector>

namespace jet {

/// One change of an index tree. What holds before and after each:
///   T1  a node has an entry for every child but the last; it is a copy of the last entry below
///       that child. The last child is the tail, so that appending changes no node. A node with
///       one child has its entry and no tail.
///   T2  all leaves are linked in order; nodes are linked with those of the same parent.
///   T3  no page but the root is empty, and the map holds exactly the pages of the tree.
///   T4  the root keeps its number.
class Index_Tree_Edit {
public:
    Index_Tree_Edit(Pager& pager, Page_Space& space, Page_Number table, Page_Number root,
                    Row_Place map)
        : pager_(pager), space_(space), table_(table), root_(root), map_(pager, map) {}

    [[nodiscard]] bool insert(std::span<const std::byte> key, Row_Place row);
    void erase(std::span<const std::byte> key, Row_Place row);

private:
    /// A page on the way from the root to the leaf, and where the way goes on.
    struct Step {
        Page_Number page;
        std::size_t position;
    };
    /// The last entry below a page, if it has become another one.
    using New_Last = std::optional<Bytes>;

    Index_Page page(Page_Number number) const { return {pager_.read(number), number, table_}; }
    Index_Page find_leaf(std::span<const std::byte> entry);
    bool has_neighbour(const Index_Page& leaf, std::size_t position,
                       std::span<const std::byte> key) const;
    void settle(std::size_t level, Index_Image& image, const New_Last& new_last,
                std::optional<std::size_t> inserted = {});
    void raise(std::size_t level, Bytes new_last);
    void deepen();
    std::size_t choose_cut(const Index_Image& image, std::optional<std::size_t> inserted) const;
    void split(std::size_t level, Index_Image& image, const New_Last& new_last,
               std::optional<std::size_t> inserted);
    void part_children(const Index_Image& left, const Index_Image& right);
    void drop(std::size_t level, const Index_Page& empty);
    void drop_child(std::size_t level);
    Bytes last_entry_below(Page_Number page) const;
    void link(Page_Number from, std::size_t field, Page_Number to);

    Pager& pager_;
    Page_Space& space_;
    Page_Number table_;
    Page_Number root_;
    Usage_Map map_;
    std::vector<Step> path_; ///< from the root; the leaf is the last one
};

} // namespace jet
