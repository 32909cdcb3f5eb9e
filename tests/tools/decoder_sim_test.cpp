#include "decoder_sim/simulator.h"

#include "scripted_host.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>
#include <set>
#include <sys/wait.h>

namespace decoder_sim {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(Decoder_Sim, converses_without_faults) {
    const struct {
        int type;
        const char* script;
        std::vector<Set_Cv> loaded = {};
    } cases[] = {
        // 6 is 0110 0000, lowest bit first; 00 is only the first of the bytes that mean no
        {201, "link read29 gets=00 FF gets=1C FF gets=1C FF wait FF wait FF wait FF wait FF wait "
              "01 00 07 bits=13 write3 gets=1C 01 00 02 bits=40 04 bits=201 07 bits=1 "
              "06 AA 00 1C 7C 06 gets=1C 01 01 00 bits=256 zeros read29 bits=6"},
        {130, "link 02 AA 00 1E 01 gets=1C 02 AA 00 1F 02 gets=1C 02 AA 01 00 09 gets=1C "
              "01 01 00 bits=9 02 AA 00 1E 00 gets=1C 02 AA 00 1F 00 gets=1C 01 01 00 bits=0 "
              "02 AA 01 00 05 gets=1C 02 AA 00 1F 01 gets=1C 01 01 00 bits=5"},
        {201,
         "link capacity bits=2 set-start gets=1C set3 gets=1C set3 gets=1C "
         "09 05 00 03 F6 gets=1C set-end gets=1C",
         {{3, 40}, {257, 3}}},
        {255, "link capacity bits=256 01 03 FF bits=0"},
        {255, "link read29 reopen gets= link read29 bits=6"},
        {171, "link 07 bits=256 zeros write3 gets=1C"},
        {166, "susi susi29 09 gets=06 gets=06 gets=DD susi3 gets=06 "
              "00 00 00 02 01 01 00 00 00 03 FF 57 gets= pause leave gets=06 leave gets="},
        {3, "susi susi29 09 leave gets=06"},
        {201, "basu pairs20@300 calibration groups10@1300 pause no-answer "
              "give-up give-up give-up give-up give-up write-in-vain write-in-vain write-in-vain "
              "write-in-vain write-in-vain answer read29 bits=6 text:BASU_AUS~"},
    };
    for (const auto& c : cases) {
        Rig rig(c.type);
        rig.play(c.script);
        std::this_thread::sleep_for(10ms);
        EXPECT_EQ(rig.faults(), "") << c.script;
        EXPECT_EQ(rig.simulator.loaded_set(), c.loaded);
        EXPECT_FALSE(rig.simulator.set_open());
    }
}

TEST(Decoder_Sim, judges_what_the_host_does) {
    const std::pair<Rule, const char*> cases[] = {
        {Rule::unknown_bytes, "link 77 55"},
        {Rule::broken_off, "link 01 00 pause 04"},
        {Rule::line_settings, "one-stop-bit susi"},
        {Rule::return_missing, "text:BASU_EIN~"},
        {Rule::bytes_before_ok, "text:SUSIV2~~"},
        {Rule::not_in_mode, "read29"},
        {Rule::not_in_mode, "susi leave wait susi29 09"},
        {Rule::not_in_mode, "text:BASU_AUS~"},
        {Rule::pause_missing, "text:~BASU_EIN~"},
        {Rule::calibration_count, "basu pairs19@1500 groups10@1300"},
        {Rule::calibration_burst, "basu pairs20@0 groups10@1300"},
        {Rule::calibration_length, "basu pairs20@4000 groups10@1300"},
        {Rule::pause_missing, "basu groups9@1300 BF EF EF read29"},
        {Rule::preamble_missing, "basu read29"},
        {Rule::preamble_missing, "link reopen read29 gets="},
        {Rule::preamble_count, "basu groups9@1300 read29"},
        {Rule::preamble_burst, "basu groups10@0"},
        {Rule::wrong_checksum, "link 09 10 00 00 D9"}, // begun with 0
        {Rule::wrong_checksum, "susi susi29 08"},
        {Rule::wrong_form, "link 06 AA 00 1C 7C 06"},
        {Rule::wrong_form, "link set-start wait write3"},
        {Rule::no_such_cv, "link 01 04 00"},
        {Rule::never_written, "link 02 AA 00 07 01"},
        {Rule::set_order, "link set3"},
        {Rule::clock_too_early, "link read29 FF"},
        {Rule::clock_after_end, "link read29 bits=6 FF"},
        {Rule::next_before_answer, "link write3 write3"},
        {Rule::next_before_answer, "susi susi29 09 susi3"},
        {Rule::left_off, "link read29 wait write3"},
        {Rule::recovery_too_early, "link read29 zeros"},
        {Rule::recovery_unfounded, "link no-answer write-in-vain zeros"},
        {Rule::recovery_count, "link no-answer read29 pause zeros7 04"},
        {Rule::too_many_attempts, "link no-answer write-in-vain write-in-vain write-in-vain "
                                  "write-in-vain write-in-vain write3"},
        {Rule::too_many_attempts, "susi no-answer susi-in-vain susi-in-vain susi-in-vain "
                                  "susi-in-vain susi-in-vain susi-in-vain susi-in-vain"},
    };
    static constexpr std::string_view busy = "the computer is too busy to judge";
    const auto first_fault = [](const std::string& script) {
        Rig rig(201, script.starts_with("text:") ? 10ms : 1ms); // no wait in these
        rig.play(script + " end");
        for (int i = 0; i < 200 && rig.simulator.faults().empty(); ++i)
            std::this_thread::sleep_for(1ms);
        for (const Entry& entry : rig.simulator.log())
            if (entry.text.starts_with("not judged")) return busy;
        const auto faults = rig.simulator.faults();
        return faults.empty() ? std::string_view("no fault") : sentence(faults[0].rule);
    };
    std::set<Rule> seen;
    for (const auto& [rule, script] : cases) {
        // on a busy computer nobody is blamed for what may have been seen late
        std::string_view found;
        for (int i = 0; i < 5 && found != sentence(rule); ++i) found = first_fault(script);
        EXPECT_TRUE(found == sentence(rule) || found == busy) << script << ": " << found;
        seen.insert(rule);
    }
    EXPECT_EQ(seen.size(), static_cast<std::size_t>(Rule::too_many_attempts) + 1);
}

TEST(Decoder_Sim, troubles_come_when_they_are_ordered) {
    for (const char* script : {
             // before each: what the order makes of type code 201, protocol version 1 and a write
             "no-answer 04 bits=256 zeros 07 bits=256 zeros set-start gets=",
             "late:100 04 bits=256 zeros late:0 07 bits=1 set-start gets=1C",
             "decoder-off 04 bits=256 zeros decoder-on set-start gets=",
             "lose-answer:2 04 bits=256 zeros 07 bits=1 set-start gets=1C",
             "change-answer:1 04 bits=200 07 bits=1 set-start gets=1C",
             "wrong-answer:9 04 bits=201 07 bits=0 set-start gets=1C",
             "refuse-write:1 04 bits=201 07 bits=1 set-start gets=38",
             "ignore-write:1 04 bits=201 07 bits=1 set-start gets=",
             "lose-byte:2 set-start gets= pause pause pause 07 bits=1",
             "double-answer:8 04 bits=201 07 bits=3", // the host takes the second one for the next
             "lose-byte:9 04 bits=201 07 bits=256 zeros set-start gets=1C",
             "change-byte:1 04 bits=256 zeros 07 bits=1 set-start gets=1C",
         }) {
        Rig rig;
        rig.play(std::string("link ") + script);
        EXPECT_EQ(rig.faults(), "") << script;
    }
    Rig rig;
    rig.play(
        "susi double-answer:1 susi29 09 gets=06 gets=06 gets=06 gets=DD double-byte:1 susi29 09 "
        "gets= pause pause pause decoder-off susi3 gets= decoder-on susi3 gets=06");
    EXPECT_EQ(rig.simulator.cv(3), 40);
    for (const char* wrong : {"", "late", "late x", "lose-byte 0", "plug 1", "lose"})
        EXPECT_FALSE(parsed_trouble(wrong)) << wrong;
}

TEST(Decoder_Sim, bytes_of_the_interface_take_their_time) {
    Rig rig;
    rig.play("noise-before-ok text:SUSIV2~ end");
    EXPECT_THAT(rig.host.receive(9), testing::SizeIs(9));
    EXPECT_THAT(rig.simulator.sent_since({}), ElementsAre('S', 'U', 'S', 'I', 'V', '2', '\r'));
    EXPECT_THAT(rig.simulator.sent_since(Clock::now()), IsEmpty());
    std::optional<Time> before;
    for (const Entry& entry : rig.simulator.log())
        if (entry.kind == Entry::Kind::to_host) {
            EXPECT_GE(entry.at - before.value_or(entry.at - 1s), 286us);
            before = entry.at;
        }
    rig.play("ok no-ok text:SUSIV2~ gets= noise");
    EXPECT_THAT(rig.host.receive(5), testing::SizeIs(5));
}

TEST(Decoder_Sim, a_pulled_plug_hangs_the_host_up_and_the_link_comes_back) {
    const support::Temporary_Folder folder;
    const std::string link = folder / "com7";
    fs::create_symlink("/gone", link); // left by one that was killed
    {
        Simulator simulator({.link = link, .name = "KELDA Interface"});
        const Host host(link);
        simulator.trouble(Trouble::unplug);
        EXPECT_THAT(host.receive(1), IsEmpty());
        EXPECT_LT(host.send({0x0D}), 0);
        EXPECT_FALSE(fs::is_symlink(link) || fs::exists(link + ".name"));
        simulator.trouble(Trouble::plug);
        EXPECT_EQ(fs::read_symlink(link), simulator.port());
        EXPECT_TRUE(fs::exists(link + ".name") && Host(link).mode("BASU_EIN"));
    }
    EXPECT_FALSE(fs::is_symlink(link) || fs::exists(link + ".name"));
    std::ofstream(link) << "a file";
    EXPECT_THROW(Simulator({.link = link}), fs::filesystem_error);
}

TEST(Decoder_Sim, the_program_ends_in_order_and_tells_of_faults) {
    const support::Temporary_Folder folder;
    const std::string link = folder / "com7", out = folder / "out";
    const struct {
        const char* options;
        const char* beside;
        int status;
    } cases[] = {{"--until-end-of-input", "true", 0},
                 {"--cv 3=7 --decoder 1 --protocol none", "echo quit", 0},
                 {"",
                  "until [ -e $L ]; do sleep 0.01; done; stty -F $L raw 38400 cstopb; "
                  "printf w > $L; sleep 0.3; echo quit",
                  1},
                 {"--cv 3", "true", 2},
                 {"--trouble lose", "true", 2}};
    for (const auto& c : cases) {
        const std::string command = "export L='" + link + "'; { " + c.beside +
                                    "; } | '" CV_SETS_BIN "/decoder_sim' --link $L " + c.options +
                                    " > '" + out + "' 2>&1";
        EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), c.status) << c.beside;
        EXPECT_FALSE(fs::is_symlink(link));
        std::ifstream in(out);
        const std::string text{std::istreambuf_iterator<char>(in), {}};
        EXPECT_EQ(text.find("\nFAULT ") != std::string::npos, c.status == 1) << text;
    }
}

} // namespace
} // namespace decoder_sim
