#include "platform/jet/check/tree.h"

#include "platform/jet/check/usage_map.h"

namespace jet::check {

namespace {

constexpr std::size_t most_levels = 24, child_bytes = 4;

bool same_key(const Key& a, const Key& b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end() - place_bytes, b.begin());
}

class Tree_Check {
public:
    Tree_Check(Inspection& inspection, const Definition& table, std::uint32_t number,
               const std::function<void(const Key&)>& visit)
        : inspection_(inspection), table_(table),
          index_(table.reals[number]), owner_{.use = Owner::Use::index,
                                              .part = static_cast<std::uint16_t>(number),
                                              .table = table.page},
          visit_(visit) {}

    Tree_State run() {
        const auto map = read_usage_map(inspection_, index_.map, index_.words);
        walk(index_.root, 0, table_.page);
        for (const Level& level : levels_)
            if (level.last != 0 && level.next != 0)
                links_fault(level.last, words("goes on to page ", level.next));
        check_pending({});
        if (!state_.complete || !map)
            inspection_.all_seen = false;
        else
            compare_map(*map);
        return state_;
    }

private:
    /// The pages of one level as far as they have been seen.
    struct Level {
        std::uint32_t last = 0;   ///< page
        std::uint32_t next = 0;   ///< what that page says of its right neighbour
        std::uint32_t parent = 0; ///< of that page
    };

    void fault(What what, std::uint32_t page, const std::string& why) {
        inspection_.findings.fault(what, page,
                                   words("Page ", page, " of ", index_.words, " ", why, "."));
    }
    void warning(What what, std::uint32_t page, const std::string& why) {
        inspection_.findings.warning(what, page,
                                     words("Page ", page, " of ", index_.words, " ", why, "."));
    }
    void stop(What what, std::uint32_t page, const std::string& why) {
        fault(what, page, why);
        state_ = {.complete = false, .sorted = false};
    }
    void links_fault(std::uint32_t page, const std::string& why) {
        fault(What::index_links, page, why + ", which is not its neighbour");
        state_.sorted = false;
    }

    void walk(std::uint32_t number, std::size_t depth, std::uint32_t parent) {
        if (!enter(number, depth, parent)) return;
        const Page held = inspection_.pages.page(number);
        Index_Page page(inspection_.format, held.bytes);
        if (!check_head(number, page, held.bytes)) return;
        page.read_mask();
        if (!check_entries(number, page)) return;
        if (levels_.size() <= depth) levels_.resize(depth + 1);
        if (page.type() == page_type::leaf)
            walk_leaf(number, page, depth, parent);
        else
            walk_node(number, page, depth, parent);
    }

    bool enter(std::uint32_t number, std::size_t depth, std::uint32_t parent) {
        if (!inspection_.ledger.exists(number) || number == 0)
            stop(What::index_page, parent, words("leads to page ", number, ", which is not there"));
        else if (inspection_.ledger.owner(number) == owner_)
            stop(What::index_loop, number, "stands in its tree twice");
        else if (depth == most_levels)
            stop(What::index_depth, number, "lies too deep");
        else if (!inspection_.ledger.claim(number, owner_))
            state_ = {.complete = false, .sorted = false};
        else {
            visited_.push_back(number);
            return true;
        }
        return false;
    }

    bool check_head(std::uint32_t number, const Index_Page& page, Bytes bytes) {
        const bool known = page.type() == page_type::leaf || page.type() == page_type::node;
        if (!known || bytes.u8(1) != 1) {
            stop(What::page_kind, number, words("is no index page (type ", page.type(), ")"));
            return false;
        }
        if (page.table() != table_.page)
            fault(What::page_table, number,
                  words("says that it belongs to the table on page ", page.table()));
        return true;
    }

    bool check_entries(std::uint32_t number, const Index_Page& page) {
        const std::uint32_t room = inspection_.format.entry_room();
        if (page.stored() > room) {
            stop(What::index_mask, number, "has a mark for an entry beyond its end");
            return false;
        }
        if (page.free() != room - page.stored())
            fault(What::free_field, number,
                  words("has ", room - page.stored(), " free bytes, but says ", page.free()));
        if (page.count() > 0 && page.prefix() > page.stored(0)) {
            stop(What::index_prefix, number,
                 words("shares ", page.prefix(), " bytes of a first entry of ", page.stored(0)));
            return false;
        }
        const bool node = page.type() == page_type::node;
        const std::size_t least = 1 + place_bytes + (node ? child_bytes : 0);
        for (std::size_t i = 0; i < page.count(); ++i)
            if (page.stored(i) + (i == 0 ? 0 : page.prefix()) < least ||
                (node && page.stored(i) < child_bytes)) {
                stop(What::index_entry_short, number,
                     words("has an entry (", i, ") of ", page.stored(i), " bytes"));
                return false;
            }
        return true;
    }

    /// Leaves hang together over the whole tree, nodes at least below one parent.
    void check_links(std::uint32_t number, const Index_Page& page, std::size_t depth,
                     std::uint32_t parent) {
        Level& level = levels_[depth];
        const bool may_part = page.type() == page_type::node && level.parent != parent;
        const bool parted = may_part && page.previous() == 0;
        if (page.previous() != level.last && !parted)
            links_fault(number, words("names page ", page.previous(), " before it"));
        if (level.last != 0 && level.next != number && !(may_part && level.next == 0))
            links_fault(level.last, words("goes on to page ", level.next));
        level = {number, page.next(), parent};
    }

    void walk_leaf(std::uint32_t number, const Index_Page& page, std::size_t depth,
                   std::uint32_t parent) {
        if (leaf_depth_ == 0) leaf_depth_ = depth + 1;
        if (leaf_depth_ != depth + 1) {
            stop(What::index_depth, number, "is a leaf at another depth than the others");
            return;
        }
        check_links(number, page, depth, parent);
        if (page.tail() != 0) warning(What::index_tail, number, "is a leaf, but has a tail");
        if (page.count() == 0 && depth > 0) warning(What::index_page_empty, number, "is empty");
        Key entry;
        for (std::size_t i = 0; i < page.count(); ++i) {
            page.entry(i, entry);
            check_order(number, i, entry);
            visit_(entry);
            ++entries_;
            std::swap(last_, entry);
        }
    }

    void check_order(std::uint32_t number, std::size_t i, const Key& entry) {
        check_pending(entry);
        if (last_.empty()) return;
        if (!precedes(last_, entry)) {
            fault(What::index_order, number, words("has entry ", i, " out of order"));
            state_.sorted = false;
        } else if (index_.unique() && same_key(last_, entry) &&
                   entry.size() != index_.columns.size() + place_bytes) {
            fault(What::index_duplicate, number,
                  words("has the key of entry ", i, " twice, but the index is unique"));
        }
    }

    void walk_node(std::uint32_t number, const Index_Page& page, std::size_t depth,
                   std::uint32_t parent) {
        check_links(number, page, depth, parent);
        const std::size_t count = page.count();
        if (count == 0 && page.tail() == 0) {
            stop(What::index_page, number, "is a node without children");
            return;
        }
        const bool repeated = count > 0 && page.tail() == page.child(count - 1);
        if (repeated || count == 0 || (count > 1 && page.tail() == 0))
            warning(What::index_tail, number, "does not keep its last child as its tail only");
        Key copy;
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t before = entries_;
            walk(page.child(i), depth + 1, number);
            if (!state_.complete) return;
            page.entry(i, copy);
            copy.resize(copy.size() - child_bytes);
            if (before != entries_) check_copy(number, i, copy);
        }
        if (page.tail() != 0 && !repeated) walk(page.tail(), depth + 1, number);
    }

    /// A node's entry is a copy of the last one below its child. A greater one does no harm as long
    /// as it stays below what follows.
    void check_copy(std::uint32_t number, std::size_t i, const Key& copy) {
        if (copy == last_ || last_.empty()) return;
        if (precedes(copy, last_))
            fault(What::index_node_copy, number,
                  words("has an entry (", i, ") that is less than the last one below it"));
        else
            pending_ = {copy, number, i};
    }

    void check_pending(const Key& entry) {
        if (pending_.copy.empty()) return;
        if (!entry.empty() && !precedes(pending_.copy, entry))
            fault(What::index_node_copy, pending_.page,
                  words("has an entry (", pending_.position, ") that reaches into the next child"));
        else
            warning(What::index_node_copy, pending_.page,
                    words("has an entry (", pending_.position,
                          ") that is greater than the last one below it"));
        pending_ = {};
    }

    void compare_map(const Page_List& map) {
        Page_List visited = visited_;
        std::ranges::sort(visited);
        for (const std::uint32_t page : map)
            if (!std::ranges::binary_search(visited, page) && claim_spare(page))
                fault(What::index_map, page, "is in the map of its pages, but not in its tree");
        for (const std::uint32_t page : visited)
            if (!std::ranges::binary_search(map, page))
                fault(What::index_map, page, "is in its tree, but not in the map of its pages");
    }

    // A page of somebody else is reported as owned twice.
    bool claim_spare(std::uint32_t page) { return inspection_.ledger.claim(page, owner_); }

    Inspection& inspection_;
    const Definition& table_;
    const Real_Index& index_;
    Owner owner_;
    const std::function<void(const Key&)>& visit_;
    Tree_State state_;
    Page_List visited_;
    std::vector<Level> levels_;
    std::size_t leaf_depth_ = 0; ///< 1 for a root that is a leaf; 0 as long as none was seen
    std::size_t entries_ = 0;    ///< of leaves, seen so far
    Key last_;                   ///< the entry before, across pages
    struct {
        Key copy;
        std::uint32_t page = 0;
        std::size_t position = 0;
    } pending_; ///< a node's entry that is greater than the last one below it
};

} // namespace

Tree_State check_tree(Inspection& inspection, const Definition& table, std::uint32_t number,
                      const std::function<void(const Key&)>& visit) {
    return Tree_Check(inspection, table, number, visit).run();
}

} // namespace jet::check
