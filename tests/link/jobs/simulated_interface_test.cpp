#include "decoder_sim/simulator.h"
#include "link/jobs/transfer.h"
#include "link/serial/interface_search.h"
#include "platform/serial/real_scomm.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <thread>

using namespace std::chrono_literals;
using namespace link_jobs;
using decoder_sim::Trouble;
using End = Outcome::End;

namespace {

/// The real control and the real time, and at the other end of the line a simulated interface.
struct At_Simulator : testing::Test {
    support::Temporary_Folder folder;
    serial::Port_Numbers numbers{
        files::real_disk(),
        {.devices = {folder.path(), folder.path(), 0ms}, .user = folder.path()}};
    std::optional<decoder_sim::Simulator> simulator;
    std::unique_ptr<serial::SComm> control;
    timing::Interruption abort;
    Job_Board board{[] {}};
    link_types::Link_Values values;

    void SetUp() override {
        std::filesystem::create_directory(folder / "ports");
        simulator.emplace(
            decoder_sim::Settings{.link = folder / "ports/com7", .name = "KELDA Interface"});
        control = serial::real_scomm(numbers);
        values.ComPort = 7;
    }
    Outcome run(Job_Mode mode, std::vector<store::CVRec> cvs = {}) {
        link_serial::frm_Soundload_cls host(*control, timing::real_time(), abort, board);
        Outcome outcome = Transfer({mode, false, values, std::move(cvs)}, host, board).run();
        values = outcome.values;
        EXPECT_FALSE(control->is_open());
        return outcome;
    }
    std::string faults() const {
        std::string all;
        for (const auto& fault : simulator->faults())
            all += std::string(decoder_sim::sentence(fault.rule)) + " (" + fault.state + ")\n";
        return all;
    }
};

std::vector<store::CVRec> twenty_cvs() {
    std::vector<store::CVRec> all;
    for (int cv = 105; cv < 125; ++cv) {
        store::CVRec made;
        made.CVPageLo = 1;
        made.CVNr = static_cast<std::int16_t>(cv);
        made.CVWert = static_cast<std::int16_t>(cv + 100);
        all.push_back(made);
    }
    return all;
}

} // namespace

TEST_F(At_Simulator, an_interface_is_found_and_its_decoder_gets_the_set) {
    link_serial::Interface_Search search(*control, timing::real_time(), abort, board);
    const auto result = search.run({7});
    ASSERT_TRUE(result.found && result.found->kind == link_serial::Port_Kind::korli);
    values.BasuModeActive = result.BasuModeActive;
    EXPECT_EQ(run(Job_Mode::query).end, End::done);
    EXPECT_EQ(values.decoder.name, QStringLiteral("Decoder 201"));
    EXPECT_EQ(values.info, (link_types::Decoder_Info{4, 2, 201, 1, 35, 69}));

    const std::vector<store::CVRec> cvs = twenty_cvs();
    const auto holds = [&] {
        const auto set = simulator->loaded_set();
        return !simulator->set_open() && std::ranges::all_of(cvs, [&](const auto& cv) {
            return std::ranges::count(set, decoder_sim::Set_Cv{cv.CVNr, cv.CVWert}) == 1;
        });
    };
    EXPECT_EQ(run(Job_Mode::write_set, cvs).end, End::done);
    EXPECT_TRUE(holds());
    EXPECT_EQ(faults(), "");

    const struct {
        Trouble trouble;
        int number;
        std::vector<End> ends;
    } cases[] = {
        {Trouble::late, 5, {End::done}},
        {Trouble::wrong_answer, 3, {End::done}}, // CV8 is another then, and asked for again
        {Trouble::lose_answer, 40, {End::done}},
        {Trouble::change_answer, 3, {End::done}},
        {Trouble::double_answer, 84, {End::done, End::failed}},
        {Trouble::lose_byte, 180, {End::done}},
        {Trouble::double_byte, 180, {End::done}},
        {Trouble::change_byte, 180, {End::done}},
        {Trouble::noise_before_ok,
         0,
         {End::done}}, // the decoder answers, whatever the interface says
    };
    for (const auto& [trouble, number, ends] : cases) {
        SCOPED_TRACE(decoder_sim::trouble_rows.at(static_cast<std::size_t>(trouble)).name);
        if (trouble == Trouble::noise_before_ok) values.BasuModeActive = false;
        simulator->trouble(trouble, number);
        const Outcome outcome = run(Job_Mode::write_set, cvs);
        EXPECT_TRUE(std::ranges::count(ends, outcome.end) == 1) << static_cast<int>(outcome.end);
        EXPECT_EQ(outcome.end == End::done && outcome.refused == 0, holds());
        if (trouble == Trouble::late) simulator->trouble(Trouble::late, 0);
    }

    simulator->trouble(Trouble::no_answer);
    std::jthread cancels([&] {
        std::this_thread::sleep_for(700ms);
        abort.raise();
    });
    const auto begin = timing::real_time().now();
    EXPECT_EQ(run(Job_Mode::query).end, End::cancelled);
    EXPECT_LT(timing::real_time().now() - begin, 1000ms);
    cancels.join();
    abort.clear();
    simulator->trouble(Trouble::answer);

    std::jthread pulls([&] {
        std::this_thread::sleep_for(400ms);
        simulator->trouble(Trouble::unplug);
    });
    const Outcome gone = run(Job_Mode::read_all);
    pulls.join();
    EXPECT_TRUE(gone.end == End::failed || gone.end == End::not_connected);
    EXPECT_TRUE(gone.trouble && gone.trouble->kind == failure::Kind::vanished);
    simulator->trouble(Trouble::plug);
    EXPECT_EQ(run(Job_Mode::query).end, End::done);
}
