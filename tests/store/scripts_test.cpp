// Scripts of the current set.

#include "scripts/cls_Script_Sets.h"
#include "scripts/cls_script_coll.h"
#include "scripts/script_session.h"
#include "store/active_scripts.h"
#include "store/library.h"

#include <algorithm>
#include <set>
#include <vector>

using namespace store;
using namespace Qt::Literals::StringLiterals;
using scripts::AktScripts;

namespace {

class Script_Storage : public On_Library {
protected:
    ~Script_Storage() override { AktScripts().Clear(); }
    void load(const std::string& sample, std::int32_t set) {
        open(sample);
        db.AktCVSetID(set);
        db.DB_Load_Scripts();
    }
    void load_again(std::int32_t set) {
        reopen();
        EXPECT_EQ(AktScripts().Count(), 0);
        db.AktCVSetID(set);
        db.DB_Load_Scripts();
    }
};

TEST_F(Script_Storage, without_a_current_set_nothing_happens) {
    load("orphans", 2);
    db.AktCVSetID(0);
    db.DB_Load_Scripts();
    EXPECT_EQ(AktScripts().Count(), 3);
    EXPECT_FALSE(db.DB_Save_Script_States(1));
    EXPECT_EQ(library::trouble(db), "no_set");
    db.AktCVSetID(2);
    for (const int position : {0, 4}) {
        EXPECT_FALSE(db.DB_Delete_Script(position));
        EXPECT_EQ(library::trouble(db), "gone");
    }
}

TEST_F(Script_Storage, a_saved_script_has_its_states_numbered_without_gaps) {
    for (const char* const sample : {"library_2000", "library_2003", "worn_library"}) {
        load(sample, 3);
        SCOPED_TRACE(sample);
        const std::int32_t before = AktScripts().Count();
        scripts::cls_script& added = AktScripts().AddScript();
        added.ScriptName = u"Glocke \"neu\", ä → ü"_s;
        ASSERT_TRUE(db.DB_Add_Script(before + 1));
        ASSERT_GT(added.ScriptID, 0);
        added.StateCount = 256;
        added.GetState(0).SetCommand(33);
        for (int par = 0; par < 7; ++par) added.GetState(0).SetPar(par, par + 250);
        added.GetState(255).SetCommand(6);
        added.GetState(255).Info = QString(255, u'ü');
        ASSERT_TRUE(db.DB_Save_Script_States(before + 1));
        load_again(3);
        ASSERT_EQ(AktScripts().Count(), before + 1);
        const auto loaded = AktScripts().Item(before + 1);
        EXPECT_EQ(loaded->ScriptName, u"Glocke \"neu\", ä → ü"_s);
        EXPECT_EQ(loaded->StateCount, 256);
        EXPECT_EQ(loaded->GetState(0).GetPar(3), 253);
        EXPECT_EQ(loaded->GetState(0).GetPar(4), 0) << "has no column";
        EXPECT_EQ(loaded->GetState(2).GetCommand(), 0);
        EXPECT_EQ(loaded->GetState(255).GetCommand(), 6);
        EXPECT_EQ(loaded->GetState(255).Info, QString(255, u'ü'));
        loaded->StateCount = 3; // the rows from 3 on must go
        ASSERT_TRUE(db.DB_Save_Script_States(before + 1));
        loaded->ScriptName = u"anders"_s;
        ASSERT_TRUE(db.DB_Rename_Script(before + 1));
        load_again(3);
        EXPECT_EQ(AktScripts().Item(before + 1)->StateCount, 3);
        EXPECT_EQ(AktScripts().Item(before + 1)->ScriptName, u"anders"_s);
        EXPECT_EQ(db.DB_Count_Scripts(3), before + 1);
        ASSERT_TRUE(db.DB_Delete_Script(before + 1));
        EXPECT_EQ(AktScripts().Count(), before + 1) << "leaving the list is the caller's business";
        load_again(3);
        EXPECT_EQ(AktScripts().Count(), before);
        EXPECT_EQ(library::trouble(db), "");
    }
}

TEST_F(Script_Storage, a_script_that_nobody_has_changed_costs_the_library_nothing) {
    const auto lines = [this] {
        std::set<jet::Row_Place> found;
        auto file = jet::Database::open(disk, "a.mdb", jet::Mode::read_only);
        const auto states = file.table(u"Scriptstates").value();
        for (auto row = states.rows(); row.next();) found.insert(row.id());
        return found;
    };
    for (const std::string& sample : library::names()) {
        SCOPED_TRACE(sample);
        library::put(disk, sample, "a.mdb");
        db.Connection_Start(u"a.mdb"_s); // what is missing in an old file is added now
        const bool can_be_written = db.writable();
        db.Connection_Close();
        if (!can_be_written) continue;
        for (const bool gaps : {false, true}) {
            if (gaps) {
                auto file = jet::Database::open(disk, "a.mdb", jet::Mode::read_write);
                const auto states = file.table(u"Scriptstates").value();
                std::vector<jet::Row_Place> second;
                for (auto row = states.rows(); row.next();)
                    if (row.integer(*states.column(u"State")) == 1) second.push_back(row.id());
                for (const jet::Row_Place place : second) states.erase(place);
            }
            const auto stored = lines();
            db.Connection_Start(u"a.mdb"_s);
            scripts::cls_Script_Sets sets;
            db.Fill_Scripts_in_ScriptsObj(sets);
            const auto bytes = disk.bytes("a.mdb");
            std::size_t empty = 0;
            for (const auto& set : sets.NewEnum()) {
                db.AktCVSetID(set->SetID);
                db.DB_Load_Scripts();
                for (int position = 1; position <= AktScripts().Count(); ++position) {
                    const auto script = AktScripts().Item(position);
                    scripts::Script_Session(*script).write_back(*script);
                    EXPECT_TRUE(db.DB_Save_Script_States(position)) << library::trouble(db);
                    for (int line = 0; line < script->StateCount; ++line)
                        if (script->GetState(line) == scripts::cls_Scriptstate()) ++empty;
                }
            }
            db.Connection_Close();
            const auto now = lines();
            EXPECT_EQ(disk.bytes("a.mdb") == bytes, now == stored);
            EXPECT_LE(now.size(), stored.size() + empty) << "only missing lines are added";
            EXPECT_TRUE(std::ranges::includes(now, stored)) << "each line stays where it is";
        }
    }
}

TEST_F(Script_Storage, a_refused_row_costs_nothing) {
    load("library_2000", 3);
    const auto script = AktScripts().Item(1);
    const int count = script->StateCount;
    ASSERT_GT(count, 2);
    const QString info = script->GetState(0).Info;
    script->GetState(0).Info = u"anders"_s;
    script->GetState(count - 1).Info = QString(256, u'x');
    EXPECT_FALSE(db.DB_Save_Script_States(1));
    EXPECT_EQ(library::trouble(db), "refused");
    load_again(3);
    EXPECT_EQ(AktScripts().Item(1)->StateCount, count);
    EXPECT_EQ(AktScripts().Item(1)->GetState(0).Info, info);
}

TEST_F(Script_Storage, a_script_that_another_copy_deleted_is_not_stored) {
    load("library_2000", 3);
    {
        clsDBConn other(disk);
        other.Connection_Start(u"a.mdb"_s);
        AktScripts().Clear();
        other.AktCVSetID(3);
        other.DB_Load_Scripts();
        ASSERT_TRUE(other.DB_Delete_Script(1));
        const auto gone = AktScripts().Item(1);
        db.AktCVSetID(3);
        EXPECT_FALSE(db.DB_Save_Script_States(1));
        EXPECT_EQ(library::trouble(db), "gone");
        EXPECT_FALSE(db.DB_Rename_Script(1));
    }
    load_again(3);
    EXPECT_EQ(AktScripts().Count(), 15);
}

TEST_F(Script_Storage, states_that_somebody_else_has_changed_are_not_overwritten) {
    load("library_2000", 3);
    const auto held = AktScripts().Item(1);
    load_again(3);
    const auto others = AktScripts().Item(1);
    const int lines = others->StateCount;
    ASSERT_GT(lines, 1);
    others->StateCount = 1;
    ASSERT_TRUE(db.DB_Save_Script_States(1)) << "as it was loaded";
    ASSERT_TRUE(db.DB_Save_Script_States(1)) << "as it was saved last";
    others->Stored_States = held->Stored_States;
    others->StateCount = lines;
    EXPECT_FALSE(db.DB_Save_Script_States(1));
    EXPECT_EQ(library::trouble(db), "changed");
    db.AktCVSetID(2); // the list still shows the scripts of the other set
    EXPECT_FALSE(db.DB_Rename_Script(1));
    EXPECT_EQ(library::trouble(db), "gone");
    load_again(3);
    EXPECT_EQ(AktScripts().Item(1)->StateCount, 1);
}

TEST_F(Script_Storage, a_flag_is_a_bit_of_the_low_byte_of_its_cv) {
    load("library_2000", 3);
    const struct {
        std::int16_t number, value;
        int position;
        bool active;
        std::int16_t after;
    } flags[] = {{837, 0, 8, false, 128},  {837, 255, 1, true, 254},   {837, 300, 3, true, 40},
                 {843, -1, 16, true, 127}, {843, -32768, 9, false, 1}, {843, 4, 11, false, 4}};
    for (const auto& each : flags) {
        CVRec cv{.CVPageLo = 1, .CVNr = each.number, .CVWert = each.value};
        ASSERT_TRUE(db.DB_Write_CV(cv));
        EXPECT_EQ(store_script_active(db, each.position, each.active).CVWert, each.after);
        EXPECT_EQ(Get_CV_Wert(db, each.number), each.after) << each.value;
        EXPECT_EQ(active_scripts(db).test(static_cast<std::size_t>(each.position - 1)),
                  each.active);
    }
    for (const auto& [number, value] : {std::pair<int, int>{837, 300}, {843, -256}}) {
        CVRec cv{.CVPageLo = 1,
                 .CVNr = static_cast<std::int16_t>(number),
                 .CVWert = static_cast<std::int16_t>(value)};
        ASSERT_TRUE(db.DB_Write_CV(cv));
    }
    EXPECT_EQ(~active_scripts(db), Active_Scripts(0x002C)) << "300 switches off no ninth script";
    db.AktCVSetID(0);
    EXPECT_TRUE(active_scripts(db).all());
    EXPECT_EQ(store_script_active(db, 1, false), CVRec{});
}

} // namespace
