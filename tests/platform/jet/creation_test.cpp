#include "platform/jet/fixture.h"

#include <gmock/gmock.h>

#include <array>
#include <bit>

namespace {

using namespace fixture;
using jet::Column;
using jet::Column_Type;
using jet::Failure;

std::uint32_t crc32(std::span<const std::byte> bytes) {
    std::uint32_t crc = 0xFFFFFFFF;
    for (const auto byte : bytes) {
        crc ^= std::to_integer<std::uint32_t>(byte);
        for (int bit = 0; bit < 8; ++bit) crc = crc >> 1U ^ ((crc & 1U) != 0 ? 0xEDB88320U : 0U);
    }
    return ~crc;
}

std::vector<std::uint32_t> page_sums(const files::Memory_Disk& disk) {
    const auto bytes = disk.bytes(path);
    std::vector<std::uint32_t> sums;
    for (std::size_t at = 0; at + 4096 <= bytes.size(); at += 4096)
        sums.push_back(crc32(std::span(bytes).subspan(at, 4096)));
    return sums;
}

const double date_of_creation = std::bit_cast<double>(0x40E4AB3E3BD3FB4E);

/// The sums of a file that was built page by page from the description of the format and opened by
/// two independent readers.
TEST(Creation, an_empty_file_equals_the_known_one_page_by_page) {
    files::Memory_Disk disk;
    auto database = jet::Database::create(disk, path, date_of_creation);
    const std::vector<std::uint32_t> known = {0x69AAABE6, 0xF627D4C0, 0xBB9CC2EC, 0x5A5DA9A2,
                                              0xCC462A2A, 0xBC028C0A, 0xD2088285, 0xEAA9FDE4,
                                              0xF4C8CFC5, 0x589E9DA0, 0x40EF71E4, 0x5313D8FA,
                                              0x5313D8FA, 0x5313D8FA, 0xACC06680, 0x8F1821FE};
    EXPECT_EQ(page_sums(disk), known);
    EXPECT_EQ(faults(database, true), "");
    EXPECT_TRUE(database.tables().empty());
    EXPECT_EQ(database.tables(true).size(), 4U);
}

Column counter(std::u16string name, std::u16string description = {}) {
    auto made = column(std::move(name));
    made.auto_number = true;
    made.description = std::move(description);
    return made;
}

Column needed(std::u16string name) {
    auto made = column(std::move(name));
    made.required = true;
    return made;
}

Column plain_text(std::u16string name) {
    auto made = column(std::move(name), Column_Type::text, 255);
    made.allow_zero_length = false;
    return made;
}

jet::Relation relation(std::u16string name, std::u16string table, std::u16string foreign_table,
                       std::u16string key) {
    jet::Relation made;
    made.name = std::move(name);
    made.table = std::move(table);
    made.foreign_table = std::move(foreign_table);
    made.columns = made.foreign_columns = {std::move(key)};
    return made;
}

void make_library(jet::Database& database) {
    const auto table = [&](std::u16string_view name, std::vector<Column> columns,
                           std::vector<jet::Index> indexes = {}) {
        indexes.insert(indexes.begin(), primary_key(columns.front().name));
        database.create_table(name, columns, indexes);
    };
    jet::Index set_id;
    set_id.name = u"SetID";
    set_id.columns = {{u"SetID", true}};
    table(u"Sets", {counter(u"SetID"), plain_text(u"Name"), column(u"Nummer"), column(u"ResCV")});
    table(u"CVs",
          {counter(u"CVID"), column(u"SetID"), column(u"CVPageHi"), column(u"CVPageLo"),
           column(u"CVNr"), column(u"CVWert")},
          {set_id});
    table(u"Scripte", {counter(u"ScriptID", u"unique identifier"), needed(u"SetID"),
                       plain_text(u"ScriptName")});
    table(u"Scriptstates", {counter(u"SSID", u"unique identifier"), needed(u"ScriptID"),
                            needed(u"State"), needed(u"Command"), column(u"Par1"), column(u"Par2"),
                            column(u"Par3"), column(u"Par4"), plain_text(u"Info")});
    database.add_relation(relation(u"CVSetIDScripte", u"Sets", u"Scripte", u"SetID"));
    database.add_relation(relation(u"ScriptIDScripte", u"Scripte", u"Scriptstates", u"ScriptID"));
}

TEST(Creation, a_library_equals_the_known_one_page_by_page) {
    files::Memory_Disk disk;
    auto database = jet::Database::create(disk, path, date_of_creation);
    database.set_date(46350.5);
    make_library(database);
    const std::vector<std::uint32_t> known = {
        0x69AAABE6, 0xA19C8225, 0x5CBB562B, 0x8D78C704, 0xCC462A2A, 0xA61607D3, 0x1140EAA9,
        0x8584A21A, 0xD4D22758, 0x343B3CAF, 0x40EF71E4, 0xB0FDB8C8, 0xEA3FA2AA, 0x448BBFFE,
        0x71C64D96, 0x2B3C56A6, 0x80316189, 0x496C178E, 0xEBA6423D, 0xBCBA2E89, 0xE390F4BC,
        0xDFA3B91F, 0xDFA3B91F, 0x1B7B9009, 0xCC5B3743, 0x90511D67, 0x808FDA27, 0x7E828BD9,
        0xBD20E4E0, 0x4046F1EF, 0x90511D67, 0x0E83B73F, 0x4046F1EF};
    const auto sums = page_sums(disk);
    EXPECT_EQ(sums.size(), known.size());
    for (std::size_t i = 0; i < std::min(sums.size(), known.size()); ++i)
        EXPECT_EQ(sums[i], known[i]) << "page " << i;
    EXPECT_EQ(faults(database, true), "");
}

} // namespace
