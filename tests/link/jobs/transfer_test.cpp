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
        if (const auto news = board.fetch()) {
            shown = news->display;
            log.lines = news->lines;
        }
        return outcome;
    }
};

} // namespace

TEST_F(Jobs, a_set_is_loaded_admitted_and_renumbered) {
    refused = {6};
    const Outcome outcome = run({.mode = Job_Mode::write_set,
                                 .susi = false,
                                 .values = {},
                                 .cvs = {cv(3, 40), cv(5, 200), cv(6, 1), cv(26, 1), cv(430, 9),
                                         cv(300, 9), cv(29, 6, 1, 1)}});
    EXPECT_EQ(outcome.end, End::done);
    EXPECT_EQ(outcome.refused, 1);
    EXPECT_EQ(outcome.not_admitted, 3);
    EXPECT_EQ(shown.Label1, QStringLiteral("CV-Set geladen!"));
    EXPECT_EQ(shown.lab_warnung, QStringLiteral("CV-Sets unterstützt (62 CVs max.)"));
    EXPECT_EQ(shown.ProgressBar1, 100);
    EXPECT_TRUE(log.lines.contains(QStringLiteral("Write CV 201")));
    EXPECT_TRUE(log.lines.contains(QStringLiteral("Write Set-CV Falsch")));
    EXPECT_EQ(log.lines.last(), QStringLiteral("Set-CV End Wahr"));
}

TEST_F(Jobs, what_a_decoder_cannot_and_who_does_not_answer_is_said) {
    capacity = 9;
    EXPECT_EQ(
        run({.mode = Job_Mode::write_set, .susi = false, .values = {}, .cvs = {cv(3, 4)}}).end,
        End::unsupported);
    EXPECT_EQ(shown.Label1, QStringLiteral("CV-Sets vom Decoder nicht unterstützt"));
    cvs[8] = 99;
    EXPECT_EQ(run({}).end, End::not_connected);
    EXPECT_EQ(shown.Label1, QStringLiteral("Verbindung fehlgeschlagen"));
    EXPECT_FALSE(control.is_open());
}

TEST_F(Jobs, a_decoder_of_256_is_read_into_the_numbers_of_a_set) {
    for (int number = 1; number <= 256; ++number)
        if (number != 8) cvs[number] = number % 256;
    const Outcome outcome =
        run({.mode = Job_Mode::read_all, .susi = false, .values = {}, .cvs = {}});
    EXPECT_EQ(outcome.end, End::done);
    const auto records = records_read(outcome.read, outcome.values.decoder.cv_space);
    std::map<int, int> found;
    for (const auto& record : records) found[record.CVNr] = record.CVWert;
    const std::map<int, int> some{{3, 3},     {97, 104},  {309, 102}, {349, 101}, {351, 97},
                                  {100, 100}, {394, 103}, {430, 201}, {477, 248}, {508, 249}};
    for (const auto& [number, value] : some) EXPECT_EQ(found[number], value) << number;
    for (const int number : {7, 8, 65, 250, 253, 355, 509}) EXPECT_FALSE(found.contains(number));
    EXPECT_EQ(shown.lab_sn, QStringLiteral("CV 256/256"));

    // and back: each number of a set goes to where it was read
    for (const auto& [number, value] : found) {
        const auto there = written_as(number, 256);
        EXPECT_EQ(there ? *kept_as(*there, 256) : number, number);
    }
}

TEST_F(Jobs, a_cancelled_load_says_that_half_of_it_may_be_there) {
    values.BasuModeActive = basu = true;
    values.TimingCounter = 125000;
    time.at(Milliseconds(2000), [&] { abort.raise(); });
    const Outcome outcome = run({.mode = Job_Mode::write_set,
                                 .susi = false,
                                 .values = {},
                                 .cvs = std::vector<store::CVRec>(2000, cv(3, 4))});
    EXPECT_EQ(outcome.end, End::cancelled);
    EXPECT_TRUE(outcome.begun);
    EXPECT_EQ(shown.Label1, QStringLiteral("CV-Sets nicht geladen!"));
}

TEST_F(Jobs, all_that_a_set_holds_is_written) {
    const Outcome outcome =
        run({.mode = Job_Mode::write_all,
             .susi = false,
             .values = {},
             .cvs = {cv(3, 1), cv(3, 9, 0, 2), cv(4, 7, 1, 1), cv(430, 5), cv(26, 1), cv(300, 1)}});
    EXPECT_EQ(outcome.end, End::done);
    EXPECT_EQ(cvs[3], 9);
    EXPECT_EQ(cvs[201], 5);
    EXPECT_EQ(cvs.count(4), 0U);
    EXPECT_EQ(cvs.count(26), 0U);
    EXPECT_TRUE(cvs.contains(31));
    EXPECT_EQ(shown.lab_sn, QStringLiteral("CV 512/512"));
    EXPECT_EQ(shown.Label1, QStringLiteral("Übertragung erfolgreich"));
}

TEST_F(Jobs, an_interface_that_was_pulled_out_is_switched_on_again) {
    control.gone_at = 2000;
    const Outcome outcome =
        run({.mode = Job_Mode::read_all, .susi = false, .values = {}, .cvs = {}});
    EXPECT_EQ(outcome.end, End::failed);
    EXPECT_GT(outcome.last_read, 5); // and kept
    EXPECT_FALSE(outcome.values.BasuModeActive);
    EXPECT_EQ(outcome.values.TimingCounter, 125000);
}

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
    }
}
