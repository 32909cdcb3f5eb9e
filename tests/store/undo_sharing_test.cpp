// Taking back what another running copy of the program has to do with, too.

#include "store/undo_library.h"

using namespace store;
using namespace Qt::Literals::StringLiterals;
using undo::Content;
using undo::content;
using undo::Person;
using Outcome = Undo_Result::Outcome;

namespace {

using Undo_Shared = On_Undo;

TEST_F(Undo_Shared, nothing_is_taken_back_in_a_library_that_others_hold) {
    open_listed("library_2000");
    Person person(db);
    person.write(1, 900, 1);
    const Content after = content(disk);
    clsDBConn other(disk);
    other.Connection_Start(u"a.mdb"_s);
    {
        const Operation held(other);
        EXPECT_EQ(history.undo().outcome, Outcome::failed);
        EXPECT_EQ(library::trouble(db), "locked_elsewhere");
    }
    expect_content(after);
    EXPECT_EQ(history.undo().outcome, Outcome::done) << "once it is free";
}

TEST_F(Undo_Shared, a_replaced_library_is_left_alone) {
    open_listed("library_2000");
    Person person(db);
    person.write(1, 900, 1);
    disk.remove("a.mdb");
    library::put(disk, "library_2003", "a.mdb");
    const auto replaced = disk.bytes("a.mdb");
    EXPECT_EQ(history.undo().outcome, Outcome::failed);
    EXPECT_EQ(library::trouble(db), "replaced");
    EXPECT_EQ(disk.bytes("a.mdb"), replaced);
    EXPECT_FALSE(history.undo_name());
}

struct Meeting {
    std::string what;
    std::function<void(Person&)> own;
    std::function<void(Person&, clsDBConn&)> others;
    Outcome outcome = Outcome::changed_elsewhere;
    bool redo = false; ///< the other one acts between undo and redo
};

std::vector<Meeting> meetings() {
    const auto key_of = [](clsDBConn& db, int number) {
        db.AktCVSetID(1);
        CVRec rec{0, 1, static_cast<std::int16_t>(number), 0, 0, false};
        EXPECT_TRUE(db.DB_Find_CV(rec));
        return rec.CVID;
    };
    return {
        {"nothing near", [](Person& p) { p.write(1, 900, 1); },
         [](Person& p, clsDBConn&) { p.write(1, 901, 1); }, Outcome::done},
        {"overwritten", [](Person& p) { p.write(1, 900, 1); },
         [](Person& p, clsDBConn&) { p.write(1, 900, 2); }},
        {"deleted", [](Person& p) { p.write(1, 900, 1); },
         [&](Person&, clsDBConn& db) { db.DB_Del_CVWert(key_of(db, 900)); }},
        {"only the last of several overwritten", [](Person& p) { p.write_many(1, 20, 1); },
         [](Person& p, clsDBConn&) { p.write(1, 513, 2); }},
        {"deleted here, written there", [](Person& p) { p.delete_cvs(1, 1); },
         [](Person& p, clsDBConn&) { p.write(1, 1, 77); }},
        {"a new set is filled there", [](Person& p) { p.add_set(u"neu"_s); },
         [](Person& p, clsDBConn& db) { p.write(library::sets(db, 8).back().second, 900, 1); }},
        {"a new set gets scripts there", [](Person& p) { p.add_set(u"neu"_s); },
         [](Person& p, clsDBConn& db) { p.add_script(library::sets(db, 8).back().second, 0); }},
        {"renamed here and there", [](Person& p) { p.rename(1, u"hier"_s); },
         [](Person& p, clsDBConn&) { p.rename(1, u"dort"_s); }},
        {"the set of deleted CVs is gone", [](Person& p) { p.delete_cvs(1, 3); },
         [](Person&, clsDBConn& db) { db.DB_Del_CVSet(1); }},
        {"lines saved here and there", [](Person& p) { p.save_script(3, 1, 4); },
         [](Person& p, clsDBConn&) { p.save_script(3, 1, 5); }},
        {"lines taken away here, written there", [](Person& p) { p.save_script(3, 1, 0); },
         [](Person& p, clsDBConn&) { p.save_script(3, 1, 5); }},
        {"the set of a deleted script is gone", [](Person& p) { p.delete_script(3, 1); },
         [](Person&, clsDBConn& db) { db.DB_Del_CVSet(3); }},
        {"written there before it is done again", [](Person& p) { p.write(1, 900, 1); },
         [](Person& p, clsDBConn&) { p.write(1, 900, 2); }, Outcome::changed_elsewhere, true},
        {"filled there before it is deleted again", [](Person& p) { p.delete_set(1); },
         [](Person& p, clsDBConn&) { p.write(1, 900, 2); }, Outcome::changed_elsewhere, true},
    };
}

TEST_F(Undo_Shared, a_step_that_others_have_touched_is_refused_and_ends_the_history) {
    for (const std::string sample : {"library_2000", "library_2003", "with cascades"})
        for (const Meeting& meeting : meetings()) {
            SCOPED_TRACE(sample + ", " + meeting.what);
            const bool cascades = sample == "with cascades";
            open_listed(cascades ? "library_2000" : sample);
            if (cascades)
                in_file([](jet::Database& file) {
                    jet::Relation relation{u"CVsMit", u"Sets", {u"SetID"}, u"CVs", {u"SetID"}};
                    relation.cascade_delete = true;
                    file.add_relation(relation);
                });
            clsDBConn other(disk);
            other.Connection_Start(u"a.mdb"_s);
            Person person(db);
            Person stranger(other);
            person.rename(5, u"davor"_s);
            meeting.own(person);
            if (meeting.redo) {
                ASSERT_EQ(history.undo().outcome, Outcome::done) << shown();
            }
            meeting.others(stranger, other);
            const Content met = content(disk);
            const Undo_Result result = meeting.redo ? history.redo() : history.undo();
            ASSERT_EQ(result.outcome, meeting.outcome) << shown();
            if (meeting.outcome == Outcome::done) continue;
            expect_content(met);
            EXPECT_NE(library::trouble(db), "");
            EXPECT_FALSE(history.undo_name() || history.redo_name());
            EXPECT_EQ(library::faults(disk, "a.mdb"), std::vector<std::string>());
        }
}

} // namespace
