// Numbers and reset CVs that are missing: shown by one rule, stored where that is possible.

#include "store/library.h"

#include <map>

using namespace store;
using namespace Qt::Literals::StringLiterals;

namespace {

using Numbers = std::map<int, int>; // by SetID

// What each view shows of partly_numbered.mdb: the running number continues from the row before in
// the same view, and may fall.
const Numbers shown_8{{1, 10},  {2, 11}, {3, 25}, {4, 26}, {5, 27},   {8, 12},   {11, 13}, {12, 25},
                      {13, 26}, {14, 0}, {15, 1}, {17, 2}, {20, 300}, {21, 301}, {24, 302}};
const Numbers shown_265{{6, 3}, {7, 4}, {9, 5}, {10, 40}, {16, 7}, {18, 255}, {19, 256}};
const Numbers shown_99{{22, 5}, {23, 6}};
// What counting over all rows gives before anything is stored.
const Numbers over_all{{1, 10},   {2, 11},   {3, 25},   {4, 26},  {5, 27},  {6, 3},
                       {7, 4},    {8, 12},   {9, 13},   {10, 40}, {11, 41}, {12, 25},
                       {13, 26},  {14, 0},   {15, 1},   {16, 7},  {17, 8},  {18, 255},
                       {19, 256}, {20, 300}, {21, 301}, {22, 5},  {23, 6},  {24, 7}};

Numbers numbers_shown(clsDBConn& db, std::int16_t view) {
    Numbers numbers;
    for (const auto& [text, id] : library::sets(db, view)) numbers[id] = std::stoi(text);
    return numbers;
}

Numbers numbers_in_model(clsDBConn& db) {
    cls_Sets_Coll sets;
    db.Fill_Sets_in_SetObj(sets);
    Numbers numbers;
    for (const auto& set : sets) numbers[set->SetID] = set->Nummer;
    return numbers;
}

Numbers all_shown() {
    Numbers all = shown_8;
    all.insert(shown_265.begin(), shown_265.end());
    all.insert(shown_99.begin(), shown_99.end());
    return all;
}

class Listing : public On_Library {};

TEST_F(Listing, reads_complete_numbers_over_all_rows_and_store_nothing) {
    open("partly_numbered");
    const auto before = disk.bytes("a.mdb");
    Numbers counted;
    for (const auto& [id, number] : over_all) {
        counted[id] = db.Get_Set_Nummer(id);
        EXPECT_EQ(db.AktCVSetID(), id);
    }
    EXPECT_EQ(counted, over_all);
    EXPECT_EQ(numbers_in_model(db), over_all);
    EXPECT_EQ(db.Get_Set_Nummer2(1), 0);
    EXPECT_EQ(db.Get_Set_Nummer2(3), 25);
    EXPECT_EQ(db.Get_Set_Nummer(999), 0);
    EXPECT_EQ(db.AktCVSetID(), 999);
    EXPECT_EQ(db.reset_cv(1), 8);
    EXPECT_EQ(db.reset_cv(22), 99);
    EXPECT_EQ(db.reset_cv(999), 0);
    EXPECT_EQ(disk.bytes("a.mdb"), before);
}

TEST_F(Listing, a_protected_library_is_completed_in_memory) {
    open("partly_numbered", true);
    const auto before = disk.bytes("a.mdb");
    EXPECT_FALSE(db.writable());
    EXPECT_EQ(db.opening().blocked, Blocked::write_protected);
    EXPECT_EQ(numbers_shown(db, 265), shown_265);
    EXPECT_EQ(db.sets_completed_in_memory(), 9) << "three numbers, six reset CVs";
    EXPECT_EQ(numbers_shown(db, 8), shown_8);
    EXPECT_EQ(numbers_shown(db, 99), shown_99);
    EXPECT_EQ(db.sets_in_no_view(), 2);
    EXPECT_EQ(numbers_shown(db, 8), shown_8) << "what was completed stays";
    EXPECT_EQ(numbers_in_model(db), all_shown());
    EXPECT_EQ(db.Get_Set_Nummer(7), 4);
    EXPECT_EQ(db.Get_Set_Nummer2(7), 4);
    EXPECT_EQ(db.DB_Get_Free_SetNr(8), 303);
    EXPECT_EQ(library::trouble(db), "");
    std::int16_t number = 0;
    EXPECT_EQ(db.DB_Add_CVSet(u"neu"_s, number, 8), 0);
    EXPECT_EQ(library::trouble(db), "read_only");
    EXPECT_EQ(disk.bytes("a.mdb"), before);
    reopen();
    EXPECT_EQ(db.Get_Set_Nummer2(7), 0) << "and goes with the library";
}

TEST_F(Listing, stores_what_it_shows) {
    open("partly_numbered");
    EXPECT_EQ(numbers_shown(db, 265), shown_265);
    EXPECT_EQ(db.sets_completed_in_memory(), 0);
    reopen();
    EXPECT_EQ(db.Get_Set_Nummer2(7), 4);
    EXPECT_EQ(db.Get_Set_Nummer2(1), 0) << "its reset CV is stored, its number not yet";
    EXPECT_EQ(numbers_shown(db, 8), shown_8);
    EXPECT_EQ(numbers_shown(db, 99), shown_99);
    reopen();
    EXPECT_EQ(numbers_in_model(db), all_shown());
    const auto before = disk.bytes("a.mdb");
    EXPECT_EQ(numbers_shown(db, 8), shown_8);
    EXPECT_EQ(disk.bytes("a.mdb"), before) << "nothing was missing any more";
    EXPECT_EQ(library::trouble(db), "");
}

TEST_F(Listing, a_closed_connection_answers_with_nothing) {
    library::Shown_List list;
    list.add(u"old"_s, 1);
    db.Fill_Sets_in_Listbox(list, 8);
    EXPECT_EQ(list.entries.size(), 1U) << "left alone";
    EXPECT_EQ(db.Fill_CVs_in_Listbox(list, 3), 0);
    EXPECT_EQ(db.AktCVSetID(), 0);
    EXPECT_EQ(db.Get_Set_Name(3), QString());
    EXPECT_EQ(db.Get_Set_Nummer(3), 0);
    EXPECT_EQ(db.Get_Anz_CVSets(), 0);
    EXPECT_EQ(db.DB_Get_Free_SetNr(8), 0);
    EXPECT_EQ(db.DB_Open_CVs(3), 0);
    EXPECT_EQ(db.DB_Next_CV(), CVRec());
    EXPECT_EQ(db.set_name_width(), 0);
    EXPECT_EQ(library::trouble(db), "");
    CVRec rec{.CVPageHi = 3, .CVPageLo = 7, .CVNr = 29};
    EXPECT_FALSE(db.DB_Find_CV(rec));
    EXPECT_FALSE(db.DB_Write_CV(rec));
    EXPECT_EQ(rec.CVPageHi, 3);
    EXPECT_EQ(library::trouble(db), "");
    EXPECT_FALSE(db.DB_Del_CVSet(3));
    EXPECT_EQ(library::trouble(db), "not_open");
}

} // namespace
