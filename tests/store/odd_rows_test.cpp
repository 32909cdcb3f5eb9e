// Rows that other programs may have stored, and that fit no field of ours.

#include "platform/jet/database.h"
#include "scripts/cls_script_coll.h"
#include "store/library.h"
#include "support/temporary_folder.h"

#include <QFile>

using namespace store;
using namespace Qt::Literals::StringLiterals;

namespace {

using Cells = std::vector<std::pair<const char16_t*, std::optional<std::int32_t>>>;

class Odd_Rows : public On_Library {
protected:
    /// Adds rows behind the back of the connection, which is opened afterwards.
    void put(const char16_t* table, const std::vector<Cells>& rows) {
        auto database = jet::Database::open(disk, "a.mdb", jet::Mode::read_write);
        const jet::Table stored = database.table(table).value();
        for (const Cells& row : rows) {
            std::vector<jet::Cell> cells;
            for (const auto& [name, number] : row)
                cells.push_back({stored.column(name).value(),
                                 number ? jet::Value(*number) : jet::Value(jet::Null{})});
            stored.insert(cells);
        }
    }
    void start() {
        if (library::names().empty()) GTEST_SKIP() << "no samples";
        open("library_2000");
        db.Connection_Close();
    }
};

TEST_F(Odd_Rows, cvs_are_listed_as_they_stand_and_left_out_of_the_model) {
    start();
    put(u"Sets", {{{u"ResCV", 8}, {u"Nummer", 70000}}, {{u"ResCV", 70000}, {u"Nummer", 3}}});
    const std::int32_t set = 46; // autonumber
    put(u"CVs",
        {
            {{u"SetID", set}, {u"CVPageHi", 300}, {u"CVPageLo", 0}, {u"CVNr", 300}, {u"CVWert", 5}},
            {{u"SetID", set}, {u"CVPageHi", 0}, {u"CVPageLo", -1}, {u"CVNr", 300}, {u"CVWert", 5}},
            {{u"SetID", set}, {u"CVPageHi", 0}, {u"CVPageLo", 1}, {u"CVNr", 5}, {u"CVWert", 256}},
            {{u"SetID", set}, {u"CVPageHi", 0}, {u"CVPageLo", 1}, {u"CVNr", 40000}, {u"CVWert", 1}},
            {{u"SetID", set}, {u"CVPageHi", {}}, {u"CVPageLo", {}}, {u"CVNr", {}}, {u"CVWert", {}}},
        });
    db.Connection_Start(u"a.mdb"_s);
    EXPECT_EQ(library::sets(db, 8).back().first, "70000 - ");
    EXPECT_EQ(db.sets_in_no_view(), 1);
    EXPECT_EQ(db.Get_Set_Nummer(set), 32767) << "the nearest that fits";
    library::Shown_List list;
    EXPECT_EQ(db.Fill_CVs_in_Listbox(list, set), 5);
    EXPECT_EQ(list.texts(),
              (std::vector<std::string>{"CV#      0 = 0", "CV#  300 = 5", "CV#      5 = 256",
                                        "CV#40000 = 1", "Page 300:0 CV#  300 = 5"}));
    cls_Sets_Coll sets;
    db.Fill_Sets_in_SetObj(sets);
    EXPECT_EQ(sets.CVs_Left_Out, 4);
    EXPECT_EQ(sets.Item(u"46"_s)->CVs_Left_Out, 4);
    ASSERT_EQ(sets.Item(u"46"_s)->Count(), 1) << "nulls read as 0";
    EXPECT_EQ(sets.Item(u"46"_s)->Item(1)->PageNr, 0);
    EXPECT_EQ(sets.Item(u"46"_s)->Item(1)->Item(1)->CVNr, 0);
    db.DB_Open_CVs(set);
    EXPECT_EQ(db.DB_Next_CV().CVNr, 0);
    EXPECT_EQ(db.DB_Next_CV().CVPageLo, 0);
    EXPECT_EQ(db.DB_Next_CV().CVWert, 256);
    EXPECT_EQ(db.DB_Next_CV().CVNr, 32767);
    EXPECT_EQ(db.DB_Next_CV().CVPageHi, 255);
    EXPECT_TRUE(db.DB_Del_CVSet(set));
    EXPECT_EQ(library::trouble(db), "");
}

TEST_F(Odd_Rows, states_outside_0_to_255_are_left_out_and_counted) {
    start();
    const auto state = [](std::int32_t number) {
        return Cells{{u"ScriptID", 1}, {u"State", number}, {u"Command", 2}, {u"Par1", {}}};
    };
    put(u"Scriptstates", {state(-1), state(256), state(200), state(70000)});
    db.Connection_Start(u"a.mdb"_s);
    std::int32_t set = 0;
    for (const QJsonObject& row : library::expected_rows("library_2000", u"Scripte"_s))
        if (row[u"ScriptID"_s].toInt() == 1) set = row[u"SetID"_s].toInt();
    db.AktCVSetID(set);
    db.DB_Load_Scripts();
    EXPECT_EQ(scripts::AktScripts().States_Left_Out(), 3);
    ASSERT_GE(scripts::AktScripts().Count(), 1);
    EXPECT_EQ(db.script_name(1), scripts::AktScripts().Item(1)->ScriptName);
    EXPECT_FALSE(db.script_name(1).isEmpty());
    EXPECT_EQ(scripts::AktScripts().Item(1)->StateCount, 201);
    EXPECT_EQ(scripts::AktScripts().Item(1)->GetState(200).GetCommand(), 2);
    EXPECT_EQ(scripts::AktScripts().Item(1)->GetState(200).GetPar(0), 0);
    ASSERT_TRUE(db.DB_Save_Script_States(1));
    db.DB_Load_Scripts();
    EXPECT_EQ(scripts::AktScripts().States_Left_Out(), 3) << "they are nobody's lines";
    EXPECT_EQ(scripts::AktScripts().Item(1)->StateCount, 201);
    scripts::AktScripts().Clear();
}

TEST(A_Library, that_was_cut_off_is_never_written_to) {
    if (library::names().empty()) GTEST_SKIP() << "no samples";
    constexpr std::size_t page = 4096;
    files::Memory_Disk whole;
    library::put(whole, "library_2000", "a.mdb");
    const auto bytes = whole.bytes("a.mdb");
    for (std::size_t pages = 1; pages < bytes.size() / page; ++pages) {
        SCOPED_TRACE(pages);
        files::Memory_Disk disk;
        const auto cut = bytes.begin() + static_cast<std::ptrdiff_t>(pages * page);
        disk.set_bytes("a.mdb", {bytes.begin(), cut});
        clsDBConn db(disk);
        db.Connection_Start(u"a.mdb"_s);
        if (db.Connection_Active()) {
            EXPECT_EQ(db.opening().blocked, Blocked::cut_off) << "before the first change";
        }
        std::int16_t number = 0;
        EXPECT_EQ(db.DB_Add_CVSet(u"Neu"_s, number, 8), 0);
        db.AktCVSetID(1);
        EXPECT_FALSE(library::write(db, library::cv(1, 99)));
        db.Connection_Close();
        EXPECT_TRUE(std::equal(bytes.begin(), cut, disk.bytes("a.mdb").begin()));
        EXPECT_EQ(disk.bytes("a.mdb").size(), pages * page);
    }
}

TEST(The_Connection, of_the_program_tells_the_value_that_scripts_show) {
    if (library::names().empty()) GTEST_SKIP() << "no samples";
    const support::Temporary_Folder folder;
    const QString file = QString::fromStdString(folder / "a.mdb");
    QFile::copy(QStringLiteral(CV_SETS_SAMPLES "/library_2000.mdb"), file);
    DBConn().Connection_Start(file);
    DBConn().AktCVSetID(1);
    EXPECT_EQ(Get_CV_Wert(DBConn(), 1), 2);
    EXPECT_EQ(Get_CV_Wert(DBConn(), 1000), 0);
    DBConn().Connection_Close();
    EXPECT_EQ(Get_CV_Wert(DBConn(), 1), 0);
}

} // namespace
