#include "store/clipboard_texts.h"

#include <gmock/gmock.h>
#include <random>

using namespace store;
using testing::ElementsAre;
using Object = std::variant<Pasted_Set, CVRec>;

namespace {

QString u8(const char* text) { return QString::fromUtf8(text); }
CVRec cv(int hi, int lo, int number, int value) {
    return {static_cast<std::uint8_t>(hi),
            static_cast<std::uint8_t>(lo),
            static_cast<std::int16_t>(number),
            static_cast<std::int16_t>(value),
            0,
            false};
}
Pasted_Set set(const char* name, int number) {
    return {u8(name), static_cast<std::int16_t>(number)};
}

cls_CV_Set sample_set(const QString& name) {
    cls_CV_Set sample;
    sample.Name = name;
    sample.Nummer = 12;
    sample.Add_CV(1, 29, 6);
    sample.Add_CV(258, 300, 7);
    sample.Add_CV(1, 600, 8);
    return sample;
}

TEST(Clipboard_Texts, are_written_line_by_line) {
    EXPECT_EQ(cvs_text({cv(0, 1, 29, 6)}),
              u8("CVPageHi,0\r\nCVPageLo,1\r\nCVNr,29\r\nCVWert,6\r\nObj,CV\r\n"));
    const QString with_odd_units = u8("V 100,\r") + QChar(u'\0') + QChar::LineSeparator + u8("rot");
    const cls_CV_Set sample = sample_set(with_odd_units);
    EXPECT_EQ(set_text(sample, Names::plain),
              u8("SetName,V 100,   rot\r\nSetNr,12\r\nObj,Set\r\n"
                 "CVPageHi,0\r\nCVPageLo,0\r\nCVNr,29\r\nCVWert,6\r\nObj,CV\r\n"
                 "CVPageHi,1\r\nCVPageLo,2\r\nCVNr,300\r\nCVWert,7\r\nObj,CV\r\n"
                 "CVPageHi,0\r\nCVPageLo,2\r\nCVNr,600\r\nCVWert,8\r\nObj,CV\r\n"));
    EXPECT_EQ(listing_text(sample),
              u8("Set-Name: V 100,   rot\r\nSet-Nummer: 12\r\nCV 29 = 6\r\n"
                 "CV-Page: CV31 = 1, CV32 = 2\r\nCV 300 = 7\r\nCV 600 = 8\r\n"));
}

TEST(Clipboard_Texts, names_survive_in_our_own_form) {
    for (const char* name : {"V 100, rot", ",", "", "100 % \r\n Zeile", "Züge 日本 😀", "%2C"}) {
        SCOPED_TRACE(name);
        const Pasted pasted = parse_sets(set_text(sample_set(u8(name)), Names::percent_encoded),
                                         Names::percent_encoded);
        EXPECT_THAT(pasted.objects,
                    ElementsAre(Object(set(name, 12)), Object(cv(0, 0, 29, 6)),
                                Object(cv(1, 2, 300, 7)), Object(cv(0, 2, 600, 8))));
        EXPECT_EQ(pasted.lines_skipped, 0);
    }
}

TEST(Clipboard_Texts, cvs_are_read_whatever_program_wrote_the_lines) {
    const struct {
        const char* what;
        QString text;
        std::vector<Object> objects;
        int skipped = 0;
        int left_out = 0;
    } cases[] = {
        {"two objects, values pass on",
         u8("CVPageHi,0\r\nCVPageLo,5\r\nCVNr,300\r\nCVWert,6\r\nObj,CV\r\nCVNr,301\r\nObj,CV\r\n"),
         {cv(0, 5, 300, 6), cv(0, 5, 301, 6)}},
        {"LF, no final line end", u8("CVNr,29\nCVWert,6\nObj,CV"), {cv(0, 0, 29, 6)}},
        {"CR", u8("CVNr,29\rCVWert,6\rObj,CV\r"), {cv(0, 0, 29, 6)}},
        {"a trailing zero and junk behind it",
         u8("CVNr,29\r\nCVWert,6\r\nObj,CV\r\n") + QChar(u'\0') + u8("Obj,CV"),
         {cv(0, 0, 29, 6)}},
        {"keys are case-sensitive",
         u8("cvnr,5\r\nCVNr,29\r\nCVWert,6\r\nobj,CV\r\nObj,cv\r\nObj,CV"),
         {cv(0, 0, 29, 6)}},
        {"lines without exactly two fields vanish",
         u8("CVNr,29\r\nCVNr,30,1\r\nCVWert,6\r\nCVWert\r\nObj,CV"),
         {cv(0, 0, 29, 6)}},
        {"set lines are no matter here",
         u8("SetName,X\r\nSetNr,x\r\nObj,Set\r\nCVNr,29\r\nCVWert,6\r\nObj,CV"),
         {cv(0, 0, 29, 6)}},
        {"a bad number spoils its object only",
         u8("CVNr,abc\r\nCVWert,6\r\nObj,CV\r\nCVNr,29\r\nObj,CV"),
         {cv(0, 0, 29, 6)},
         1,
         1},
        {"values beyond their range",
         u8("CVNr,29\r\nCVWert,256\r\nCVPageHi,256\r\nObj,CV\r\nCVWert,-1\r\nObj,CV\r\nCVNr,"
            "32768\r\nObj,CV"),
         {},
         4,
         3},
        {"no number ever", u8("CVWert,6\r\nObj,CV"), {}, 0, 1},
        {"bare list, semicolons", u8("1;3\r\n29;6\r\n"), {cv(0, 1, 1, 3), cv(0, 1, 29, 6)}},
        {"bare list, commas", u8("1,3\n29,6"), {cv(0, 1, 1, 3), cv(0, 1, 29, 6)}},
        {"a spreadsheet's tabs", u8("1\t3\n29\t 6 \n"), {cv(0, 1, 1, 3), cv(0, 1, 29, 6)}},
        {"the comma wins", u8("1;1,3\r\n29,6\r\n5;7\r\n"), {cv(0, 1, 29, 6)}, 1, 1},
        {"the first line decides", u8("1;3\r\n29,6\r\n"), {cv(0, 1, 1, 3)}},
        {"a heading is skipped", u8("CV;Wert\r\n29;6\r\n"), {cv(0, 1, 29, 6)}, 1, 1},
        {"no separator", u8("Hallo\r\n1;3\r\n"), {}},
        {"nothing", QString(), {}},
        {"objects without any value line are a list",
         u8("CVNr,29\r\nObj,CV\r\n7,8"),
         {cv(0, 1, 7, 8)},
         2,
         2},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const Pasted pasted = parse_cvs(c.text);
        EXPECT_EQ(pasted.objects, c.objects);
        EXPECT_EQ(pasted.lines_skipped, c.skipped);
        EXPECT_EQ(pasted.objects_left_out, c.left_out);
    }
}

TEST(Clipboard_Texts, sets_follow_one_another_and_a_bad_header_ends_the_reading) {
    EXPECT_THAT(parse_sets(u8("Obj,Set\r\nSetName,A\r\nSetNr,3\r\nObj,Set\r\nCVNr,1\r\nCVWert,"
                              "2\r\nObj,CV\r\nSetName,B,b\r\nObj,Set"),
                           Names::plain)
                    .objects,
                ElementsAre(Object(set("", 0)), Object(set("A", 3)), Object(cv(0, 0, 1, 2)),
                            Object(set("A", 3))));
    for (const char* number : {"32768", "-1", "drei", "", "3.5"}) {
        SCOPED_TRACE(number);
        const Pasted pasted =
            parse_sets(u8("SetName,A\r\nSetNr,1\r\nObj,Set\r\nSetNr,") + u8(number) +
                           u8("\r\nObj,Set\r\nCVNr,1\r\nCVWert,2\r\nObj,CV"),
                       Names::plain);
        EXPECT_THAT(pasted.objects, ElementsAre(Object(set("A", 1))));
        EXPECT_TRUE(pasted.ended_at_set);
        EXPECT_EQ(pasted.objects_left_out, 1);
    }
}

TEST(Clipboard_Texts, any_text_is_read_to_its_end_with_values_in_range) {
    const QString pieces[] = {u8("CVNr,"),  u8("CVWert,"),         u8("Obj,CV"),    u8("Obj,Set"),
                              u8("SetNr,"), u8("SetName,%"),       u8("\r\n"),      u8("\n"),
                              u8("29"),     u8("99999999999"),     u8(","),         u8(";"),
                              u8("\t"),     QString(QChar(u'\0')), u8("CVPageLo,-")};
    std::mt19937 random(1);
    for (int round = 0; round < 3000; ++round) {
        QString text;
        for (int i = 0; i < 40; ++i) text += pieces[random() % std::size(pieces)];
        for (const Pasted& pasted : {parse_cvs(text), parse_sets(text, Names::percent_encoded)})
            for (const Object& object : pasted.objects)
                if (const auto* read = std::get_if<CVRec>(&object)) {
                    ASSERT_GE(read->CVNr, 1);
                    ASSERT_LE(read->CVWert, 255);
                }
    }
}

} // namespace
