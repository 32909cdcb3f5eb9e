// The trees of files that other programs wrote: every entry must be exactly the key that we would
// make of its row, and every page as our own rules want it.

#include "platform/jet/catalogue/definition_chain.h"
#include "platform/jet/format/definition.h"
#include "platform/jet/index/index_key.h"
#include "platform/jet/index/index_tree.h"
#include "platform/jet/index/index_tree_look.h"
#include "platform/jet/pages/tiny_pager.h"
#include "platform/jet/rows/cell.h"
#include "platform/jet/rows/row.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <optional>

using namespace jet;
using testing::IsEmpty;

namespace {

struct Count {
    int trees = 0;
    std::size_t entries = 0;
    int untold = 0; ///< trees whose keys cannot be computed
};

class Sample {
public:
    explicit Sample(const std::string& path)
        : pager_(Tiny_Pager::of_file(path)),
          layout_(pager_.page_size() == 2048 ? jet3_layout : jet4_layout) {}

    Count check() {
        for (const Page_Number table : tables()) {
            const Definition definition = read_definition(pager_, layout_, table);
            for (const Real_Index& index : definition.reals) check_tree(definition, index);
        }
        return count_;
    }

private:
    using Row_Visitor = std::function<void(Row_Place, const Row_View&)>;

    void visit_rows(const Definition& definition, const Row_Visitor& visit) {
        Row_Source source(pager_, definition);
        for (const Page_Number page : Usage_Map(pager_, definition.owned).pages()) {
            const std::size_t slots = source.page(page).count();
            for (std::size_t slot = 0; slot < slots; ++slot)
                if (source.find({page, static_cast<std::uint8_t>(slot)}))
                    visit(source.id(), source.row());
        }
    }

    Value value(const Row_View& row, const Column_Record& column) {
        if (column.boolean()) return row.has(column);
        if (!row.has(column)) return Null{};
        return decode_cell(pager_, layout_, column, row.cell(column));
    }

    std::vector<Page_Number> tables() {
        std::vector<Page_Number> found;
        const Definition catalogue = read_definition(pager_, layout_, 2);
        visit_rows(catalogue, [&](Row_Place, const Row_View& row) {
            const auto number = [&](const char16_t* name) {
                const auto column =
                    std::ranges::find(catalogue.columns, name, &Column_Record::name);
                return std::get<std::int32_t>(value(row, *column));
            };
            if (number(u"Type") == 1) found.push_back(static_cast<Page_Number>(number(u"Id")));
        });
        return found;
    }

    void check_tree(const Definition& definition, const Real_Index& index) {
        SCOPED_TRACE("table " + std::to_string(definition.page()) + " root " +
                     std::to_string(index.root));
        ++count_.trees;
        const Index_Tree tree(pager_, definition.page(), index.root, index.map);
        std::vector<Bytes> walked;
        for (auto at = tree.first(); !at.at_end(); at.next()) {
            const auto key = at.key();
            walked.push_back(entry_bytes(key, at.row()));
        }
        count_.entries += walked.size();
        if (!layout_.jet3) {
            const Tree_Look look(pager_, definition.page(), index.root, true);
            EXPECT_THAT(look.faults, IsEmpty());
            EXPECT_EQ(look.entries, walked);
            EXPECT_EQ(Usage_Map(pager_, index.map).pages(), look.pages);
        }
        const auto computed = entries_of_rows(definition, index);
        if (computed) {
            EXPECT_EQ(walked, *computed);
        } else {
            ++count_.untold;
        }
    }

    std::optional<std::vector<Bytes>> entries_of_rows(const Definition& definition,
                                                      const Real_Index& index) {
        Key_Shape shape;
        shape.ignore_nulls = index.ignores_nulls();
        for (const Index_Part& part : index.columns) {
            const Column_Record& column = *definition.by_number(part.column);
            shape.columns.push_back({column.type, part.ascending, column.extra});
        }
        if (layout_.jet3 || !can_compute(shape)) return {};
        std::vector<Bytes> entries;
        visit_rows(definition, [&](Row_Place id, const Row_View& row) {
            std::vector<Value> values;
            for (const Index_Part& part : index.columns)
                values.push_back(value(row, *definition.by_number(part.column)));
            if (null_rule(shape, values) == Null_Rule::left_out) return;
            entries.push_back(entry_bytes(key_of(shape.columns, values), {id.page, id.slot}));
        });
        std::ranges::sort(entries);
        return entries;
    }

    Tiny_Pager pager_;
    const Layout& layout_;
    Count count_;
};

} // namespace

TEST(Index_Samples, every_entry_is_the_key_of_its_row) {
    if (!std::filesystem::is_directory(CV_SETS_SAMPLES)) GTEST_SKIP() << "no samples";
    Count all;
    for (const auto& file : std::filesystem::directory_iterator(CV_SETS_SAMPLES)) {
        if (file.path().extension() != ".mdb") continue;
        SCOPED_TRACE(file.path().filename());
        const Count count = Sample(file.path().string()).check();
        all.trees += count.trees;
        all.entries += count.entries;
        if (file.path().filename() != "testV1997.mdb") all.untold += count.untold;
    }
    EXPECT_EQ(all.untold, 0);
    EXPECT_GT(all.trees, 180);
    EXPECT_GT(all.entries, 28000u);
}
