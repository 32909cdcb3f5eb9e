#include "platform/jet/index/index_tree_edit.h"

#include "platform/jet/index/index_tree.h"
#include "platform/jet/index/index_tree_patch.h"

#include <algorithm>

namespace jet {

Index_Page Index_Tree_Edit::find_leaf(std::span<const std::byte> entry) {
    path_.clear();
    Index_Page at = page(root_);
    while (!at.leaf()) {
        if (path_.size() == deepest_tree) throw damaged(root_, "its index tree has no end");
        path_.push_back({at.number(), at.branch(entry)});
        at = page(at.child(path_.back().position));
    }
    path_.push_back({at.number(), at.lower_bound(entry)});
    return at;
}

/// Whether an entry beside the position has this key. Equal keys stand together, so at an edge of
/// the leaf the next leaf has to be asked as well.
bool Index_Tree_Edit::has_neighbour(const Index_Page& leaf, std::size_t position,
                                    std::span<const std::byte> key) const {
    const auto last_of = [&](Page_Number number) {
        const Index_Page other = page(number);
        return other.end() > 0 && other.holds(other.before(other.end()), key);
    };
    const auto first_of = [&](Page_Number number) {
        const Index_Page other = page(number);
        return other.end() > 0 && other.holds(0, key);
    };
    const bool before = position > 0           ? leaf.holds(leaf.before(position), key)
                        : leaf.previous() != 0 ? last_of(leaf.previous())
                                               : false;
    if (before) return true;
    if (position < leaf.end()) return leaf.holds(position, key);
    return leaf.next() != 0 && first_of(leaf.next());
}

bool Index_Tree_Edit::insert(std::span<const std::byte> key, Row_Place row) {
    if (key.size() > Index_Tree::longest_key)
        throw Error(Failure::refused, "page " + std::to_string(root_), "a key too long to index");
    const Bytes entry = entry_bytes(key, row);
    const Index_Page leaf = find_leaf(entry);
    const std::size_t position = path_.back().position;
    const bool at_end = position == leaf.end();
    if (!at_end && leaf.order(position, entry) == 0)
        throw damaged(leaf.number(), "has an index entry for a row that is new");
    const bool new_key = !has_neighbour(leaf, position, key);
    const std::size_t level = path_.size() - 1;
    if (insert_in_place(pager_, leaf, position, entry)) {
        if (at_end) raise(level, entry);
        return new_key;
    }
    Index_Image image(leaf);
    const std::size_t number = leaf.number_before(position);
    image.insert(number, entry);
    settle(level, image, at_end ? New_Last(entry) : New_Last(), number);
    return new_key;
}

void Index_Tree_Edit::erase(std::span<const std::byte> key, Row_Place row) {
    const Bytes entry = entry_bytes(key, row);
    const Index_Page leaf = find_leaf(entry);
    const std::size_t position = path_.back().position;
    if (position == leaf.end() || leaf.order(position, entry) != 0)
        throw damaged(leaf.number(), "lacks the index entry of a row");
    const std::size_t level = path_.size() - 1;
    const bool was_last = leaf.after(position) == leaf.end();
    if (was_last && position == 0 && level > 0) return drop(level, leaf);
    New_Last new_last;
    if (was_last && position > 0) leaf.copy_entry(leaf.before(position), new_last.emplace());
    if (erase_in_place(pager_, leaf, position)) {
        if (new_last) raise(level, std::move(*new_last));
        return;
    }
    Index_Image image(leaf);
    image.erase(leaf.number_before(position));
    settle(level, image, new_last);
}

/// Stores a changed page and lets its parents know what became of it.
void Index_Tree_Edit::settle(std::size_t level, Index_Image& image, const New_Last& new_last,
                             std::optional<std::size_t> inserted) {
    if (image.fits()) {
        image.store(pager_, path_[level].page, table_);
        if (new_last) raise(level, *new_last);
        return;
    }
    if (level == 0) {
        deepen();
        level = 1;
    }
    split(level, image, new_last, inserted);
}

/// The last entry below a page has changed: its copy stands in the lowest node in which the way
/// down does not go through the last child (T1).
void Index_Tree_Edit::raise(std::size_t level, Bytes new_last) {
    while (level-- > 0) {
        const Index_Page node = page(path_[level].page);
        if (path_[level].position == node.end()) continue;
        Index_Image image(node);
        const std::size_t number = node.number_before(path_[level].position);
        const bool last = number + 1 >= image.children();
        image.set_key(number, new_last);
        return settle(level, image, last ? New_Last(std::move(new_last)) : New_Last());
    }
}

/// The root becomes a node over a new page that takes its place at the next level (T4).
void Index_Tree_Edit::deepen() {
    const Page_Number page = space_.allocate();
    map_.add(space_, page);
    Index_Image root(false);
    root.tail = page;
    root.store(pager_, root_, table_);
    path_.front().page = page;
    path_.insert(path_.begin(), {root_, 0});
}

/// Rows that come in the order of their keys, or against it, leave full pages behind; else the
/// halves are equal. Cuts near the wanted one are tried in case a half does not fit.
std::size_t Index_Tree_Edit::choose_cut(const Index_Image& image,
                                        std::optional<std::size_t> inserted) const {
    const std::size_t highest = image.size() - 1;
    std::size_t wanted = image.middle();
    if (inserted == highest && image.next == 0)
        wanted = highest;
    else if (inserted == std::size_t{0} && image.previous == 0)
        wanted = 1;
    const std::size_t room = jet4_index.room();
    const auto possible = [&](std::size_t cut) {
        return cut >= 1 && cut <= highest && image.stored_size(0, cut) <= room &&
               image.stored_size(cut, image.size()) <= room;
    };
    for (std::size_t distance = 0; distance <= highest; ++distance) {
        if (possible(wanted + distance)) return wanted + distance;
        if (distance < wanted && possible(wanted - distance)) return wanted - distance;
    }
    throw Error(Failure::refused, "page " + std::to_string(root_), "keys too long to index");
}

/// The upper part of a page moves to a new one behind it.
void Index_Tree_Edit::split(std::size_t level, Index_Image& left, const New_Last& new_last,
                            std::optional<std::size_t> inserted) {
    const Page_Number old_page = path_[level].page;
    Index_Image right = left.cut(choose_cut(left, inserted));
    const Page_Number new_page = space_.allocate();
    map_.add(space_, new_page);
    right.previous = old_page;
    right.next = left.next;
    left.next = new_page;
    if (right.next != 0) link(right.next, jet4_index.previous, new_page); // T2
    const auto last = left.key_and_row(left.size() - 1);
    const Bytes left_last(last.begin(), last.end());
    if (!left.leaf()) {
        part_children(left, right);
        if (left.size() > 1) left.make_tail();
    }
    left.store(pager_, old_page, table_);
    right.store(pager_, new_page, table_);

    const Index_Page parent = page(path_[level - 1].page);
    Index_Image node(parent);
    const std::size_t number = parent.number_before(path_[level - 1].position);
    const bool was_last = number + 1 >= node.children();
    if (was_last) {
        if (number < node.size()) node.erase(number); // a single child had an entry
        node.insert_child(node.size(), left_last, old_page);
        node.tail = new_page;
    } else {
        const auto present = node.key_and_row(number);
        const Bytes right_last = new_last ? *new_last : Bytes(present.begin(), present.end());
        node.set_key(number, left_last);
        node.insert_child(number + 1, right_last, new_page);
    }
    settle(level - 1, node, was_last ? new_last : New_Last(),
           was_last ? node.size() - 1 : number + 1);
}

/// Nodes on both sides of a cut between their parents lose the links to each other (T2).
void Index_Tree_Edit::part_children(const Index_Image& left, const Index_Image& right) {
    const Page_Number before = left.child(left.size() - 1);
    const Page_Number behind = right.child(0);
    if (page(before).leaf()) return;
    link(before, jet4_index.next, 0);
    link(behind, jet4_index.previous, 0);
}

/// Takes out a page that has become empty, and what becomes empty with it (T3).
void Index_Tree_Edit::drop(std::size_t level, const Index_Page& empty) {
    if (empty.previous() != 0) link(empty.previous(), jet4_index.next, empty.next());
    if (empty.next() != 0) link(empty.next(), jet4_index.previous, empty.previous());
    map_.remove(empty.number());
    space_.release(empty.number());
    drop_child(level - 1);
}

void Index_Tree_Edit::drop_child(std::size_t level) {
    const Index_Page parent = page(path_[level].page);
    Index_Image node(parent);
    const std::size_t number = parent.number_before(path_[level].position);
    if (node.children() <= 1) {
        if (level > 0) return drop(level, parent);
        return Index_Image().store(pager_, root_, table_);
    }
    New_Last new_last;
    if (number < node.size())
        node.erase(number);
    else
        new_last = node.make_tail();
    if (node.size() == 0) { // one child is left, and has an entry again (T1)
        const Page_Number child = std::exchange(node.tail, 0);
        node.insert_child(0, new_last ? *new_last : last_entry_below(child), child);
    }
    settle(level, node, new_last);
}

Bytes Index_Tree_Edit::last_entry_below(Page_Number number) const {
    Index_Page at = page(number);
    for (std::size_t depth = 0; !at.leaf(); ++depth) {
        if (depth == deepest_tree) throw damaged(root_, "its index tree has no end");
        at = page(at.tail() != 0 ? at.tail() : at.child(at.before(at.end())));
    }
    if (at.end() == 0) throw damaged(at.number(), "is an empty leaf of an index");
    Bytes last;
    at.copy_entry(at.before(at.end()), last);
    return last;
}

void Index_Tree_Edit::link(Page_Number from, std::size_t field, Page_Number to) {
    page(from); // no page of another kind is written to
    store_u32(&pager_.change(from)[field], to);
}

} // namespace jet
