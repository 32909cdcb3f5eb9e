#include "platform/jet/index/index_tree_look.h"

#include <algorithm>

using jet::load_u16;
using jet::load_u32;
using jet::Page_Number;

Tree_Look::Tree_Look(jet::Pager& pager, Page_Number table, Page_Number root, bool lenient)
    : pager_(pager), table_(table), lenient_(lenient) {
    walk(root, 1);
    for (std::size_t i = 0; i < leaves_.size(); ++i) {
        const Node leaf = decode(leaves_[i]);
        if (leaf.previous != (i == 0 ? 0 : leaves_[i - 1])) fault(leaves_[i], "previous leaf");
        if (leaf.next != (i + 1 == leaves_.size() ? 0 : leaves_[i + 1]))
            fault(leaves_[i], "next leaf");
    }
    for (std::size_t i = 1; i < entries.size(); ++i)
        if (!(entries[i - 1] < entries[i])) fault(root, "entries do not ascend");
    std::ranges::sort(pages);
    if (std::ranges::adjacent_find(pages) != pages.end()) fault(root, "a page twice");
}

Tree_Look::Node Tree_Look::decode(Page_Number number) {
    const jet::Page page = pager_.read(number);
    const std::byte* at = page->data();
    Node node{{}, load_u32(at + 12), load_u32(at + 16), load_u32(at + 20), at[0] == std::byte{4}};
    if (!node.leaf && at[0] != std::byte{3}) fault(number, "type");
    if (load_u32(at + 4) != table_) fault(number, "owner");
    std::size_t start = 0;
    Bytes first;
    const std::size_t prefix = load_u16(at + 0x18);
    std::size_t whole = 0;
    for (std::size_t bit = 1; bit < 453 * 8; ++bit) {
        if ((at[0x1B + bit / 8] & std::byte{1} << (bit % 8)) == std::byte{0}) continue;
        if (bit > 3616) fault(number, "a bit beyond the page");
        Bytes entry(at + 0x1E0 + start, at + 0x1E0 + bit);
        if (node.entries.empty())
            first = entry;
        else
            entry.insert(entry.begin(), first.begin(),
                         first.begin() + static_cast<std::ptrdiff_t>(prefix));
        whole += entry.size();
        node.entries.push_back(std::move(entry));
        start = bit;
    }
    if (load_u16(at + 2) != 3616 - start) fault(number, "free field");
    const std::size_t behind_key = node.leaf ? 4 : 8;
    if (!node.entries.empty()) {
        const Bytes& last = node.entries.back();
        const std::size_t keys = std::min(first.size(), last.size()) - behind_key;
        const auto common = static_cast<std::size_t>(
            std::mismatch(first.begin(), first.begin() + static_cast<std::ptrdiff_t>(keys),
                          last.begin())
                .first -
            first.begin());
        if (prefix != 0 && prefix != common) fault(number, "prefix");
    } else if (prefix != 0) {
        fault(number, "prefix of nothing");
    }
    if (whole > 3616 && prefix == 0) fault(number, "too much");
    return node;
}

Tree_Look::Bytes Tree_Look::walk(Page_Number number, std::size_t level) {
    pages.push_back(number);
    const Node node = decode(number);
    if (level > 20) {
        fault(number, "too deep");
        return {};
    }
    if (node.leaf) {
        if (depth == 0) depth = level;
        if (depth != level) fault(number, "leaf at another depth");
        if (node.tail != 0) fault(number, "tail of a leaf");
        if (node.entries.empty() && level > 1) fault(number, "empty leaf");
        leaves_.push_back(number);
        entries.insert(entries.end(), node.entries.begin(), node.entries.end());
        return node.entries.empty() ? Bytes{} : node.entries.back();
    }
    std::vector<Page_Number> children;
    Bytes last;
    for (const Bytes& entry : node.entries) {
        const auto child = entry.end() - 4;
        Page_Number page = 0;
        for (auto byte = child; byte != entry.end(); ++byte)
            page = page << 8U | std::to_integer<Page_Number>(*byte);
        children.push_back(page);
        last = walk(page, level + 1);
        if (last != Bytes(entry.begin(), child)) fault(number, "entry is no copy");
    }
    if (node.tail != 0) {
        children.push_back(node.tail);
        last = walk(node.tail, level + 1);
    }
    if (children.empty()) fault(number, "node without children");
    if ((children.size() > 1) != (node.tail != 0)) fault(number, "tail");
    if (!lenient_ || children.size() > 1) check_siblings(children);
    return last;
}

void Tree_Look::check_siblings(const std::vector<Page_Number>& children) {
    for (std::size_t i = 0; i < children.size(); ++i) {
        const Node child = decode(children[i]);
        if (child.leaf) return; // leaves are linked over the whole tree
        if (child.previous != (i == 0 ? 0 : children[i - 1])) fault(children[i], "previous node");
        if (child.next != (i + 1 == children.size() ? 0 : children[i + 1]))
            fault(children[i], "next node");
    }
}
