// Libraries in which other programs have laid down rules of their own.

#include "scripts/cls_script_coll.h"
#include "store/undo_library.h"

#include <algorithm>
#include <array>

using namespace store;
using namespace Qt::Literals::StringLiterals;
using scripts::AktScripts;
using undo::Content;
using undo::content;
using undo::difference;
using undo::Person;
using Outcome = Undo_Result::Outcome;

namespace {

constexpr std::int32_t set_with_scripts = 3;

/// A column without a default can be required only of a table without rows.
void require_remark(jet::Database& file) {
    const auto states = file.table(u"Scriptstates").value();
    std::vector<std::vector<jet::Value>> rows;
    std::vector<jet::Row_Place> ids;
    for (auto row = states.rows(); row.next();) {
        ids.push_back(row.id());
        rows.push_back(row.values());
    }
    for (const jet::Row_Place id : ids) states.erase(id);
    jet::Column remark = library::text(u"Bemerkung", 20);
    remark.required = true;
    file.add_column(u"Scriptstates", remark);
    for (const auto& values : rows) {
        std::vector<jet::Cell> cells{{*states.column(u"Bemerkung"), u"x"}};
        for (std::size_t i = 0; i < values.size(); ++i) cells.push_back({i, values[i]});
        states.insert(cells);
    }
}

/// A table of notes, with one that refers to the last row of a set or script.
void add_notes(jet::Database& file, const char16_t* table, const char16_t* key,
               const char16_t* owner, std::int32_t owner_key) {
    const auto notes = file.create_table(
        u"Notizen", std::array{library::whole(u"ID", true), library::whole(u"zu")},
        std::array{library::key_on(u"ID")});
    file.add_relation({u"Notiz", table, {key}, u"Notizen", {u"zu"}});
    const auto referred = file.table(table).value();
    jet::Value last;
    for (auto row = referred.rows(); row.next();)
        if (row.integer(*referred.column(owner)) == owner_key)
            last = row.value(*referred.column(key));
    notes.insert({{1, last}});
}

class Foreign_Rules : public On_Undo {
protected:
    ~Foreign_Rules() override { AktScripts().Clear(); }
    std::int32_t script_with_states() {
        db.AktCVSetID(set_with_scripts);
        db.DB_Load_Scripts();
        for (std::int32_t i = 1; i <= AktScripts().Count(); ++i)
            if (AktScripts().Item(i)->StateCount > 2) return i;
        ADD_FAILURE() << "the sample has no script with lines any more";
        return 1;
    }
};

TEST_F(Foreign_Rules, a_script_is_saved_whole_or_stays) {
    struct Rule {
        const char* what;
        std::function<void(jet::Database&)> change;
        int more_lines = 0;
        bool foreseen = false; ///< refused before any line is touched
    };
    const Rule rules[] = {
        {"a column that we do not fill", require_remark, 1, true},
        {"no two lines alike",
         [](jet::Database& file) {
             const auto states = file.table(u"Scriptstates").value();
             std::vector<jet::Row_Place> rows;
             for (auto row = states.rows(); row.next();) rows.push_back(row.id());
             for (std::size_t i = 0; i < rows.size(); ++i)
                 states.update(rows[i], {{*states.column(u"Info"),
                                          QString::number(static_cast<int>(i)).toStdU16String()}});
             file.add_index(u"Scriptstates", library::unique_on({u"ScriptID", u"Info"}));
         }},
        {"a note on a line",
         [](jet::Database& file) {
             const auto scripts = file.table(u"Scripte").value();
             std::int32_t last = 0;
             for (auto row = scripts.rows(); row.next();)
                 if (row.integer(*scripts.column(u"SetID")) == set_with_scripts && last == 0)
                     last = row.integer(*scripts.column(u"ScriptID"));
             add_notes(file, u"Scriptstates", u"SSID", u"ScriptID", last);
         },
         -1, true}};
    for (const Rule& rule : rules) {
        SCOPED_TRACE(rule.what);
        open_changed(rule.change);
        const std::int32_t position = script_with_states();
        std::swap(AktScripts().Item(position)->GetState(0),
                  AktScripts().Item(position)->GetState(1));
        EXPECT_TRUE(db.DB_Save_Script_States(position))
            << "lines that are there change as they are";
        expect_undone(before);
        db.DB_Load_Scripts();
        scripts::cls_script& script = *AktScripts().Item(position);
        script.GetState(0).Info = script.GetState(1).Info = u"gleich"_s;
        script.StateCount += rule.more_lines;
        EXPECT_FALSE(db.DB_Save_Script_States(position));
        EXPECT_EQ(library::trouble(db), "refused");
        expect_content(before);
        Operation several(db);
        EXPECT_TRUE(db.DB_Rename_CVSet(u"anders"_s, 0));
        EXPECT_FALSE(db.DB_Save_Script_States(position));
        EXPECT_EQ(several.keep(), rule.foreseen);
        EXPECT_EQ(difference(content(disk), before).empty(), !rule.foreseen)
            << "no half of it either";
    }
}

TEST_F(Foreign_Rules, a_set_is_deleted_whole_or_stays) {
    for (const bool on_cv : {true, false}) {
        SCOPED_TRACE(on_cv);
        open_changed([&](jet::Database& file) {
            on_cv ? add_notes(file, u"CVs", u"CVID", u"SetID", set_with_scripts)
                  : add_notes(file, u"Scripte", u"ScriptID", u"SetID", set_with_scripts);
        });
        EXPECT_FALSE(db.DB_Del_CVSet(set_with_scripts));
        EXPECT_EQ(library::trouble(db), "refused");
        expect_content(before);
        EXPECT_FALSE(history.undo_name());
        EXPECT_TRUE(db.DB_Del_CVSet(1)) << "nothing refers to this one";
    }
}

/// Libraries that hold a CV twice.
class Doubles : public Foreign_Rules {
protected:
    void open_doubled() {
        open_changed([&](jet::Database& file) {
            const auto cvs = file.table(u"CVs").value();
            for (std::int32_t& key : keys)
                key = cvs.insert({{*cvs.column(u"SetID"), 1},
                                  {*cvs.column(u"CVPageHi"), 0},
                                  {*cvs.column(u"CVPageLo"), 1},
                                  {*cvs.column(u"CVNr"), 900},
                                  {*cvs.column(u"CVWert"), 5}})
                          .auto_number;
        });
    }
    std::array<std::int32_t, 3> keys{};
};

TEST_F(Doubles, each_comes_back_whichever_went_first) {
    std::array order{0U, 1U, 2U};
    do {
        open_doubled();
        for (const auto i : order) ASSERT_TRUE(db.DB_Del_CVWert(keys[i]));
        for (int round = 0; round < 2; ++round) {
            for (int i = 0; i < 2; ++i) ASSERT_EQ(history.undo().outcome, Outcome::done) << shown();
            expect_undone(before);
            for (std::size_t i = 0; i < order.size(); ++i)
                ASSERT_EQ(history.redo().outcome, Outcome::done) << shown();
        }
    } while (std::next_permutation(order.begin(), order.end()));
}

TEST_F(Doubles, one_does_not_come_back_beside_a_row_that_was_not_there) {
    open_doubled();
    clsDBConn other(disk);
    Undo_History steps(other);
    other.Connection_Start(u"a.mdb"_s);
    ASSERT_TRUE(other.DB_Del_CVWert(keys[0]));
    ASSERT_TRUE(db.DB_Del_CVWert(keys[2]));
    ASSERT_TRUE(db.DB_Del_CVWert(keys[1]));
    Person(db).write(1, 900, 77);
    ASSERT_EQ(history.undo().outcome, Outcome::done);
    ASSERT_EQ(steps.undo().outcome, Outcome::done) << "the place is free";
    const Content met = content(disk);
    EXPECT_EQ(history.undo().outcome, Outcome::changed_elsewhere);
    expect_content(met);
}

/// CVs, scripts and states of sets and scripts that are gone.
TEST_F(Foreign_Rules, orphans_that_are_deleted_come_back) {
    constexpr std::int32_t gone = 3;
    const auto plant = [](jet::Database& file) { // where relations forbid them
        const jet::Origin orphan = jet::Origin::orphan;
        for (const std::int32_t number : {1, 2})
            file.table(u"CVs")->insert(std::array<jet::Cell, 2>{{{1, gone}, {4, number}}}, orphan);
        file.table(u"Scripte")->insert(std::array<jet::Cell, 1>{{{1, gone}}}, orphan);
    };
    const auto lose_script = [](jet::Database& file, std::int32_t id) {
        auto row = file.table(u"Scripte")->find({{0, id}});
        ASSERT_TRUE(row.next());
        const jet::Row_Place place = row.id();
        file.table(u"Scripte")->erase(place);
    };
    struct Deletion {
        const char* what;
        std::function<bool(Person&)> run;
        bool forbidden = true; ///< that there are such rows
    };
    const Deletion deletions[] = {
        {"a CV", [](Person& person) { return person.delete_cvs(gone, 1); }},
        {"CVs and scripts", [&](Person&) { return db.DB_Del_CVSet(gone); }},
        {"a script", [](Person& person) { return person.delete_script(gone, 1); }},
        {"states",
         [&](Person& person) {
             person.load_scripts(2);
             in_file(
                 [&](jet::Database& file) { lose_script(file, AktScripts().Item(1)->ScriptID); });
             before = content(disk);
             return db.DB_Delete_Script(1);
         },
         false}};
    for (const Deletion& deletion : deletions)
        for (const std::string sample : {"orphans", "library_2003"}) {
            SCOPED_TRACE(deletion.what + (" in " + sample));
            const bool forbidden = sample == "library_2003";
            if (forbidden && !deletion.forbidden) continue;
            open_listed(sample);
            if (forbidden) {
                db.DB_Del_CVSet(gone);
                in_file(plant);
            }
            before = content(disk);
            Person person(db);
            ASSERT_TRUE(deletion.run(person)) << shown();
            expect_back_and_forth();
            if (!deletion.forbidden) continue;
            in_file([&](jet::Database& file) { // somebody else's: they are not of it
                file.table(u"Sets")->insert({{0, gone}});
            });
            EXPECT_EQ(history.undo().outcome, Outcome::changed_elsewhere);
        }
}

} // namespace
