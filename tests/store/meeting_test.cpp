// Two copies of the program, the one acting just before each lock that the other takes.

#include "store/undo_library.h"
#include "support/crash_sweep.h"
#include "support/interrupted_disk.h"

using namespace store;
using namespace Qt::Literals::StringLiterals;
using scripts::AktScripts;

namespace {

struct Deed {
    const char* what;
    std::function<bool(clsDBConn&)> run;
};

bool write(clsDBConn& db, int count, int value) {
    db.AktCVSetID(3);
    Operation all(db);
    for (int i = 0; i < count; ++i)
        if (!library::write(db, library::cv(900 + i, value))) return false;
    return all.keep();
}

bool delete_cvs(clsDBConn& db) {
    const auto cvs = library::cvs(db, 3);
    Operation all(db);
    for (std::size_t i = 0; i < 4 && i < cvs.size(); ++i)
        if (!db.DB_Del_CVWert(cvs[i].second)) return false;
    return all.keep();
}

bool with_first_script(clsDBConn& db, const std::function<bool()>& work) {
    db.AktCVSetID(3);
    db.DB_Load_Scripts();
    if (AktScripts().Count() == 0) return true; // its set is gone
    AktScripts().Item(1)->StateCount = 7;
    return work();
}

bool add_set(clsDBConn& db) {
    std::int16_t number = 0;
    return db.DB_Add_CVSet(u"neu"_s, number, 8) != 0;
}

std::vector<Deed> own_deeds() {
    return {{"write many", [](clsDBConn& db) { return write(db, 10, 5); }},
            {"delete the set", [](clsDBConn& db) { return db.DB_Del_CVSet(3); }},
            {"list", [](clsDBConn& db) { return !library::sets(db, 8).empty(); }},
            {"save a script",
             [](clsDBConn& db) {
                 return with_first_script(db, [&] { return db.DB_Save_Script_States(1); });
             }},
            {"delete a script",
             [](clsDBConn& db) {
                 return with_first_script(db, [&] { return db.DB_Delete_Script(1); });
             }},
            {"add a set", add_set},
            {"delete CVs", delete_cvs},
            {"take back", [](clsDBConn& db) {
                 Undo_History history(db);
                 const bool deleted = delete_cvs(db);
                 history.undo();
                 return deleted;
             }}};
}

std::vector<Deed> others_deeds() { // none with AktScripts, of which each program has its own
    return {{"write", [](clsDBConn& db) { return write(db, 1, 9); }},
            {"delete the set", [](clsDBConn& db) { return db.DB_Del_CVSet(3); }},
            {"add a set", add_set},
            {"list", [](clsDBConn& db) { return !library::sets(db, 265).empty(); }},
            {"delete CVs", delete_cvs}};
}

/// Each does what it was asked for or says why not; afterwards both see the same sound library.
/// @return whether the other one has come to act
bool meet(const std::string& sample, const Deed& own, const Deed& others, int nth) {
    support::Interrupted_Disk disk;
    library::put(disk, sample, "a.mdb");
    clsDBConn one(disk);
    clsDBConn other(disk);
    one.Connection_Start(u"a.mdb"_s);
    other.Connection_Start(u"a.mdb"_s);
    bool others_done = false;
    disk.due = nth;
    disk.action = [&] { others_done = others.run(other); };
    const bool own_done = own.run(one);
    const bool met = !std::exchange(disk.action, nullptr);
    EXPECT_TRUE(own_done || one.last_trouble());
    EXPECT_TRUE(others_done || other.last_trouble() || !met);
    EXPECT_EQ(library::sets(one, 8), library::sets(other, 8));
    EXPECT_EQ(library::cvs(one, 3), library::cvs(other, 3));
    EXPECT_EQ(library::faults(disk, "a.mdb"), std::vector<std::string>());
    return met;
}

TEST(Meeting, two_copies_never_spoil_each_others_work) {
    if (library::names().empty()) GTEST_SKIP() << "no samples";
    int meetings = 0;
    int pair = 0;
    for (const char* const sample : {"partly_numbered", "library_2000"})
        for (const Deed& own : own_deeds())
            for (const Deed& others : others_deeds()) {
                if (++pair % 7 != 0 && !support::long_tests()) continue;
                for (int nth = 1, met = 1; met != 0 && !testing::Test::HasFailure(); ++nth) {
                    SCOPED_TRACE(std::string(sample) + ": " + own.what + ", before lock " +
                                 std::to_string(nth) + " somebody else: " + others.what);
                    met = meet(sample, own, others, nth);
                    meetings += met;
                }
            }
    AktScripts().Clear();
    EXPECT_GT(meetings, 50);
}

} // namespace
