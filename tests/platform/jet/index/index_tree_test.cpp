#include "platform/jet/index/index_tree.h"

#include "platform/jet/format/error.h"
#include "platform/jet/index/index_key.h"
#include "platform/jet/index/index_tree_look.h"
#include "platform/jet/pages/tiny_pager.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <map>
#include <random>
#include <set>

using namespace jet;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr Page_Number table = 77;

Bytes long_key(std::int32_t number, bool ascending = true) {
    Bytes key;
    append_key(key, {Column_Type::long_integer, ascending}, number);
    return key;
}

Bytes text_of(std::size_t length, std::mt19937& random, unsigned letters) {
    Bytes key;
    for (std::size_t i = 0; i < length; ++i)
        key.push_back(static_cast<std::byte>('a' + random() % letters));
    key.push_back(std::byte{0});
    return key;
}

Row_Place row_of(std::uint32_t number) {
    return {1000 + number / 200, static_cast<std::uint8_t>(number % 200)};
}

/// A tree and a set that must always hold the same.
struct Twin {
    Tiny_Pager pager = bare_file();
    Page_Space space{pager};
    Index_Tree tree = Index_Tree::make(pager, space, table, 0);
    std::set<Bytes> expected;
    std::size_t different = 0; ///< keys reported as new

    void insert(const Bytes& key, Row_Place row) {
        different += tree.insert(space, key, row) ? 1U : 0U;
        expected.insert(entry_bytes(key, row));
    }
    void erase(const Bytes& key, Row_Place row) {
        tree.erase(space, key, row);
        expected.erase(entry_bytes(key, row));
    }
    std::size_t check() {
        const Tree_Look look(pager, table, tree.root());
        EXPECT_THAT(look.faults, IsEmpty());
        EXPECT_TRUE(std::ranges::equal(look.entries, expected));
        EXPECT_EQ(Usage_Map(pager, tree.map()).pages(), look.pages);
        for (Page_Number page = 2; page < pager.page_count(); ++page) {
            const bool of_map = page == tree.map().page || (*pager.read(page))[0] == std::byte{5};
            EXPECT_EQ(space.is_free(page),
                      !of_map && !std::ranges::binary_search(look.pages, page));
        }
        return look.depth;
    }
    std::vector<Bytes> walked(bool backwards) {
        std::vector<Bytes> found;
        auto at = backwards ? tree.last() : tree.first();
        for (; !at.at_end(); backwards ? at.previous() : at.next()) {
            const auto key = at.key();
            found.push_back(entry_bytes(key, at.row()));
        }
        if (backwards) std::ranges::reverse(found);
        return found;
    }
};

} // namespace

TEST(Index_Tree, rows_in_the_order_of_their_keys_leave_full_pages) {
    for (const bool ascending : {true, false}) {
        Twin twin;
        for (std::int32_t i = 0; i < 8000; ++i)
            twin.insert(long_key(i, ascending), row_of(static_cast<std::uint32_t>(i)));
        EXPECT_EQ(twin.check(), 2u);
        EXPECT_EQ(twin.different, 8000u);
        // uncompressed a page takes 401 of these entries, compressed some 600
        EXPECT_LT(twin.pager.page_count(), 22u);
        EXPECT_TRUE(std::ranges::equal(twin.walked(false), twin.expected));
        EXPECT_TRUE(std::ranges::equal(twin.walked(true), twin.expected));
    }
}

TEST(Index_Tree, appending_changes_few_pages) {
    Twin twin;
    for (std::int32_t i = 0; i < 8000; ++i)
        twin.insert(long_key(i), row_of(static_cast<std::uint32_t>(i)));
    std::size_t most = 0;
    for (std::int32_t i = 8000; i < 9000; ++i) {
        twin.pager.commit();
        twin.insert(long_key(i), row_of(static_cast<std::uint32_t>(i)));
        most = std::max(most, twin.pager.changed.size());
    }
    EXPECT_LE(most, 5u); // leaf, new leaf, node, map of the tree, global map
}

TEST(Index_Tree, equal_keys_are_found_in_the_order_of_their_rows) {
    Twin twin;
    for (std::uint32_t i = 0; i < 5000; ++i) { // from both ends
        const std::uint32_t row = i % 2 == 0 ? i : 5000 - i;
        twin.insert(long_key(static_cast<std::int32_t>(row % 7)), row_of(row));
    }
    twin.check();
    EXPECT_EQ(twin.different, 7u);
    const std::vector<Row_Place> rows = twin.tree.rows(long_key(3));
    ASSERT_EQ(rows.size(), 714u);
    EXPECT_TRUE(std::ranges::is_sorted(rows));
    EXPECT_EQ(rows.front(), row_of(3));
    EXPECT_THAT(twin.tree.rows(long_key(7)), IsEmpty());
    EXPECT_TRUE(twin.tree.contains(long_key(6)));
    EXPECT_FALSE(twin.tree.contains(long_key(-1)));
    EXPECT_TRUE(std::ranges::equal(twin.tree.lower_bound(long_key(-1)).key(), long_key(0)));
    EXPECT_TRUE(twin.tree.lower_bound(long_key(8)).at_end());
}

TEST(Index_Tree, a_key_that_begins_like_another_is_another) {
    Twin twin; // an empty binary value is nothing but its flag
    const auto key = [](const Bytes& bytes) {
        Bytes made;
        append_key(made, {Column_Type::binary, true}, bytes);
        return made;
    };
    const Bytes zeros(3, std::byte{0});
    twin.insert(key({}), {0, 9});
    twin.insert(key(zeros), {1, 1});
    twin.insert(key({}), {0x7F0000, 3});
    EXPECT_THAT(twin.tree.rows(key({})), ElementsAre(Row_Place{0, 9}, Row_Place{0x7F0000, 3}));
    EXPECT_THAT(twin.tree.rows(key(zeros)), ElementsAre(Row_Place{1, 1}));
    EXPECT_TRUE(twin.tree.contains(key({})));
}

TEST(Index_Tree, a_copy_that_is_only_greater_is_put_right) {
    // Other programs may leave such copies behind. An entry between the last one of a subtree and
    // its copy becomes the last; trees of many sizes, so that some leaves are full and split.
    for (std::uint32_t size = 90; size < 120; ++size) {
        SCOPED_TRACE(size);
        Twin twin;
        std::mt19937 random(size);
        for (std::uint32_t i = 0; i < size; ++i) twin.insert(text_of(400, random, 20), row_of(i));
        ASSERT_EQ(twin.check(), 3u);
        const Page_Number root = twin.tree.root();
        const Index_Page page(twin.pager.read(root), root, table);
        Bytes copy;
        page.copy_entry(0, copy);
        copy.resize(copy.size() - row_size - child_size);
        copy.back() = std::byte{1}; // greater than the 0 at its end
        twin.pager.change(root)[0x1E0 + copy.size() - 1] = copy.back();
        ASSERT_FALSE(Tree_Look(twin.pager, table, root).faults.empty());
        twin.insert(copy, {1, 1}); // a row before the one in the copy
        twin.check();
    }
}

TEST(Index_Tree, nodes_of_unusual_form_are_read_and_put_right) {
    for (const bool keeps_tail : {true, false}) {
        SCOPED_TRACE(keeps_tail);
        Twin twin;
        for (std::int32_t i = 0; i < 3000; ++i)
            twin.insert(long_key(i), row_of(static_cast<std::uint32_t>(i)));
        ASSERT_EQ(twin.check(), 2u);
        const Page_Number root = twin.tree.root();
        const std::size_t end = Index_Page(twin.pager.read(root), root, table).end();
        const auto page = twin.pager.change(root);
        Bytes extra = *twin.expected.rbegin(); // the last child has an entry like the others
        for (const std::size_t byte : {23U, 22U, 21U, 20U}) extra.push_back(page[byte]);
        std::ranges::copy(extra, page.subspan(0x1E0 + end).begin());
        const std::size_t bit = end + extra.size();
        page[0x1B + bit / 8] |= static_cast<std::byte>(1U << (bit % 8));
        store_u16(&page[2], 3616 - bit);
        if (!keeps_tail) store_u32(&page[20], 0);
        EXPECT_FALSE(Tree_Look(twin.pager, table, root).faults.empty());
        EXPECT_TRUE(std::ranges::equal(twin.walked(false), twin.expected));
        EXPECT_TRUE(std::ranges::equal(twin.walked(true), twin.expected));
        EXPECT_EQ(twin.tree.rows(long_key(2999)).size(), 1u);
        EXPECT_TRUE(twin.tree.lower_bound(long_key(3000)).at_end());
        for (std::int32_t i = 3000; i < 3800; ++i)
            twin.insert(long_key(i), row_of(static_cast<std::uint32_t>(i)));
        twin.check();
    }
}

TEST(Index_Tree, random_changes_keep_every_rule) {
    const bool thorough = std::getenv("LONG_TESTS") != nullptr;
    const int steps = thorough ? 60000 : 4000;
    // kinds of keys: numbers; texts of few letters, which compress well; long texts, which make
    // trees deep; texts that differ in length from nothing to the longest
    const std::function<Bytes(std::mt19937&)> kinds[] = {
        [](std::mt19937& r) { return long_key(static_cast<std::int32_t>(r() % 5000)); },
        [](std::mt19937& r) { return text_of(8 + r() % 30, r, 2); },
        [](std::mt19937& r) { return text_of(300 + r() % 200, r, 20); },
        [](std::mt19937& r) { return text_of(r() % 10 == 0 ? 1799 : r() % 40, r, 3); },
        [](std::mt19937& r) {
            Bytes key(600, std::byte{'x'}); // nearly all of it is prefix
            const Bytes rest = text_of(r() % 4 == 0 ? 900 : 5, r, 20);
            if (r() % 50 == 0) key.clear();
            key.insert(key.end(), rest.begin(), rest.end());
            return key;
        }};
    std::size_t deepest = 0;
    for (std::size_t kind = 0; kind < std::size(kinds); ++kind) {
        SCOPED_TRACE(kind);
        std::mt19937 random(static_cast<unsigned>(kind) + 1);
        Twin twin;
        std::vector<std::pair<Bytes, Row_Place>> held;
        const auto erase_one = [&] {
            const std::size_t which = random() % held.size();
            twin.erase(held[which].first, held[which].second);
            held[which] = held.back();
            held.pop_back();
        };
        for (int step = 0; step < steps; ++step) {
            const bool growing = step / (steps / 4) % 2 == 0;
            if (!held.empty() && random() % 100 < (growing ? 20U : 80U)) {
                erase_one();
            } else {
                held.emplace_back(kinds[kind](random), row_of(static_cast<std::uint32_t>(step)));
                twin.insert(held.back().first, held.back().second);
            }
            if (step % (steps / 20) == 0) deepest = std::max(deepest, twin.check());
            if (testing::Test::HasFailure()) return;
        }
        EXPECT_TRUE(std::ranges::equal(twin.walked(false), twin.expected));
        EXPECT_TRUE(std::ranges::equal(twin.walked(true), twin.expected));
        while (!held.empty()) erase_one();
        EXPECT_EQ(twin.check(), 1u); // nothing but an empty root is left
        EXPECT_TRUE(twin.tree.first().at_end());
        EXPECT_TRUE(twin.tree.last().at_end());
    }
    EXPECT_GE(deepest, 3u);
}

TEST(Index_Tree, everything_erased_from_either_end) {
    for (const bool from_front : {true, false}) {
        Twin twin;
        std::mt19937 random(3);
        std::vector<Bytes> keys;
        for (std::uint32_t i = 0; i < 400; ++i) {
            keys.push_back(text_of(400, random, 20));
            twin.insert(keys.back(), row_of(i));
        }
        EXPECT_EQ(twin.check(), 4u);
        std::vector<Bytes> entries(twin.expected.begin(), twin.expected.end());
        if (!from_front) std::ranges::reverse(entries);
        for (std::size_t i = 0; i < entries.size(); ++i) {
            const auto cursor = from_front ? twin.tree.first() : twin.tree.last();
            const Row_Place row = cursor.row();
            twin.erase(Bytes(entries[i].begin(), entries[i].end() - 4), row);
            if (i % 20 == 0) twin.check();
        }
        EXPECT_EQ(twin.check(), 1u);
    }
}

TEST(Index_Tree, what_contradicts_the_tree_is_damage) {
    Twin twin;
    twin.insert(long_key(1), row_of(1));
    EXPECT_THROW(twin.tree.insert(twin.space, long_key(1), row_of(1)), Error);
    EXPECT_THROW(twin.tree.erase(twin.space, long_key(2), row_of(1)), Error);
    EXPECT_THROW(twin.tree.erase(twin.space, long_key(1), row_of(2)), Error);
    try {
        twin.tree.insert(twin.space, Bytes(Index_Tree::longest_key + 1), row_of(1));
        ADD_FAILURE() << "too long a key was taken";
    } catch (const Error& error) {
        EXPECT_EQ(error.kind, Failure::refused);
    }
    EXPECT_EQ(twin.check(), 1u);
}

TEST(Index_Tree, an_index_is_built_over_rows_in_any_order) {
    Twin twin;
    std::vector<Index_Tree::Entry> entries;
    std::mt19937 random(5);
    for (std::uint32_t i = 0; i < 8000; ++i) {
        entries.push_back({long_key(static_cast<std::int32_t>(random() % 900)), row_of(i)});
        twin.expected.insert(entry_bytes(entries.back().key, entries.back().row));
    }
    EXPECT_EQ(twin.tree.build(twin.space, entries), 900u);
    EXPECT_EQ(twin.check(), 2u);
    EXPECT_LT(twin.pager.page_count(), 25u);
}

TEST(Index_Tree, damage_is_survived) {
    Twin origin;
    std::mt19937 random(11);
    std::vector<Bytes> keys;
    for (std::uint32_t i = 0; i < 600; ++i) {
        keys.push_back(text_of(100 + random() % 200, random, 3));
        origin.insert(keys.back(), row_of(i));
    }
    ASSERT_EQ(origin.check(), 3u);
    origin.pager.commit();
    const std::vector<Page_Number> pages = Tree_Look(origin.pager, table, origin.tree.root()).pages;
    const int runs = std::getenv("LONG_TESTS") != nullptr ? 200000 : 3000;
    int noticed = 0;
    for (int run = 0; run < runs; ++run) {
        Tiny_Pager pager = origin.pager;
        for (unsigned spoilt = random() % 4 + 1; spoilt-- > 0;) {
            const auto page = pager.change(pages[random() % pages.size()]);
            // the head of the page is where most can go wrong
            const std::size_t at = random() % 3 == 0 ? random() % 4096 : random() % 0x40;
            page[at] = static_cast<std::byte>(random());
        }
        const Index_Tree tree(pager, table, origin.tree.root(), origin.tree.map());
        Page_Space space(pager);
        const auto survive = [&](const std::function<void()>& work) {
            try {
                work();
            } catch (const Error& error) {
                ++noticed;
                EXPECT_TRUE(error.kind == Failure::damaged || error.kind == Failure::refused);
            }
        };
        const Bytes& key = keys[random() % keys.size()];
        survive([&] {
            for (auto at = tree.first(); !at.at_end(); at.next()) at.key();
        });
        survive([&] {
            for (auto at = tree.last(); !at.at_end(); at.previous()) (void)at.row();
        });
        survive([&] { tree.rows(key); });
        survive([&] { Index_Tree(tree).insert(space, key, {5, 5}); });
        survive([&] {
            Index_Tree(tree).erase(space, key, row_of(static_cast<std::uint32_t>(run % 600)));
        });
    }
    EXPECT_GT(noticed, runs / 2);
}
