// Old and foreign libraries: what is added to them, and what is not.

#include "platform/jet/database.h"
#include "scripts/cls_script_coll.h"
#include "store/library.h"
#include "support/interrupted_disk.h"

#include <gmock/gmock.h>

using namespace store;
using namespace Qt::Literals::StringLiterals;
using library::key_on;
using library::text;
using library::whole;
using testing::Contains;
using testing::Not;

namespace {

class Schema : public On_Library {
protected:
    using Columns = std::vector<jet::Column>;
    using Indexes = std::vector<jet::Index>;

    void SetUp() override {} // most need no samples
    /// An old library with tables Sets and CVs, with or without keys.
    jet::Database make(bool with_keys) {
        auto made = jet::Database::create(disk, "a.mdb", 40000.0);
        const auto keys = [&](const char16_t* column) {
            return with_keys ? Indexes{key_on(column)} : Indexes{};
        };
        auto sets = made.create_table(u"Sets", Columns{whole(u"SetID", true), text(u"Name")},
                                      keys(u"SetID"));
        made.create_table(u"CVs",
                          Columns{whole(u"CVID", true), whole(u"SetID"), whole(u"CVPageHi"),
                                  whole(u"CVPageLo"), whole(u"CVNr"), whole(u"CVWert")},
                          keys(u"CVID"));
        for (const auto* name : {u"Erster", u"Zweiter"})
            sets.insert({{*sets.column(u"Name"), std::u16string(name)}});
        return made;
    }
    void start() {
        db.Connection_Start(u"a.mdb"_s);
        ASSERT_TRUE(db.Connection_Active()) << library::trouble(db);
    }
    /// Whatever is tried, the reason is that the file is none.
    void expect_no_library() {
        EXPECT_EQ(library::trouble(db), "no_library");
        EXPECT_TRUE(library::sets(db, 8).empty());
        EXPECT_EQ(library::trouble(db), "no_library");
        std::int16_t number = 0;
        EXPECT_EQ(db.DB_Add_CVSet(u"x"_s, number, 8), 0);
        EXPECT_EQ(library::trouble(db), "no_library");
        EXPECT_EQ(db.set_name_width(), 0);
        EXPECT_EQ(library::trouble(db), "no_library");
        EXPECT_FALSE(library::write(db, library::cv(29, 6)));
        EXPECT_EQ(library::trouble(db), "no_library");
    }
    std::vector<std::u16string> tables() {
        auto database = jet::Database::open(disk, "a.mdb", jet::Mode::read_only);
        std::vector<std::u16string> names;
        for (const jet::Table& table : database.tables()) names.push_back(table.name());
        return names;
    }
};

struct Schema_Of_Samples : Schema {
    void SetUp() override { On_Library::SetUp(); }
};

TEST_F(Schema, two_copies_that_open_an_old_library_at_once_complete_it_together) {
    make(true);
    bool met = true;
    int times = 0;
    for (int nth = 1; met; ++nth) {
        SCOPED_TRACE(nth);
        support::Interrupted_Disk shared;
        shared.set_bytes("a.mdb", disk.bytes("a.mdb"));
        clsDBConn one(shared);
        clsDBConn other(shared);
        shared.due = nth;
        shared.action = [&] { other.Connection_Start(u"a.mdb"_s); };
        one.Connection_Start(u"a.mdb"_s);
        met = !shared.action;
        times += met;
        ASSERT_TRUE(one.Connection_Active());
        for (clsDBConn* const db_ : {&one, &other}) {
            const std::string trouble = library::trouble(*db_);
            EXPECT_TRUE(trouble.empty() || (met && trouble == "locked_elsewhere")) << trouble;
        }
        one.Connection_Start(u"a.mdb"_s);
        EXPECT_EQ(library::sets(one, 8).size(), 2U);
        EXPECT_EQ(jet::Database::open(shared, "a.mdb", jet::Mode::read_only).tables().size(), 4U);
        EXPECT_EQ(library::faults(shared, "a.mdb"), std::vector<std::string>());
    }
    EXPECT_GT(times, 5);
}

TEST_F(Schema, the_new_tables_are_those_that_others_expect) {
    make(true);
    start();
    auto database = jet::Database::open(disk, "a.mdb", jet::Mode::read_only);
    const auto sets = database.table(u"Sets").value();
    for (const auto* name : {u"Nummer", u"ResCV"}) {
        const jet::Column& column = sets.columns()[sets.column(name).value()];
        EXPECT_EQ(column.type, jet::Column_Type::long_integer);
        EXPECT_TRUE(column.fixed && !column.required && !column.auto_number);
    }
    const struct {
        const char16_t *table, *column;
        bool number, key, required;
    } cases[] = {
        {u"Scripte", u"ScriptID", true, true, false},
        {u"Scripte", u"SetID", true, false, true},
        {u"Scripte", u"ScriptName", false, false, false},
        {u"Scriptstates", u"SSID", true, true, false},
        {u"Scriptstates", u"ScriptID", true, false, true},
        {u"Scriptstates", u"State", true, false, true},
        {u"Scriptstates", u"Command", true, false, true},
        {u"Scriptstates", u"Par1", true, false, false},
        {u"Scriptstates", u"Par4", true, false, false},
        {u"Scriptstates", u"Info", false, false, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(QStringView(c.column).toString().toStdString());
        const auto table = database.table(c.table).value();
        const std::size_t place = table.column(c.column).value();
        const jet::Column& column = table.columns()[place];
        EXPECT_EQ(column.type, c.number ? jet::Column_Type::long_integer : jet::Column_Type::text);
        EXPECT_EQ(column.length, c.number ? 0U : 255U);
        EXPECT_EQ(column.auto_number, c.key);
        EXPECT_EQ(column.description, c.key ? u"unique identifier" : u"");
        EXPECT_EQ(table.key() == std::vector<std::size_t>{place}, c.key);
        if (c.required) {
            EXPECT_TRUE(column.required);
        }
        EXPECT_EQ(column.allow_zero_length, !c.number);
    }
    std::vector<std::u16string> relations;
    for (const jet::Relation& relation : database.relations()) {
        relations.push_back(relation.name + u" " + relation.table + u" " + relation.foreign_table);
        EXPECT_TRUE(relation.enforced && !relation.cascade_delete && !relation.cascade_update);
    }
    EXPECT_THAT(relations, testing::UnorderedElementsAre(u"CVSetIDScripte Sets Scripte",
                                                         u"ScriptIDScripte Scripte Scriptstates"));
}

TEST_F(Schema, names_in_another_case_are_used_as_they_are) {
    {
        auto made = make(true);
        made.add_column(u"Sets", whole(u"nummer"));
        made.create_table(u"SCRIPTE",
                          Columns{whole(u"scriptid", true), whole(u"setid"), text(u"scriptname")},
                          Indexes{key_on(u"scriptid")});
    }
    start();
    EXPECT_EQ(library::trouble(db), "");
    EXPECT_THAT(tables(), Not(Contains(u"Scripte")));
    EXPECT_THAT(tables(), Contains(u"Scriptstates"));
    EXPECT_EQ(library::sets(db, 8).back().first, "11 - Zweiter");
    db.AktCVSetID(2);
    scripts::AktScripts().AddScript().ScriptName = u"Pfeife"_s;
    EXPECT_TRUE(db.DB_Add_Script(1));
    EXPECT_TRUE(db.DB_Save_Script_States(1));
    db.DB_Load_Scripts();
    ASSERT_EQ(scripts::AktScripts().Count(), 1);
    EXPECT_EQ(scripts::AktScripts().Item(1)->ScriptName, u"Pfeife"_s);
    EXPECT_EQ(library::trouble(db), "");
}

TEST_F(Schema, tables_without_keys_get_the_columns_and_stay_usable) {
    make(false);
    start();
    EXPECT_EQ(library::trouble(db), "refused") << "no relation to a table without a key";
    EXPECT_THAT(tables(), Not(Contains(u"Scripte")));
    EXPECT_EQ(library::sets(db, 8), (library::Shown{{"10 - Erster", 1}, {"11 - Zweiter", 2}}));
    EXPECT_EQ(db.DB_Count_Scripts(1), 0);
    db.AktCVSetID(2);
    for (const int value : {5, 6}) EXPECT_TRUE(library::write(db, library::cv(29, value)));
    EXPECT_EQ(library::cvs(db, 2), (library::Shown{{"CV#    29 = 6", 1}}));
    EXPECT_TRUE(db.DB_Del_CVSet(2));
    EXPECT_EQ(db.Get_Anz_CVSets(), 1);
    EXPECT_EQ(library::trouble(db), "");
}

TEST_F(Schema_Of_Samples, nothing_is_added_to_databases_of_other_kinds) {
    for (const char* const sample : {"emptyJet4", "indexTestV2000", "testV1997"}) {
        SCOPED_TRACE(sample);
        library::put(disk, sample, "a.mdb");
        const auto before = disk.bytes("a.mdb");
        start();
        expect_no_library();
        db.Connection_Close();
        EXPECT_EQ(disk.bytes("a.mdb"), before);
    }
}

TEST_F(Schema, a_table_of_sets_is_no_library_without_names_and_shows_them_without_cvs) {
    for (const bool named : {false, true}) {
        SCOPED_TRACE(named);
        auto made = jet::Database::create(disk, "a.mdb", 40000.0);
        Columns columns{whole(u"SetID", true)};
        if (named) columns.push_back(text(u"Name"));
        const auto sets = made.create_table(u"Sets", columns, Indexes{key_on(u"SetID")});
        if (named) sets.insert({{1, std::u16string(u"Erster")}});
        const auto before = disk.bytes("a.mdb");
        start();
        if (named) {
            EXPECT_EQ(db.opening().blocked, Blocked::no_cvs);
            EXPECT_EQ(library::sets(db, 8), (library::Shown{{"10 - Erster", 1}}));
            EXPECT_TRUE(library::cvs(db, 1).empty());
            EXPECT_EQ(library::trouble(db), "");
            EXPECT_FALSE(db.DB_Del_CVSet(1));
            EXPECT_EQ(library::trouble(db), "no_cvs");
        } else {
            expect_no_library();
        }
        db.Connection_Close();
        EXPECT_EQ(disk.bytes("a.mdb"), before);
    }
}

TEST_F(Schema, a_set_that_rows_of_other_programs_refer_to_is_deleted_not_even_in_part) {
    {
        auto made = make(true);
        auto other = made.create_table(u"Fotos", Columns{whole(u"FotoID", true), whole(u"SetID")},
                                       Indexes{key_on(u"FotoID")});
        made.add_relation({u"FotosSets", u"Sets", {u"SetID"}, u"Fotos", {u"SetID"}});
        other.insert({{1, std::int32_t{2}}});
    }
    start();
    db.AktCVSetID(2);
    ASSERT_TRUE(library::write(db, library::cv(29, 6)));
    EXPECT_FALSE(db.DB_Del_CVSet(2));
    EXPECT_EQ(library::trouble(db), "refused");
    EXPECT_EQ(library::cvs(db, 2).size(), 1U);
    EXPECT_TRUE(db.DB_Del_CVSet(1));
}

TEST_F(Schema, a_library_that_another_program_has_open_is_told) {
    make(true);
    start();
    EXPECT_FALSE(db.opening().ldb_beside);
    disk.set_bytes("a.ldb", {});
    start();
    EXPECT_TRUE(db.opening().ldb_beside);
    EXPECT_TRUE(db.writable());
    EXPECT_FALSE(db.opening().jet3);
    EXPECT_FALSE(db.opening().recovered);
}

} // namespace
