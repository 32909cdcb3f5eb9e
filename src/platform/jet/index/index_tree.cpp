#include "platform/jet/index/index_tree.h"

#include "platform/jet/index/index_tree_edit.h"

#include <algorithm>

namespace jet {

namespace {

/// The order of the bytes in the file. Only where one key begins like another do rows mix with keys.
bool stands_before(const Index_Tree::Entry& one, const Index_Tree::Entry& other) {
    const std::size_t common = common_length(one.key, other.key);
    if (common < std::min(one.key.size(), other.key.size()))
        return one.key[common] < other.key[common];
    if (one.key.size() == other.key.size()) return one.row < other.row;
    return entry_bytes(one.key, one.row) < entry_bytes(other.key, other.row);
}

} // namespace

Index_Page Index_Tree::page(Page_Number number) const {
    return {pager_->read(number), number, table_};
}

/// Goes down to a leaf; `choose` tells at each node which way.
template <typename Choose>
Index_Page Index_Tree::descend(Choose choose) const {
    Index_Page at = page(root_);
    for (std::size_t depth = 0; !at.leaf(); ++depth) {
        if (depth == deepest_tree) throw damaged(root_, "its index tree has no end");
        at = page(at.child(choose(at)));
    }
    return at;
}

Index_Tree::Cursor Index_Tree::first() const {
    Cursor cursor(*pager_, table_, descend([](const Index_Page&) { return std::size_t{0}; }), 0);
    cursor.skip_to_entry();
    return cursor;
}

Index_Tree::Cursor Index_Tree::last() const {
    const auto last_branch = [](const Index_Page& node) {
        return node.tail() == 0 && node.end() > 0 ? node.before(node.end()) : node.end();
    };
    const Index_Page leaf = descend(last_branch);
    Cursor cursor(*pager_, table_, leaf, leaf.end());
    if (leaf.end() > 0 || leaf.previous() != 0) cursor.previous();
    return cursor;
}

Index_Tree::Cursor Index_Tree::lower_bound(std::span<const std::byte> key) const {
    const Index_Page leaf = descend([&](const Index_Page& node) { return node.branch(key); });
    Cursor cursor(*pager_, table_, leaf, leaf.lower_bound(key));
    cursor.skip_to_entry();
    return cursor;
}

std::vector<Row_Place> Index_Tree::rows(std::span<const std::byte> key) const {
    std::vector<Row_Place> found;
    for (Cursor at = lower_bound(key); !at.at_end(); at.next()) {
        const auto present = at.key();
        // A key may begin like another (empty binary values): only the whole of it counts, but the
        // row pointers behind the shorter key may lie among the longer ones.
        if (present.size() == key.size() && std::ranges::equal(present, key))
            found.push_back(at.row());
        else if (present.size() <= key.size() ||
                 !std::ranges::equal(present.first(key.size()), key))
            break;
    }
    return found;
}

bool Index_Tree::contains(std::span<const std::byte> key) const {
    Cursor at = lower_bound(key);
    if (at.at_end()) return false;
    return std::ranges::equal(at.key(), key) || !rows(key).empty();
}

bool Index_Tree::insert(Page_Space& space, std::span<const std::byte> key, Row_Place row) {
    return Index_Tree_Edit(*pager_, space, table_, root_, map_).insert(key, row);
}

void Index_Tree::erase(Page_Space& space, std::span<const std::byte> key, Row_Place row) {
    Index_Tree_Edit(*pager_, space, table_, root_, map_).erase(key, row);
}

std::size_t Index_Tree::build(Page_Space& space, std::vector<Entry> entries) {
    std::ranges::sort(entries, stands_before);
    std::size_t different = 0;
    for (const Entry& entry : entries) different += insert(space, entry.key, entry.row) ? 1U : 0U;
    return different;
}

Index_Tree Index_Tree::make(Pager& pager, Page_Space& space, Page_Number table, Page_Number near) {
    const Page_Number root = space.allocate();
    Index_Image().store(pager, root, table);
    Usage_Map map = Usage_Map::make(pager, space, near);
    map.add(space, root);
    return {pager, table, root, map.place()};
}

std::span<const std::byte> Index_Tree::Cursor::key() {
    page_.copy_entry(position_, key_);
    return std::span(key_).first(key_.size() - row_size);
}

void Index_Tree::Cursor::next() {
    position_ = page_.after(position_);
    skip_to_entry();
}

/// Leaves may be empty; the end of all is the end of the last one.
void Index_Tree::Cursor::skip_to_entry() {
    while (position_ == page_.end() && page_.next() != 0) {
        load(page_.next());
        position_ = 0;
    }
}

void Index_Tree::Cursor::previous() {
    while (position_ == 0 && page_.previous() != 0) {
        load(page_.previous());
        position_ = page_.end();
    }
    position_ = position_ == 0 ? page_.end() : page_.before(position_);
}

void Index_Tree::Cursor::load(Page_Number leaf) {
    if (++hops_ > 2 * std::uint64_t{pager_->page_count()})
        throw damaged(leaf, "the leaves of its index lead in a circle");
    page_ = Index_Page(pager_->read(leaf), leaf, table_);
    if (!page_.leaf()) throw damaged(leaf, "should be a leaf of an index");
}

} // namespace jet
