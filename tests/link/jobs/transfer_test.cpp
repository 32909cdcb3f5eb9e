#include "link/jobs/cv_tables.h"
#include "link/jobs/transfer.h"
#include "link/made_up_decoder.h"

#include <gtest/gtest.h>

using namespace made_up;
using namespace link_jobs;
using End = Outcome::End;

namespace {

store::CVRec cv(int number, int value, int hi = 0, int lo = 1) {
    store::CVRec made;
    made.CVPageHi = static_cast<std::uint8_t>(hi);
    made.CVPageLo = static_cast<std::uint8_t>(lo);
    made.CVNr = static_cast<std::int16_t>(number);
    made.CVWert = static_cast<std::int16_t>(value);
    return made;
}

struct Jobs : testing::Test, Track {
    Job_Board board{[] {}};
    Job_Display shown;

    Outcome run(Order order) {
        link_serial::frm_Soundload_cls host(control, time, abort, board);
        order.values = values;
        const Outcome outcome = Transfer(std::move(order), host, board, loop).run();
        if (const auto news = board.fetch()) shown = news->display;
        return outcome;
    }
};

} // namespace

// What the sets of the three groups take; beyond them, that is 1..256 and some of 257..512 for the
// smallest decoders, and everything for the others, but the numbers that are a decoder's own.
TEST(Transfer_Tables, admission_and_renumbering) {
    using link_types::Family_Group;
    const std::set<int> own{7, 8, 65, 250, 251, 252, 253};
    std::map<int, int> small;
    for (int number = 1; number <= 25; ++number) small[number] = number;
    for (int number = 27; number <= 96; ++number) small[number] = number;
    for (int number = 105; number <= 200; ++number) small[number] = number;
    const std::map<int, int> others{{97, 104},  {254, 254}, {255, 255}, {256, 256},
                                    {309, 102}, {349, 101}, {351, 97},  {352, 98},
                                    {353, 99},  {355, 100}, {394, 103}, {508, 249},
                                    {509, 250}, {510, 251}, {511, 252}, {512, 253}};
    small.insert(others.begin(), others.end());
    for (int i = 0; i < 48; ++i) small[430 + i] = 201 + i;
    for (const int number : own) small.erase(number);
    for (const auto group : {Family_Group::cv256, Family_Group::cv1024, Family_Group::sound})
        for (int number = 1; number <= 1024; ++number) {
            SCOPED_TRACE(testing::Message() << number << " in group " << static_cast<int>(group));
            const bool is_small = group == Family_Group::cv256;
            const bool goes = is_small ? small.contains(number) : !own.contains(number);
            for (const int page : {0, 3})
                EXPECT_EQ(is_admitted(cv(number, 1, 0, page), group), goes);
            EXPECT_FALSE(is_admitted(cv(number, 1, 0, 4), group));
            EXPECT_FALSE(is_admitted(cv(number, 1, 1, 0), group));
            if (goes) {
                EXPECT_EQ(renumbered(number, group), is_small ? small[number] : number);
            }
        }
}

TEST_F(Jobs, a_capacity_class_has_its_text_and_its_group) {
    using link_types::Family_Group;
    struct Row {
        int answer;
        const char* text;
        Family_Group group;
    };
    const char* none = "CV-Sets vom Decoder nicht unterstützt";
    for (const Row& row :
         {Row{1, "CV-Sets unterstützt (62 CVs max.)", Family_Group::cv256},
          Row{2, "CV-Sets unterstützt (94 CVs max.)", Family_Group::cv256},
          Row{3, "CV-Sets unterstützt (126 CVs max.)", Family_Group::cv256},
          Row{4, "CV-Sets unterstützt (84 CVs max.)", Family_Group::cv1024},
          Row{5, "CV-Sets unterstützt (169 CVs max.)", Family_Group::cv1024},
          Row{6, "CV-Sets unterstützt (255 CVs max.)", Family_Group::cv1024},
          Row{7, "", Family_Group::sound}, Row{0, none, Family_Group::unknown},
          Row{8, none, Family_Group::unknown}, Row{255, none, Family_Group::unknown}}) {
        SCOPED_TRACE(row.answer);
        capacity = row.answer;
        type_code = row.group == Family_Group::cv256 ? 166 : 201; // which the class overrules
        const Outcome outcome = run({});
        EXPECT_EQ(shown.lab_warnung, QString::fromUtf8(row.text));
        EXPECT_EQ(outcome.values.decoder.group, row.text == none ? Family_Group::cv256 : row.group);
        const auto end =
            run({.mode = Job_Mode::write_set, .susi = false, .values = {}, .cvs = {}}).end;
        EXPECT_EQ(end, row.text == none ? End::unsupported : End::done);
        EXPECT_EQ(shown.Label1, QString::fromUtf8(row.text == none ? none : "CV-Set geladen!"));
    }
}
