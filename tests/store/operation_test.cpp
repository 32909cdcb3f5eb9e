// One operation: one transaction on disk, one change record.

#include "platform/files/faulty_disk.h"
#include "store/library.h"

#include <gmock/gmock.h>

using namespace store;
using namespace Qt::Literals::StringLiterals;
using testing::ElementsAre;

namespace {

/// How many rows each record tells of.
struct Recorder : Change_Listener {
    explicit Recorder(clsDBConn& db) : db_(db) { db_.listen(*this); }
    ~Recorder() override { db_.unlisten(*this); }
    void changed(const Change_Record& record) override { rows.push_back(record.rows.size()); }
    clsDBConn& db_;
    std::vector<std::size_t> rows;
};

class Operations : public On_Library {
protected:
    bool write(int number, int value) { return library::write(db, library::cv(number, value)); }
    int value(int number) { return library::value(db, number); }
};

TEST_F(Operations, several_become_one) {
    open("library_2000");
    Recorder recorder(db);
    db.AktCVSetID(1);
    {
        Operation outer(db);
        EXPECT_TRUE(write(900, 1));
        {
            Operation inner(db);
            EXPECT_TRUE(write(901, 2));
            EXPECT_TRUE(inner.keep());
        }
        EXPECT_EQ(value(901), 2) << "seen inside";
        EXPECT_THAT(recorder.rows, ElementsAre()) << "but not told yet";
        EXPECT_TRUE(outer.keep());
    }
    EXPECT_EQ(value(900), 1);
    EXPECT_TRUE(Operation(db).keep());
    EXPECT_TRUE(write(900, 1));
    EXPECT_THAT(recorder.rows, ElementsAre(2)) << "an empty one and the same value tell nothing";
}

TEST_F(Operations, what_is_not_kept_is_rolled_back) {
    open("library_2000");
    Recorder recorder(db);
    db.AktCVSetID(1);
    const auto before = library::cvs(db, 1);
    {
        Operation outer(db);
        EXPECT_TRUE(write(900, 1));
        { const Operation inner(db); } // not kept: the whole goes
        EXPECT_FALSE(write(901, 1)) << "nothing more is done in what is lost";
        EXPECT_FALSE(outer.keep());
    }
    EXPECT_EQ(library::cvs(db, 1), before);
    EXPECT_THAT(recorder.rows, ElementsAre());
    EXPECT_TRUE(write(902, 1)) << "the next operation is a new one";
}

TEST_F(Operations, the_library_may_be_read_whole_in_the_middle) {
    open("worn_library");
    Operation outer(db);
    cls_Sets_Coll sets;
    for (const auto& [text, set] : library::sets(db, 8)) {
        db.Fill_Sets_in_SetObj(sets);
        db.AktCVSetID(set);
        EXPECT_TRUE(write(900, 1));
        EXPECT_TRUE(write(900, 2));
        EXPECT_EQ(value(900), 2);
        if (set % 3 == 0) {
            EXPECT_TRUE(db.DB_Del_CVSet(set));
        }
    }
    EXPECT_TRUE(outer.keep());
    EXPECT_EQ(library::trouble(db), "");
}

TEST_F(Operations, a_refusal_inside_ends_only_the_refused_one) {
    open("library_2003"); // values are 16 bits, names 50 characters
    db.AktCVSetID(1);
    Operation outer(db);
    EXPECT_TRUE(write(900, 1));
    EXPECT_FALSE(db.DB_Rename_CVSet(QString(60, u'x'), 0));
    EXPECT_EQ(library::trouble(db), "refused");
    EXPECT_TRUE(write(901, 2));
    EXPECT_TRUE(outer.keep());
    reopen();
    db.AktCVSetID(1);
    EXPECT_EQ(value(900), 1);
    EXPECT_EQ(value(901), 2);
}

/// Refuses the n-th call of the disk, n = 1, 2, 3 ... until the operation gets through: each time
/// the library afterwards is the one before or the one after, and nothing is half there.
TEST_F(Operations, a_failing_disk_changes_nothing_or_everything) {
    const auto content = [](clsDBConn& connection) {
        std::vector<library::Shown> all;
        for (const int set : {1, 2, 3}) all.push_back(library::cvs(connection, set));
        all.push_back(library::sets(connection, 8));
        return all;
    };
    const auto work = [](clsDBConn& connection) {
        Operation all(connection);
        connection.DB_Del_CVSet(3);
        connection.AktCVSetID(1);
        for (int number = 900; number < 940; ++number)
            library::write(connection, library::cv(number, 5));
        connection.DB_Rename_CVSet(u"anders"_s, 77);
        return all.keep();
    };
    std::vector<library::Shown> old_content, new_content;
    {
        library::put(disk, "library_2000", "a.mdb");
        db.Connection_Start(u"a.mdb"_s);
        old_content = content(db);
        ASSERT_TRUE(work(db));
        new_content = content(db);
        db.Connection_Close();
    }
    bool finished = false;
    for (int nth = 1; !finished; ++nth) {
        ASSERT_LT(nth, 5000);
        SCOPED_TRACE(nth);
        files::Memory_Disk below;
        library::put(below, "library_2000", "a.mdb");
        files::Faulty_Disk faulty(below);
        {
            clsDBConn connection(faulty);
            connection.Connection_Start(u"a.mdb"_s);
            ASSERT_TRUE(connection.Connection_Active());
            files::Faulty_Disk::Fault fault;
            fault.nth = nth;
            fault.kind = files::Failure::disk_full;
            faulty.set_fault(fault);
            const bool kept = work(connection);
            finished = !faulty.struck();
            ASSERT_EQ(finished || kept, kept) << "got through without a fault, yet was not kept";
            if (!kept) {
                EXPECT_NE(library::trouble(connection), "");
            }
            faulty.clear_fault();
            if (connection.Connection_Active()) {
                ASSERT_TRUE(content(connection) == (kept ? new_content : old_content));
            }
        }
        clsDBConn fresh(below);
        fresh.Connection_Start(u"a.mdb"_s);
        ASSERT_TRUE(fresh.Connection_Active());
        const auto found = content(fresh);
        ASSERT_TRUE(found == new_content || (!finished && found == old_content));
    }
}

} // namespace
