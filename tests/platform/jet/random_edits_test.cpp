#include "platform/jet/fixture.h"
#include "platform/jet/index/index_key.h"
#include "platform/jet/mdbtools.h"
#include "support/crash_sweep.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>

#include <map>
#include <random>
#include <set>

namespace {

using namespace fixture;
using jet::Cell;
using jet::Column_Type;
using jet::Failure;
using jet::Null;
using jet::Value;

using Row = std::vector<Value>;
using Rows = std::map<std::int32_t, Row>; // by primary key

/// Owners (id, Title unique) <- Parts (id, Owner, Name, Kind, Note, Blob, Flag, Weight), no
/// cascades; Parts <- Pieces (id, Part, Label), everything cascades.
struct Model {
    Rows owners, parts, pieces;
    std::set<jet::Bytes> titles; ///< keys of the owners' titles
};

jet::Index index(std::u16string name, std::u16string over, bool unique = false) {
    jet::Index made;
    made.name = std::move(name);
    made.columns = {{std::move(over), true}};
    made.unique = unique;
    made.ignore_nulls = unique;
    return made;
}

jet::Column counter() {
    auto made = column(u"id");
    made.auto_number = true;
    return made;
}

void make_tables(jet::Database& database) {
    auto name = column(u"Name", Column_Type::text, 40);
    name.compressed = true;
    database.create_table(u"Owners",
                          std::vector{counter(), column(u"Title", Column_Type::text, 255)},
                          std::vector{primary_key(u"id"), index(u"Title", u"Title", true)});
    database.create_table(
        u"Parts",
        std::vector{counter(), column(u"Owner"), name, column(u"Kind", Column_Type::integer),
                    column(u"Note", Column_Type::memo), column(u"Blob", Column_Type::ole),
                    column(u"Flag", Column_Type::boolean),
                    column(u"Weight", Column_Type::double_float)},
        std::vector{primary_key(u"id"), index(u"Name", u"Name"), index(u"Kind", u"Kind")});
    database.create_table(
        u"Pieces", std::vector{counter(), column(u"Part"), column(u"Label", Column_Type::text, 20)},
        std::vector{primary_key(u"id"), index(u"Label", u"Label")});
    jet::Relation owned{u"OwnersParts", u"Owners", {u"id"}, u"Parts", {u"Owner"}};
    database.add_relation(owned);
    jet::Relation pieces{u"PartsPieces", u"Parts", {u"id"}, u"Pieces", {u"Part"}};
    pieces.cascade_delete = pieces.cascade_update = true;
    database.add_relation(pieces);
}

class Player {
public:
    Player(files::Disk& disk, unsigned seed) : disk_(&disk), random_(seed), database_(open(disk)) {}

    /// One statement, on the database and on the model; a refusal must be foreseen by the model.
    void step() {
        switch (below(10)) {
        case 0:
            insert_owner();
            break;
        case 1:
            erase_owner();
            break;
        case 2:
            rename_owner();
            break;
        case 3:
        case 4:
            insert_part();
            break;
        case 5:
            change_part();
            break;
        case 6:
            erase_part();
            break;
        case 7:
        case 8:
            insert_piece();
            break;
        default:
            renumber_part();
            break;
        }
    }
    void transaction() {
        const bool given_up = below(8) == 0;
        auto before = given_up ? model : Model{};
        jet::Transaction transaction(database_);
        for (auto steps = 1 + below(20); steps > 0; --steps) step();
        if (given_up)
            model = std::move(before);
        else
            transaction.commit();
    }
    void reopen() {
        database_ = jet::Database::open(*disk_, path, jet::Mode::read_write);
        database_.watch(&told_);
    }
    jet::Database& database() { return database_; }

    void compare() {
        compare(u"Owners", model.owners);
        compare(u"Parts", model.parts);
        compare(u"Pieces", model.pieces);
    }

    Model model;

private:
    std::uint32_t below(std::uint32_t bound) {
        return static_cast<std::uint32_t>(random_() % bound);
    }

    std::u16string text(std::size_t longest) {
        static constexpr std::u16string_view letters = u"aBcäÖß 12-'ЖЯ漢";
        std::u16string made(below(static_cast<std::uint32_t>(longest) + 1), u' ');
        for (auto& letter : made) letter = letters[below(letters.size())];
        return made;
    }
    Value memo() {
        if (below(3) == 0) return Null{};
        return text(below(30) == 0 ? 9000 : below(4) == 0 ? 1500 : 60);
    }
    Value blob() {
        if (below(3) != 0) return Null{};
        jet::Bytes bytes(below(below(10) == 0 ? 12000 : 200));
        for (auto& byte : bytes) byte = static_cast<std::byte>(random_());
        return bytes;
    }
    std::int32_t any(const Rows& rows) {
        if (rows.empty()) return 1;
        const auto found = rows.lower_bound(
            static_cast<std::int32_t>(below(static_cast<std::uint32_t>(rows.rbegin()->first) + 1)));
        return found->first;
    }
    jet::Table table(std::u16string_view name) { return *database_.table(name); }
    std::optional<jet::Row_Place> place(std::u16string_view name, std::int32_t id) {
        auto cursor = table(name).find({{0, id}});
        return cursor.next() ? std::optional(cursor.id()) : std::nullopt;
    }
    void insert(std::u16string_view name, Rows& rows, Row row) {
        std::vector<Cell> cells;
        for (std::size_t i = 1; i < row.size(); ++i) cells.push_back({i, row[i]});
        row[0] = table(name).insert(cells).auto_number;
        ASSERT_TRUE(rows.emplace(std::get<std::int32_t>(row[0]), row).second);
    }
    void expect_refused(const std::function<void()>& action) {
        EXPECT_EQ(failure_of(action), Failure::refused);
    }

    Value title() { return below(10) == 0 ? Value(Null{}) : Value(text(12)); }
    /// Titles that differ in case or in hidden characters only have one key.
    static jet::Bytes title_key(const Value& title) {
        jet::Bytes key;
        if (!jet::is_null(title)) jet::append_text_key(key, std::get<std::u16string>(title), true);
        return key;
    }
    bool title_taken(const Value& wanted) {
        return !jet::is_null(wanted) && model.titles.contains(title_key(wanted));
    }
    void note_title(const Value& before, const Value& now) {
        if (!jet::is_null(before)) model.titles.erase(title_key(before));
        if (!jet::is_null(now)) model.titles.insert(title_key(now));
    }

    void insert_owner() {
        Row row{0, title()};
        if (title_taken(row[1])) {
            expect_refused([&] { table(u"Owners").insert({{1, row[1]}}); });
        } else {
            insert(u"Owners", model.owners, row);
            note_title(Null{}, row[1]);
        }
    }
    void rename_owner() {
        const auto id = any(model.owners);
        const auto at = place(u"Owners", id);
        ASSERT_EQ(at.has_value(), model.owners.contains(id));
        const auto wanted = title();
        if (!at) return;
        if (title_taken(wanted) && title_key(model.owners[id][1]) != title_key(wanted)) {
            expect_refused([&] { table(u"Owners").update(*at, {{1, wanted}}); });
        } else {
            table(u"Owners").update(*at, {{1, wanted}});
            note_title(model.owners[id][1], wanted);
            model.owners[id][1] = wanted;
        }
    }
    void erase_owner() {
        const auto id = any(model.owners);
        const auto at = place(u"Owners", id);
        ASSERT_EQ(at.has_value(), model.owners.contains(id));
        if (!at) return;
        const bool used = std::any_of(model.parts.begin(), model.parts.end(),
                                      [&](auto& part) { return part.second[1] == Value(id); });
        if (used) {
            expect_refused([&] { table(u"Owners").erase(*at); });
        } else {
            table(u"Owners").erase(*at);
            note_title(model.owners[id][1], Null{});
            model.owners.erase(id);
        }
    }
    Row part() {
        const auto owner = any(model.owners);
        return {0,
                below(5) == 0 ? Value(Null{}) : Value(owner),
                below(6) == 0 ? Value(Null{}) : Value(text(40)),
                static_cast<std::int32_t>(below(300)) - 150,
                memo(),
                blob(),
                below(2) == 0,
                below(1000) / 8.0};
    }
    bool owner_missing(const Row& row) {
        return !jet::is_null(row[1]) && !model.owners.contains(std::get<std::int32_t>(row[1]));
    }
    void insert_part() {
        const auto row = part();
        if (owner_missing(row))
            expect_refused([&] { table(u"Parts").insert({{1, row[1]}}); });
        else
            insert(u"Parts", model.parts, row);
    }
    void change_part() {
        const auto id = any(model.parts);
        const auto at = place(u"Parts", id);
        ASSERT_EQ(at.has_value(), model.parts.contains(id));
        if (!at) return;
        const auto row = part();
        std::vector<Cell> cells;
        for (std::size_t i = 2; i < row.size(); ++i)
            if (below(3) == 0) cells.push_back({i, row[i]});
        table(u"Parts").update(*at, cells);
        for (const auto& cell : cells) model.parts[id][cell.column] = cell.value;
    }
    void erase_part() {
        const auto id = any(model.parts);
        const auto at = place(u"Parts", id);
        ASSERT_EQ(at.has_value(), model.parts.contains(id));
        if (!at) return;
        table(u"Parts").erase(*at);
        model.parts.erase(id);
        std::erase_if(model.pieces, [&](auto& piece) { return piece.second[1] == Value(id); });
    }
    /// A new key, which the pieces follow.
    void renumber_part() {
        const auto id = any(model.parts);
        const auto wanted = static_cast<std::int32_t>(below(100000));
        const auto at = place(u"Parts", id);
        ASSERT_EQ(at.has_value(), model.parts.contains(id));
        if (!at || wanted == id) return;
        if (model.parts.contains(wanted)) {
            expect_refused([&] { table(u"Parts").update(*at, {{0, wanted}}); });
            return;
        }
        table(u"Parts").update(*at, {{0, wanted}});
        auto moved = model.parts.extract(id);
        moved.key() = wanted;
        moved.mapped()[0] = wanted;
        model.parts.insert(std::move(moved));
        for (auto& [key, piece] : model.pieces)
            if (piece[1] == Value(id)) piece[1] = wanted;
    }
    void insert_piece() {
        const auto part_ = any(model.parts);
        Row row{0, below(5) == 0 ? Value(Null{}) : Value(part_), text(20)};
        if (!jet::is_null(row[1]) && !model.parts.contains(part_))
            expect_refused([&] { table(u"Pieces").insert({{1, row[1]}}); });
        else
            insert(u"Pieces", model.pieces, row);
    }
    void compare(std::u16string_view name, const Rows& rows) {
        const auto here = table(name);
        ASSERT_EQ(here.row_count(), rows.size());
        auto wanted = rows.begin();
        for (auto cursor = here.rows(); cursor.next(); ++wanted) {
            ASSERT_NE(wanted, rows.end());
            ASSERT_EQ(cursor.values(), wanted->second) << "row " << wanted->first;
        }
        EXPECT_EQ(wanted, rows.end());
    }

    files::Disk* disk_;
    std::mt19937 random_;
    jet::Database database_;
    fixture::Told told_{database_}; ///< each change is told as it will be read
};

/// Ten steps a transaction on the average.
void play(unsigned seed) {
    files::Memory_Disk disk;
    {
        auto database = jet::Database::create(disk, path);
        make_tables(database);
    }
    Player player(disk, seed);
    constexpr int transactions = 5000;
    for (int i = 1; i <= transactions; ++i) {
        ASSERT_NO_FATAL_FAILURE(player.transaction());
        if (i % (transactions / 20) != 0) continue;
        SCOPED_TRACE("after transaction " + std::to_string(i));
        ASSERT_NO_FATAL_FAILURE(player.compare());
        ASSERT_EQ(faults(player.database(), true), "");
        player.reopen();
    }
    ASSERT_GT(player.model.parts.size(), 1000U) << "too little happened";
    if (!mdbtools::available()) return;
    const support::Temporary_Folder folder;
    const auto bytes = disk.bytes(path);
    files::real_disk().open(folder / "edited.mdb", files::Access::create_new)->write_at(0, bytes);
    EXPECT_EQ(mdbtools::difference(folder / "edited.mdb").toStdString(), "");
}

TEST(Random_Edits, agree_with_a_model_and_leave_a_sound_file) {
    const unsigned games = support::long_tests() ? 20 : 1;
    for (unsigned seed = 17; seed < 17 + games; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        ASSERT_NO_FATAL_FAILURE(play(seed));
    }
}

} // namespace
