// Changing sets and CVs.

#include "store/library.h"

#include <algorithm>

using namespace store;
using namespace Qt::Literals::StringLiterals;
using library::Shown;

namespace {

class Editing : public On_Library {
protected:
    /// Empties the library of its sets, so that a test knows all of its content.
    void open_empty(const std::string& sample = "library_2000") {
        open(sample);
        Operation all(db);
        cls_Sets_Coll sets;
        db.Fill_Sets_in_SetObj(sets);
        for (const auto& set : sets) ASSERT_TRUE(db.DB_Del_CVSet(set->SetID));
        ASSERT_TRUE(all.keep());
        ASSERT_EQ(db.Get_Anz_CVSets(), 0);
    }
    std::int32_t add(const QString& name, std::int16_t number = 0, std::int16_t res_cv = 8) {
        const std::int32_t id = db.DB_Add_CVSet(name, number, res_cv);
        EXPECT_NE(id, 0);
        return id;
    }
    bool write(int number, int value, int hi = 0, int lo = 1) {
        return library::write(db, library::cv(number, value, hi, lo));
    }
    std::vector<std::string> texts(std::int32_t set) {
        std::vector<std::string> texts;
        for (const auto& [text, id] : library::cvs(db, set)) texts.push_back(text);
        return texts;
    }
};

TEST_F(Editing, new_sets_get_the_next_free_number_of_their_reset_cv) {
    open_empty();
    const struct {
        std::int16_t given, res_cv, got;
    } cases[] = {{0, 265, 1}, {0, 8, 10}, {14, 8, 14}, {0, 8, 15},  {3, 8, 3},
                 {0, 8, 16},  {0, 99, 1}, {7, 265, 7}, {0, 265, 8}, {-5, 8, -5}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.got);
        std::int16_t number = c.given;
        const std::int32_t id = db.DB_Add_CVSet(u"Satz"_s, number, c.res_cv);
        EXPECT_EQ(number, c.got);
        EXPECT_EQ(db.Get_Set_Nummer2(id), c.got);
        EXPECT_EQ(db.reset_cv(id), c.res_cv);
    }
    EXPECT_EQ(db.DB_Get_Free_SetNr(8), 17);
    const auto shown = library::sets(db, 8);
    EXPECT_EQ(shown.back().first, "-5 - Satz") << "the newest is the last, whatever its number";
    EXPECT_EQ(library::trouble(db), "");
}

TEST_F(Editing, cvs_are_listed_by_page_and_number) {
    open_empty();
    const auto set = add(u"Lok"_s);
    db.AktCVSetID(set);
    for (const auto& [number, value, hi, lo] : {std::tuple{300, 12, 0, 5},
                                                {29, 6, 0, 1},
                                                {1024, 1, 0, 1},
                                                {1, 3, 0, 1},
                                                {257, 9, 0, 3},
                                                {258, 8, 1, 0},
                                                {300, 7, 0, 4},
                                                {1234, 0, 0, 1},
                                                {12345, 5, 0, 1}})
        EXPECT_TRUE(write(number, value, hi, lo));
    EXPECT_EQ(texts(set), (std::vector<std::string>{
                              "CV#      1 = 3", "CV#    29 = 6", "CV#1024 = 1", "CV#1234 = 0",
                              "CV#12345 = 5", "CV#  257 = 9", "Page 0:4 CV#  300 = 7",
                              "Page 0:5 CV#  300 = 12", "Page 1:0 CV#  258 = 8"}));
}

TEST_F(Editing, only_the_cvs_257_to_512_keep_the_page_they_were_given) {
    open_empty();
    const auto set = add(u"Lok"_s);
    const struct {
        std::int16_t number;
        bool paged;
    } cases[] = {{29, false},   {256, false},  {257, true}, {512, true}, {513, false},
                 {1024, false}, {1025, false}, {0, false},  {-1, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.number);
        db.AktCVSetID(set);
        CVRec rec{3, 7, c.number, 41, 0, false};
        ASSERT_TRUE(db.DB_Write_CV(rec));
        EXPECT_EQ(rec.CVPageHi, c.paged ? 3 : 0);
        EXPECT_EQ(rec.CVPageLo, c.paged ? 7 : 1);
        EXPECT_EQ(db.DB_Get_CV(rec.CVID).CVPageLo, rec.CVPageLo);
        CVRec sought{3, 7, c.number, -1, -1, false};
        EXPECT_EQ(db.DB_Find_CV(sought), c.paged) << "looking does not move the page";
        EXPECT_EQ(sought.CVPageHi, 3);
        EXPECT_EQ(sought.CVWert, c.paged ? 41 : -1);
        EXPECT_EQ(sought.CVID, c.paged ? rec.CVID : -1);
        CVRec again{3, 7, c.number, 42, 0, false};
        ASSERT_TRUE(db.DB_Write_CV(again));
        EXPECT_EQ(again.CVID, rec.CVID) << "the same row";
        EXPECT_EQ(db.DB_Get_CV(rec.CVID).CVWert, 42);
    }
    EXPECT_EQ(texts(set).size(), std::size(cases));
    cls_Sets_Coll sets;
    db.Fill_Sets_in_SetObj(sets);
    EXPECT_EQ(sets.CVs_Left_Out, 0);
}

TEST_F(Editing, values_of_the_current_set_are_read_on_page_0_1) {
    open_empty();
    const auto one = add(u"a"_s);
    const auto other = add(u"b"_s);
    db.AktCVSetID(one);
    write(980, 5);
    write(300, 6, 0, 2);
    EXPECT_EQ(library::value(db, 980), 5);
    EXPECT_EQ(library::value(db, 300), -1);
    db.AktCVSetID(other);
    EXPECT_EQ(library::value(db, 980), -1);
}

TEST_F(Editing, without_a_current_set_nothing_is_written) {
    open_empty();
    const auto before = disk.bytes("a.mdb");
    CVRec rec{3, 7, 29, 1, 0, false};
    EXPECT_FALSE(db.DB_Write_CV(rec));
    EXPECT_EQ(rec, (CVRec{3, 7, 29, 1, 0, false}));
    EXPECT_EQ(library::trouble(db), "no_set");
    EXPECT_FALSE(db.DB_Rename_CVSet(u"x"_s, 3));
    EXPECT_EQ(library::trouble(db), "no_set");
    EXPECT_EQ(disk.bytes("a.mdb"), before);
}

TEST_F(Editing, renaming_keeps_the_number_unless_one_is_given) {
    open_empty();
    const auto set = add(u"alt"_s, 20);
    db.AktCVSetID(set);
    const struct {
        const char16_t* name;
        std::int16_t number, expected;
    } cases[] = {{u"neu", 0, 20}, {u"neu", 7, 7}, {u"", -3, 7}, {u"Ä, \"ß\" '", 32767, 32767}};
    for (const auto& c : cases) {
        EXPECT_TRUE(db.DB_Rename_CVSet(QStringView(c.name).toString(), c.number));
        EXPECT_EQ(db.Get_Set_Name(0), QStringView(c.name));
        EXPECT_EQ(db.Get_Set_Nummer2(0), c.expected);
    }
    const int width = db.set_name_width();
    EXPECT_TRUE(db.DB_Rename_CVSet(QString(width, u'x'), 0));
    EXPECT_FALSE(db.DB_Rename_CVSet(QString(width + 1, u'y'), 9));
    EXPECT_EQ(library::trouble(db), "refused");
    std::int16_t number = 0;
    EXPECT_EQ(db.DB_Add_CVSet(QString(width + 1, u'y'), number, 8), 0);
    EXPECT_EQ(library::trouble(db), "refused");
    EXPECT_EQ(db.Get_Set_Name(0), QString(width, u'x'));
    EXPECT_EQ(db.Get_Set_Nummer2(0), 32767);
    db.AktCVSetID(set + 1);
    EXPECT_FALSE(db.DB_Rename_CVSet(u"z"_s, 1));
    EXPECT_EQ(library::trouble(db), "gone");
}

class Editing_Samples : public On_Library, public testing::WithParamInterface<std::string> {};

TEST_P(Editing_Samples, deleting_every_set_takes_what_hangs_on_it) {
    open(GetParam());
    cls_Sets_Coll sets;
    db.Fill_Sets_in_SetObj(sets);
    for (const auto& set : sets) {
        SCOPED_TRACE(set->SetID);
        db.AktCVSetID(set->SetID);
        EXPECT_TRUE(db.DB_Del_CVSet(set->SetID));
        EXPECT_EQ(library::trouble(db), "");
        EXPECT_EQ(db.AktCVSetID(), 0);
        EXPECT_EQ(db.DB_Count_Scripts(set->SetID), 0);
        EXPECT_EQ(db.DB_Open_CVs(set->SetID), 0);
    }
    reopen();
    EXPECT_EQ(db.Get_Anz_CVSets(), 0);
    if (GetParam() != "orphans") {
        EXPECT_EQ(library::faults(disk, "a.mdb"), std::vector<std::string>());
    }
}

TEST_P(Editing_Samples, a_new_set_is_the_last_even_where_space_is_used_again) {
    open(GetParam());
    const auto before = library::sets(db, 8);
    ASSERT_GE(before.size(), 2U);
    ASSERT_TRUE(db.DB_Del_CVSet(before[1].second));
    std::int16_t number = 500;
    const std::int32_t id = db.DB_Add_CVSet(u"neu"_s, number, 8);
    db.AktCVSetID(id);
    CVRec rec{0, 1, 29, 6, 0, false};
    EXPECT_TRUE(db.DB_Write_CV(rec));
    reopen();
    EXPECT_EQ(library::sets(db, 8).back(), (std::pair<std::string, int>("500 - neu", id)));
    EXPECT_EQ(library::cvs(db, id), (Shown{{"CV#    29 = 6", rec.CVID}}));
    EXPECT_TRUE(db.DB_Del_CVWert(rec.CVID));
    EXPECT_TRUE(library::cvs(db, id).empty());
    EXPECT_FALSE(db.set_gone(id));
    EXPECT_TRUE(db.DB_Del_CVSet(id));
    EXPECT_TRUE(db.set_gone(id));
    EXPECT_FALSE(db.DB_Del_CVWert(rec.CVID)) << "gone already";
    EXPECT_EQ(library::trouble(db), "gone");
    EXPECT_FALSE(db.DB_Del_CVSet(id));
    EXPECT_EQ(library::trouble(db), "gone");
    EXPECT_EQ(library::trouble(db), "");
}

INSTANTIATE_TEST_SUITE_P(All, Editing_Samples,
                         testing::Values("library_2000", "library_2003", "old_library",
                                         "partly_numbered", "worn_library", "orphans"),
                         [](const auto& entry) { return entry.param; });

TEST_F(Editing, the_picture_of_a_set_stays_while_others_work) {
    open("library_2000");
    const auto shown = library::cvs(db, 1);
    ASSERT_GT(shown.size(), 3U);
    EXPECT_EQ(db.DB_Open_CVs(1), static_cast<int>(shown.size()));
    CVRec rec = db.DB_Next_CV();
    EXPECT_TRUE(db.DB_Del_CVSet(1));
    std::size_t count = 1;
    for (; !rec.LastRecord; ++count) rec = db.DB_Next_CV();
    EXPECT_EQ(count, shown.size());
    EXPECT_EQ(db.DB_Next_CV(), CVRec());
    EXPECT_EQ(db.DB_Open_CVs(1), 0);
    EXPECT_EQ(db.DB_Next_CV(), CVRec());
}

} // namespace
