#include "store/pasting.h"
#include "store/undo_library.h"

#include <gmock/gmock.h>

using namespace store;

namespace {

/// Two sets, one with a name that is too long, and CVs before and in them.
Pasted much() {
    Pasted pasted;
    const auto cv = [&](int number) {
        pasted.objects.emplace_back(CVRec{0, 1, static_cast<std::int16_t>(number), 7, 0, false});
    };
    cv(1);
    pasted.objects.emplace_back(Pasted_Set{QStringLiteral("Eins, zwei"), 0});
    for (int number = 1; number <= 60; ++number) cv(number);
    pasted.objects.emplace_back(Pasted_Set{QString(300, u'z'), 12});
    cv(8);
    return pasted;
}

} // namespace

class Pasting : public testing::Test {
protected:
    void SetUp() override {
        if (library::names().empty()) GTEST_SKIP();
        library::put(disk, "orphans", "a.mdb");
        clsDBConn(disk).Connection_Start(
            QStringLiteral("a.mdb")); // with all its tables from now on
    }
    files::Memory_Disk disk;
};

TEST_F(Pasting, is_one_operation_and_one_step) {
    clsDBConn db(disk);
    db.Connection_Start(QStringLiteral("a.mdb"));
    Undo_History history(db);
    const auto before = undo::content(disk);
    const Paste_Report report = paste(db, much(), 8);
    EXPECT_TRUE(report.kept);
    EXPECT_EQ(report.sets, 2);
    EXPECT_EQ(report.cvs, 61);
    EXPECT_EQ(report.cvs_without_set, 1);
    EXPECT_EQ(report.names_cut, 1);
    EXPECT_EQ(db.AktCVSetID(), report.last_set);
    EXPECT_EQ(history.undo().outcome, Undo_Result::Outcome::done);
    EXPECT_EQ(undo::difference(undo::content(disk), before), "");
    EXPECT_FALSE(history.undo_name());
}

TEST_F(Pasting, keeps_what_came_before_a_name_that_no_row_can_hold) {
    clsDBConn db(disk);
    db.Connection_Start(QStringLiteral("a.mdb"));
    const auto set = [](const QString& name) { return Pasted_Set{name, 0}; };
    const CVRec cv{0, 1, 1, 7, 0, false};
    const Paste_Report report = paste(
        db,
        {{set(u"\uFEFFEins"_qs), cv, set(QStringLiteral("Zwei")), cv, set(u"\uFEFF\u0100"_qs), cv}},
        8);
    EXPECT_TRUE(report.kept);
    EXPECT_EQ(report.sets, 2);
    EXPECT_EQ(report.cvs, 2);
    EXPECT_EQ(library::trouble(db), "refused");
    EXPECT_EQ(library::cvs(db, report.last_set).size(), 1U);
    EXPECT_EQ(db.Get_Set_Name(report.last_set - 1), u"\uFEFFEins"_qs);
    EXPECT_EQ(library::faults(disk, "a.mdb"), std::vector<std::string>());
}

TEST_F(Pasting, happens_whole_or_not_at_all) {
    const auto before = undo::content(disk);
    files::Memory_Disk changed = disk.copy();
    {
        clsDBConn db(changed);
        db.Connection_Start(QStringLiteral("a.mdb"));
        ASSERT_TRUE(paste(db, much(), 8).kept);
    }
    const auto act = [](files::Disk& on) {
        clsDBConn db(on);
        db.Connection_Start(QStringLiteral("a.mdb"));
        if (!paste(db, much(), 8).kept) throw std::runtime_error("not pasted");
    };
    const auto whole = undo::whole_or_not(before, undo::content(changed));
    EXPECT_GT(support::sweep_refusals(disk, act, whole), 20);
    EXPECT_GT(support::sweep_crashes(disk, act, whole), 20);
}
