// Whole libraries on their way from the database to the project file, held against what independent
// readers found in the database and rules worked out here anew.
#include "export/library.h"
#include "export/read_vqx.h"

#include "platform/files/replace.h"
#include "store/clsDBConn.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <map>
#include <tuple>

namespace vqx_export {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Record = std::map<std::string, std::optional<int>>;

/// Rows of a table with their numbers by column; texts are left out. Empty without the table.
std::vector<Record> rows_of(const QJsonObject& expected, const QString& table) {
    QJsonObject content;
    for (const auto candidate : expected[u"tables"].toArray())
        if (candidate.toObject()[u"name"] == table) content = candidate.toObject();
    const auto columns = content[u"columns"].toArray();
    std::vector<Record> rows;
    for (const auto row : content[u"rows"].toArray()) {
        auto& record = rows.emplace_back();
        for (qsizetype i = 0; i < columns.size(); ++i) {
            const auto value = row.toArray()[i];
            const auto name = columns[i].toObject()[u"name"].toString().toStdString();
            if (value.isDouble()) record[name] = value.toInt();
        }
    }
    return rows;
}

int number(const Record& record, const std::string& column, int missing = 0) {
    const auto found = record.find(column);
    return found == record.end() ? missing : found->second.value_or(missing);
}

struct Expected {
    std::vector<Read_Vqx::Set> sets;
    std::vector<Read_Vqx::Block> blocks;
    int left_out_cvs = 0;
    int left_out_scripts = 0;
    bool refused = false; ///< a set with scripts has a number above 255, or a parameter is
};

std::vector<Read_Vqx::Page> expected_pages(const std::vector<Record>& cvs, int set_id,
                                           int& left_out) {
    std::map<std::tuple<int, int, int, int>, int> sorted; // high, low, number, CVID
    for (const auto& cv : cvs)
        if (number(cv, "SetID") == set_id)
            sorted[{number(cv, "CVPageHi"), number(cv, "CVPageLo"), number(cv, "CVNr"),
                    number(cv, "CVID")}] = number(cv, "CVWert");
    std::vector<Read_Vqx::Page> pages;
    for (const auto& [place, value] : sorted) {
        auto [high, low, nr, id] = place;
        if (nr < 1 || nr > 1024 || high < 0 || high > 255 || low < 0 || low > 255 || value < 0 ||
            value > 255) {
            ++left_out;
            continue;
        }
        if (nr <= 256 || nr > 512) std::tie(high, low) = std::pair(0, (nr - 1) / 256);
        auto page = std::ranges::find_if(
            pages, [h = high, l = low](const auto& p) { return p.high == h && p.low == l; });
        if (page == pages.end()) page = pages.insert(page, {high, low, {}});
        page->pairs.push_back(static_cast<std::uint8_t>((nr - 1) % 256));
        page->pairs.push_back(static_cast<std::uint8_t>(value));
    }
    return pages;
}

Bytes expected_script(const std::vector<Record>& states, int script_id, bool& refused) {
    std::map<int, Bytes> lines;
    for (const auto& state : states) {
        const int line = number(state, "State");
        if (number(state, "ScriptID") != script_id || line < 0 || line > 255) continue;
        auto& bytes = lines[line];
        bytes.clear();
        for (const auto* column : {"Command", "Par1", "Par2", "Par3", "Par4"}) {
            refused = refused || number(state, column) > 255;
            bytes.push_back(static_cast<std::uint8_t>(number(state, column)));
        }
        bytes.resize(8);
    }
    const int count = lines.empty() ? 0 : lines.rbegin()->first + 1;
    Bytes script{static_cast<std::uint8_t>(count % 256), static_cast<std::uint8_t>(count / 256)};
    script.resize(8);
    for (int line = 0; line < count; ++line) {
        auto bytes = lines[line];
        bytes.resize(8);
        script.insert(script.end(), bytes.begin(), bytes.end());
    }
    return script;
}

Bytes expected_block(const std::vector<Bytes>& scripts) {
    Bytes block{static_cast<std::uint8_t>(scripts.size())};
    auto offset = 1 + 2 * scripts.size();
    for (const auto& script : scripts) {
        block.push_back(static_cast<std::uint8_t>(offset / 256));
        block.push_back(static_cast<std::uint8_t>(offset % 256));
        offset += script.size();
    }
    for (const auto& script : scripts) block.insert(block.end(), script.begin(), script.end());
    return block;
}

Expected expected_of(const QJsonObject& json) {
    Expected expected;
    const auto cvs = rows_of(json, QStringLiteral("CVs"));
    std::map<int, int> numbers;
    int next = 10;
    for (const auto& set : rows_of(json, QStringLiteral("Sets"))) {
        const int nr = number(set, "Nummer", next);
        next = nr + 1;
        numbers[number(set, "SetID")] = nr;
        expected.sets.push_back({number(set, "ResCV", 8), nr,
                                 expected_pages(cvs, number(set, "SetID"), expected.left_out_cvs)});
    }
    const auto states = rows_of(json, QStringLiteral("Scriptstates"));
    std::map<int, std::map<int, Bytes>> scripts; // by set and script
    for (const auto& script : rows_of(json, QStringLiteral("Scripte"))) {
        const int id = number(script, "ScriptID");
        if (numbers.contains(number(script, "SetID")))
            scripts[number(script, "SetID")][id] = expected_script(states, id, expected.refused);
        else
            ++expected.left_out_scripts;
    }
    for (const auto& [set_id, of_set] : scripts) {
        std::vector<Bytes> in_order;
        for (const auto& [id, script] : of_set) in_order.push_back(script);
        expected.blocks.push_back({numbers[set_id], expected_block(in_order)});
        expected.refused = expected.refused || numbers[set_id] > 255;
    }
    return expected;
}

class Sample_Library : public testing::TestWithParam<const char*> {
protected:
    std::string stem = std::string(CV_SETS_SAMPLES) + "/" + GetParam();

    QJsonObject json() const {
        const auto bytes = files::read_file(files::real_disk(), stem + ".expected.json");
        return QJsonDocument::fromJson(
                   QByteArray(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes)))
            .object();
    }
};

TEST_P(Sample_Library, comes_out_as_independent_readers_say) {
    if (!files::real_disk().file_exists(stem + ".mdb")) GTEST_SKIP() << "no samples";
    const auto expected = expected_of(json());
    ASSERT_FALSE(expected.sets.empty());
    for (const bool writable : {false, true}) {
        SCOPED_TRACE(writable);
        Library library;
        library.disk.set_bytes("/in.mdb", files::read_file(files::real_disk(), stem + ".mdb"));
        if (!writable) library.disk.protect("/in.mdb");
        store::clsDBConn connection(library.disk);
        connection.Connection_Start(QStringLiteral("/in.mdb"));
        ASSERT_TRUE(connection.Connection_Active());
        connection.Fill_Sets_in_SetObj(library.sets);
        connection.Fill_Scripts_in_ScriptsObj(library.script_sets);
        const auto report = library.save(File_Type::oem);
        EXPECT_EQ(report.left_out_scripts, expected.left_out_scripts);
        ASSERT_EQ(report.written, !expected.refused);
        if (!report.written) continue;
        const Read_Vqx read(library.file());
        EXPECT_EQ(read.sets, expected.sets);
        EXPECT_EQ(read.blocks.value_or(std::vector<Read_Vqx::Block>{}), expected.blocks);
        EXPECT_EQ(report.left_out_cvs.out_of_range, expected.left_out_cvs);
        EXPECT_EQ(report.left_out_cvs.covered + report.left_out_cvs.repeated, 0);
    }
}

INSTANTIATE_TEST_SUITE_P(All, Sample_Library,
                         testing::Values("library_2000", "library_2003", "old_library",
                                         "partly_numbered", "worn_library", "orphans"));

} // namespace
} // namespace vqx_export
