// Two copies of the program on one library.

#include "store/library.h"

using namespace store;
using namespace Qt::Literals::StringLiterals;

namespace {

class Sharing : public On_Library {
protected:
    void open_both(const std::string& sample) {
        open(sample);
        other.Connection_Start(u"a.mdb"_s);
        ASSERT_TRUE(other.Connection_Active());
    }
    static bool write(clsDBConn& connection, int number, int value) {
        connection.AktCVSetID(1);
        return library::write(connection, library::cv(number, value));
    }
    static int value(clsDBConn& connection, int number) {
        connection.AktCVSetID(1);
        return library::value(connection, number);
    }
    clsDBConn other{disk};
};

TEST_F(Sharing, no_cv_goes_into_a_set_that_the_other_has_deleted) {
    open_both("orphans");
    std::int16_t number = 0;
    const std::int32_t set = other.DB_Add_CVSet(u"kurz"_s, number, 8);
    db.AktCVSetID(set);
    CVRec cv{0, 1, 3, 7, 0, false};
    ASSERT_TRUE(db.DB_Write_CV(cv));
    ASSERT_TRUE(other.DB_Del_CVSet(set));
    EXPECT_FALSE(db.DB_Write_CV(cv));
    EXPECT_EQ(db.last_trouble()->kind, Failure::gone);
    EXPECT_TRUE(library::cvs(db, set).empty());
}

TEST_F(Sharing, while_one_changes_the_other_is_told_to_wait) {
    open_both("partly_numbered");
    {
        Operation long_one(other);
        ASSERT_TRUE(write(other, 900, 1));
        EXPECT_FALSE(write(db, 900, 2));
        EXPECT_EQ(library::trouble(db), "locked_elsewhere");
        EXPECT_TRUE(long_one.keep());
    }
    EXPECT_EQ(value(db, 900), 1);
    EXPECT_TRUE(write(db, 900, 2));
    EXPECT_EQ(value(other, 900), 2);
}

TEST_F(Sharing, a_replaced_library_is_closed_and_not_written_to) {
    open("library_2000");
    disk.remove("a.mdb");
    library::put(disk, "library_2003", "a.mdb");
    const auto replaced = disk.bytes("a.mdb");
    EXPECT_FALSE(write(db, 900, 1));
    EXPECT_EQ(library::trouble(db), "replaced");
    EXPECT_FALSE(db.Connection_Active());
    EXPECT_EQ(db.AktCVSetID(), 0);
    EXPECT_EQ(disk.bytes("a.mdb"), replaced);
    db.Connection_Start(u"a.mdb"_s);
    EXPECT_TRUE(write(db, 900, 1)) << "the new one is a library like any other";
}

/// Somebody else puts another library in the place while an operation is open.
TEST_F(Sharing, a_library_replaced_in_the_middle_of_an_operation_is_left_alone) {
    struct Told : Change_Listener {
        void changed(const Change_Record&) override { ++changes; }
        void library_left() override { ++left; }
        int changes = 0;
        int left = 0;
    };
    for (const bool read_in_between : {false, true}) {
        SCOPED_TRACE(read_in_between);
        open("library_2000");
        Told told;
        db.listen(told);
        {
            Operation outer(db);
            ASSERT_TRUE(write(db, 900, 1));
            disk.remove("a.mdb");
            library::put(disk, "library_2003", "a.mdb");
            if (read_in_between) {
                EXPECT_EQ(value(db, 900), 1) << "the file that is open is still there";
            }
            EXPECT_TRUE(write(db, 901, 1));
            Operation inner(db);
            EXPECT_TRUE(write(db, 902, 1));
            EXPECT_TRUE(inner.keep());
            EXPECT_TRUE(db.Connection_Active()) << "closing waits for the end";
            EXPECT_FALSE(outer.keep());
        }
        EXPECT_EQ(library::trouble(db), "replaced");
        EXPECT_FALSE(db.Connection_Active());
        EXPECT_EQ(told.changes, 0);
        EXPECT_EQ(told.left, 1);
        EXPECT_FALSE(write(db, 900, 1));
        EXPECT_EQ(library::trouble(db), "not_open");
        reopen();
        EXPECT_EQ(value(db, 900), -1) << "nothing came into the other library";
        EXPECT_TRUE(write(db, 900, 1));
        EXPECT_EQ(library::faults(disk, "a.mdb"), std::vector<std::string>());
        db.unlisten(told);
        db.Connection_Close();
    }
}

TEST_F(Sharing, a_library_closed_inside_an_operation_keeps_nothing_of_it) {
    for (const bool opened_again : {false, true}) {
        open("library_2000");
        const auto before = disk.bytes("a.mdb");
        {
            Operation outer(db);
            ASSERT_TRUE(write(db, 900, 1));
            {
                Operation inner(db);
                ASSERT_TRUE(write(db, 901, 1));
                opened_again ? reopen() : db.Connection_Close();
                EXPECT_FALSE(inner.keep());
            }
            EXPECT_FALSE(write(db, 902, 1));
            EXPECT_FALSE(outer.keep());
        }
        EXPECT_EQ(disk.bytes("a.mdb"), before);
        other.Connection_Start(u"a.mdb"_s);
        EXPECT_TRUE(write(other, 900, 1)) << "and no lock stays";
        EXPECT_EQ(write(db, 900, 1), opened_again);
        other.Connection_Close();
        db.Connection_Close();
    }
}

} // namespace
