// bench_library FILE SETS CVS [unindexed]: makes a library of SETS sets with CVS CVs each, with our
// own engine. `unindexed` leaves out the index over CVs.SetID.

#include "platform/jet/database.h"

#include <array>
#include <iostream>
#include <string>

namespace {

constexpr int rows_in_a_transaction = 20'000; // a transaction lives in memory

jet::Column number(std::u16string name, bool counter = false) {
    jet::Column column;
    column.name = std::move(name);
    column.auto_number = counter;
    return column;
}

jet::Column text(std::u16string name) {
    auto column = number(std::move(name));
    column.type = jet::Column_Type::text;
    column.length = 255;
    column.allow_zero_length = true;
    return column;
}

jet::Index index(std::u16string name, std::u16string over, bool primary) {
    jet::Index made;
    made.name = std::move(name);
    made.columns = {{std::move(over), true}};
    made.primary = primary;
    return made;
}

void make_tables(jet::Database& database, bool indexed) {
    database.create_table(
        u"Sets",
        std::array{number(u"SetID", true), text(u"Name"), number(u"Nummer"), number(u"ResCV")},
        std::array{index(u"PrimaryKey", u"SetID", true)});
    std::vector<jet::Index> indexes{index(u"PrimaryKey", u"CVID", true)};
    if (indexed) indexes.push_back(index(u"SetID", u"SetID", false));
    database.create_table(u"CVs",
                          std::array{number(u"CVID", true), number(u"SetID"), number(u"CVPageHi"),
                                     number(u"CVPageLo"), number(u"CVNr"), number(u"CVWert")},
                          indexes);
}

struct Cv {
    int high, low, number;
};

/// The i-th CV of a set: 1 to 256, 513 to 1024, then the pages of 257 to 512.
Cv cv(int i) {
    if (i < 256) return {0, 1, i + 1};
    if (i < 768) return {0, 1, i + 257};
    return {1, (i - 768) / 256, 257 + (i - 768) % 256};
}

void fill(jet::Database& database, int sets, int cvs) {
    const auto sets_table = database.table(u"Sets").value();
    const auto cvs_table = database.table(u"CVs").value();
    for (int set = 0; set < sets;) {
        jet::Transaction transaction(database);
        for (int rows = 0; rows < rows_in_a_transaction && set < sets; rows += cvs + 1, ++set) {
            const auto name = std::to_string(set + 1);
            const auto id =
                sets_table
                    .insert({{1, u"Baureihe " + std::u16string(name.begin(), name.end())},
                             {2, 10 + set % 32000},
                             {3, 8}})
                    .auto_number;
            for (int i = 0; i < cvs; ++i)
                cvs_table.insert({{1, id},
                                  {2, cv(i).high},
                                  {3, cv(i).low},
                                  {4, cv(i).number},
                                  {5, (set + i) % 256}});
        }
        transaction.commit();
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 4) {
        std::cerr << "usage: bench_library FILE SETS CVS [unindexed]\n";
        return 2;
    }
    try {
        auto database = jet::Database::create(files::real_disk(), argv[1]);
        make_tables(database, argc == 4);
        fill(database, std::stoi(argv[2]), std::stoi(argv[3]));
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
