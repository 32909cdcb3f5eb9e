// What is refused when half of a statement is carried out already.

#include "platform/jet/catalogue/definition_chain.h"
#include "platform/jet/fixture.h"
#include "platform/jet/index/index_tree_image.h"
#include "platform/jet/lookup.h"
#include "platform/jet/pages/usage_map_row.h"
#include "platform/jet/rows/scan.h"
#include "platform/jet/schema_change.h"
#include "support/temporary_folder.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <functional>

namespace {

using namespace fixture;
using jet::Bytes;
using jet::Column_Type;
using jet::Failure;

constexpr std::uint64_t page_size = 4096;

/// A row whose texts have so many letters together.
std::vector<jet::Cell> long_row(char16_t first, std::size_t letters) {
    std::vector<jet::Cell> cells;
    for (std::size_t column = 1; letters > 0; ++column) {
        const auto taken = std::min<std::size_t>(letters, 255);
        cells.push_back({column, first + std::u16string(taken - 1, u'x')});
        letters -= taken;
    }
    return cells;
}

class Late_Refusals : public testing::Test {
protected:
    void start() {
        database.reset();
        database = jet::Database::create(files::real_disk(), file);
        std::vector<jet::Column> columns{column(u"id")};
        columns[0].auto_number = true;
        for (char16_t name = u'a'; name <= u'j'; ++name) {
            columns.push_back(column(std::u16string(1, name), Column_Type::text, 255));
            columns.back().compressed = true;
        }
        columns.push_back(column(u"Data", Column_Type::ole));
        database->create_table(u"T", columns, std::vector{primary_key(u"id")});
    }

    jet::Table table() { return *database->table(u"T"); }
    void insert(std::size_t bytes) { table().insert({{11, Bytes(bytes)}}); }

    /// Makes what only other programs make.
    template <typename Work>
    void rework(Work work) {
        database.reset();
        {
            jet::Engine engine(
                files::real_disk(), file,
                jet::open_pager(files::real_disk(), file, jet::Open_Mode::read_write), true);
            engine.begin_write();
            auto& pager = engine.pager();
            jet::Page_Space space(pager);
            auto definition = jet::read_definition(
                pager, jet::jet4_layout, engine.object(u"T", jet::object_ids::tables)->page());
            work(pager, space, definition);
            jet::write_definition(pager, space, definition);
            engine.commit();
        }
        database = jet::Database::open(files::real_disk(), file, jet::Mode::read_write);
        ASSERT_EQ(faults(*database), "");
    }
    /// A map of the pages of the rows that reaches no farther than its first 32,736.
    void shorten_map() {
        rework([](jet::Pager& pager, jet::Page_Space& space, jet::Definition& definition) {
            const auto page = space.allocate();
            jet::format_map_page(pager, page);
            definition.owned = *jet::append_map_row(pager, page, Bytes(5));
            ASSERT_TRUE(jet::append_map_row(pager, page, Bytes(4073))); // all that is left
            jet::store_u32(definition.head.data() + jet::jet4_layout.owned_map,
                           definition.owned.number());
        });
    }
    /// An index with a key that is longer than ours, in the middle of a leaf.
    void add_long_keys() {
        for (const auto& [first, letters] :
             {std::pair(u'a', 1350U), {u'f', 2400U}, {u'l', 9U}, {u'p', 1350U}, {u'z', 9U}})
            table().insert(long_row(first, letters));
        rework([](jet::Pager& pager, jet::Page_Space& space, jet::Definition& definition) {
            std::vector<jet::Index_Part> parts;
            for (std::size_t i = 1; i <= 10; ++i) parts.push_back({definition.columns[i].number});
            const auto number = jet::add_tree(pager, space, definition, parts, 0x80, {});
            jet::insert_logical(definition, u"Lang", number, jet::Index_Kind::other);
            const auto& real = definition.reals[number];
            const auto shape = jet::key_shape(definition, real);
            std::vector<Bytes> entries;
            jet::for_each_row(pager, definition, [&](jet::Row_Source& source) {
                std::vector<jet::Value> values;
                for (std::size_t i = 1; i <= 10; ++i) values.push_back(jet::value_at(source, i));
                entries.push_back(
                    jet::entry_bytes(jet::key_of(shape.columns, values), source.id()));
            });
            std::sort(entries.begin(), entries.end());
            jet::store_u32(definition.entry_counts.data() + 12 * number + 4, entries.size());
            jet::Index_Image root(false);
            std::array<jet::Page_Number, 4> leaves{};
            for (auto& leaf : leaves) {
                leaf = space.allocate();
                jet::Usage_Map(pager, real.map).add(space, leaf);
            }
            for (std::size_t i = 0, next = 0; i < leaves.size(); ++i) {
                jet::Index_Image leaf;
                for (std::size_t n = 0; n < (i == 1 ? 2U : 1U); ++n)
                    leaf.insert(n, entries[next++]);
                leaf.previous = i > 0 ? leaves[i - 1] : 0;
                leaf.next = i + 1 < leaves.size() ? leaves[i + 1] : 0;
                leaf.store(pager, leaves[i], definition.page());
                if (leaf.next != 0) root.insert_child(i, entries[next - 1], leaves[i]);
            }
            root.tail = leaves.back();
            root.store(pager, real.root, definition.page());
        });
    }
    /// Zeros, which nobody owns, up to there; what is free before them is used up.
    void stretch(std::uint64_t bytes) {
        insert(3U << 20U);
        std::filesystem::resize_file(file, bytes);
        insert(40 * page_size);
    }

    /// The length, and both ends, between which nobody writes.
    std::vector<char> image() const {
        constexpr std::size_t end = 8U << 20U;
        const auto size = std::filesystem::file_size(file);
        std::ifstream in(file, std::ios::binary);
        std::vector<char> bytes(2 * end + 1, static_cast<char>(size / page_size % 128));
        in.read(bytes.data(), end);
        in.clear();
        in.seekg(static_cast<std::streamoff>(size - std::min(size, end)));
        in.read(bytes.data() + end, end);
        return bytes;
    }

    const support::Temporary_Folder folder;
    const std::string file = folder / "library.mdb";
    std::optional<jet::Database> database;
};

TEST_F(Late_Refusals, leave_every_byte_as_it_was) {
    struct Case {
        const char* what;
        std::function<void()> prepare, refused;
    };
    const Case cases[] = {{"2 GiB are full",
                           [&] { stretch(jet::largest_database - 100 * page_size); },
                           [&] { insert(100 * page_size); }},
                          {"no room for a map",
                           [&] {
                               shorten_map();
                               stretch(32736 * page_size);
                               table().insert(long_row(u'x', 2500));
                           },
                           [&] { table().insert(long_row(u'x', 2500)); }},
                          {"keys that are too long", [&] { add_long_keys(); },
                           [&] {
                               auto row = table().find({{1, u"lxxxxxxxx"}});
                               ASSERT_TRUE(row.next());
                               table().erase(row.id());
                           }}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        start();
        c.prepare();
        const auto count = table().row_count();
        const auto before = image();
        EXPECT_EQ(failure_of(c.refused), Failure::refused);
        EXPECT_TRUE(image() == before);
        {
            jet::Transaction all(*database);
            insert(1);
            EXPECT_EQ(failure_of(c.refused), Failure::refused);
            EXPECT_EQ(failure_of([&] { insert(1); }), Failure::refused)
                << "half of it is in memory";
            EXPECT_EQ(failure_of([&] { all.commit(); }), Failure::refused);
        }
        EXPECT_TRUE(image() == before);
        insert(1);
        EXPECT_EQ(table().row_count(), count + 1);
        const bool huge = std::filesystem::file_size(file) > jet::largest_database / 2;
        EXPECT_EQ(huge ? "" : faults(*database), ""); // that one takes ten seconds
    }
}

} // namespace
