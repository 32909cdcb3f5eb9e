#include "link/jobs/transfer.h"
#include "link/made_up_decoder.h"
#include "link/serial/interface_search.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace made_up;
using namespace link_jobs;
using End = Outcome::End;
using Fault = serial::Fake_SComm::Fault;
using Fate = serial::Fake_SComm::Fate;
using Way = serial::Fake_SComm::Way;

namespace {

struct Kind {
    const char* name;
    Job_Mode mode;
    bool susi;
    End healthy;
    int longest; ///< bytes of each way that are tried; what follows repeats itself
    int stride;  ///< every so many of them, and of the steps of the port
};
constexpr Kind kinds[] = {
    {"query", Job_Mode::query, false, End::done, 2000, 7},
    {"set", Job_Mode::write_set, false, End::done, 2000, 3},
    {"write all", Job_Mode::write_all, false, End::done, 2000, 5},
    {"read all", Job_Mode::read_all, false, End::done, 330, 11},
    {"query over SUSI", Job_Mode::query, true, End::done, 2000, 7},
    {"set over SUSI", Job_Mode::write_set, true, End::unsupported, 0, 1},
    {"write all over SUSI", Job_Mode::write_all, true, End::done, 2000, 3},
    {"read all over SUSI", Job_Mode::read_all, true, End::done, 180, 11},
};

store::CVRec to_write(int number, int value) {
    store::CVRec made;
    made.CVPageLo = 1;
    made.CVNr = static_cast<std::int16_t>(number);
    made.CVWert = static_cast<std::int16_t>(value);
    return made;
}

const std::map<int, int> wanted{{3, 40}, {5, 200}, {29, 6}, {201, 9}}; // 430 is 201 there

/// A decoder, and one job after another with it.
struct Attempt : Track {
    Job_Board board{[] {}};
    Job_Display shown;

    Attempt() {
        type_code = 200; // its first bit is no: a packet without its first byte, which asks for it,
                         // is not answered as one that was taken

        for (int number = 1; number <= 256; ++number)
            if (number != 8) cvs[number] = number % 251;
        cvs[250] = 200;
    }
    Outcome run(const Kind& kind) {
        link_serial::frm_Soundload_cls host(control, time, abort, board);
        Order order{.mode = kind.mode, .susi = kind.susi, .values = values, .cvs = {}};
        for (const auto& [number, value] : wanted)
            order.cvs.push_back(to_write(number == 201 ? 430 : number, value));
        Outcome outcome = Transfer(std::move(order), host, board, loop).run();
        values = outcome.values;
        if (const auto news = board.fetch()) shown = news->display;
        return outcome;
    }
    bool holds(const std::map<int, int>& where) const {
        return std::ranges::all_of(wanted, [&](const auto& pair) {
            const auto found = where.find(pair.first);
            return found != where.end() && found->second == pair.second;
        });
    }
    /// Whether what is reported as done is so; as for a decoder whose type code was misread, there
    /// is no check on it. @param reads what is read is compared too
    bool kept_word(const Kind& kind, const Outcome& outcome, bool reads = true) const {
        if (outcome.end != End::done || outcome.values.DecoderTypeCode != type_code) return true;
        switch (kind.mode) {
        case Job_Mode::write_set:
            return whole && (outcome.refused > 0 || holds(set));
        case Job_Mode::write_all:
            return holds(cvs);
        case Job_Mode::read_all:
            return !reads || (outcome.read[3] == 3 && outcome.read[11] == 11 &&
                              outcome.read[430] == 201 && outcome.read[508] == 249);
        default:
            return true;
        }
    }
    bool left_in_order() const { return !control.is_open() && !control.rts(); }
    void mend() {
        control.faults.clear();
        control.gone_at = 0;
        abort.clear();
        if (!control.ports.contains(1)) {
            control.ports[1].description = QStringLiteral("USB");
            control.ports[1].on_byte = on_byte;
        }
        time.advance(Milliseconds(5000));
    }
    std::function<void(Byte)> on_byte = control.ports[1].on_byte;
};

/// On the track a bit is one byte without a check, and over SUSI an answer does not say to which CV:
/// a byte too many, another one, or one that comes during the next reading cannot be told.
bool may_trust(const Kind& kind, Fate fate) {
    return fate == Fate::lost || (kind.susi && fate != Fate::late);
}

const QStringList failures{QStringLiteral("Verbindung fehlgeschlagen"),
                           QStringLiteral("Übertragung fehlgeschlagen"),
                           QStringLiteral("CV-Sets nicht geladen!"),
                           QStringLiteral("CV-Sets vom Decoder nicht unterstützt")};

} // namespace

TEST(Link_Faults, no_byte_that_goes_wrong_hangs_or_deceives) {
    int cases = 0;
    for (const Kind& kind : kinds) {
        Attempt healthy;
        ASSERT_EQ(healthy.run(kind).end, kind.healthy) << kind.name;
        for (const Way way : {Way::sent, Way::received})
            for (int nth = std::min(healthy.control.bytes(way), kind.longest); nth > 0;
                 nth -= kind.stride)
                for (const Fate fate : {Fate::lost, Fate::doubled, Fate::late, Fate::changed}) {
                    Attempt at;
                    at.control.faults = {{way, nth, fate, 0x15, Milliseconds(650)}};
                    const Outcome outcome = at.run(kind);
                    ++cases;
                    SCOPED_TRACE(std::string(kind.name) + (way == Way::sent ? " > " : " < ") +
                                 std::to_string(nth) + ", " +
                                 std::to_string(static_cast<int>(fate)));
                    EXPECT_LT(at.time.now(), healthy.time.now() + Milliseconds(15'000));
                    EXPECT_TRUE(at.left_in_order());
                    EXPECT_TRUE(outcome.end == kind.healthy || failures.contains(at.shown.Label1))
                        << at.shown.Label1.toStdString();
                    EXPECT_TRUE(at.kept_word(kind, outcome, may_trust(kind, fate)));
                    if (cases % 16 != 0) continue;
                    at.mend();
                    const Outcome next = at.run(kind);
                    EXPECT_EQ(next.end, kind.healthy);
                    EXPECT_TRUE(at.kept_word(kind, next));
                }
    }
}

TEST(Link_Faults, wherever_the_port_goes_the_job_ends_and_the_next_one_works) {
    int cases = 0;
    for (const Kind& kind : kinds) {
        Attempt healthy;
        healthy.run(kind);
        const int last = std::min(healthy.control.steps(), 900);
        for (int step = 1; step <= last; step += 2 * kind.stride) {
            SCOPED_TRACE(std::string(kind.name) + " " + std::to_string(step));
            Attempt at;
            at.control.gone_at = step;
            const Outcome outcome = at.run(kind);
            ++cases;
            EXPECT_LE(at.time.now(), healthy.time.now() + Milliseconds(2000));
            EXPECT_TRUE(at.left_in_order());
            EXPECT_TRUE(at.kept_word(kind, outcome));
            EXPECT_TRUE(outcome.trouble && outcome.trouble->kind == failure::Kind::vanished);
            if (cases % 8 != 0) continue;
            at.mend();
            const Outcome next = at.run(kind);
            EXPECT_EQ(next.end, kind.healthy);
            EXPECT_TRUE(at.kept_word(kind, next));
        }
    }
    RecordProperty("cases", cases);
}

TEST(Link_Faults, a_port_that_refuses_to_open_is_said_and_left) {
    for (const failure::Kind refusal :
         {failure::Kind::denied, failure::Kind::locked_elsewhere, failure::Kind::not_found})
        for (const Kind& kind : kinds) {
            Attempt at;
            at.control.ports[1].refusal = serial::Error(refusal, "COM1", "refused");
            const Outcome outcome = at.run(kind);
            EXPECT_EQ(outcome.end, End::not_connected) << kind.name;
            EXPECT_EQ(at.shown.Label1, QStringLiteral("Verbindung fehlgeschlagen")) << kind.name;
            EXPECT_TRUE(outcome.trouble && outcome.trouble->kind == refusal) << kind.name;
            at.control.ports[1].refusal.reset();
            EXPECT_EQ(at.run(kind).end, kind.healthy) << kind.name;
        }
}

TEST(Link_Cancel, takes_effect_within_100_ms_at_every_moment) {
    Milliseconds largest{0};
    int cases = 0;
    for (const Kind& kind : kinds) {
        Attempt healthy;
        healthy.run(kind);
        const auto end = std::min(healthy.time.now(), Milliseconds(3000));
        for (Milliseconds moment{0}; moment < end; moment += Milliseconds(23)) {
            SCOPED_TRACE(std::string(kind.name) + " " + std::to_string(moment.count()));
            Attempt at;
            at.time.at(moment, [&] { at.abort.raise(); });
            const Outcome outcome = at.run(kind);
            ++cases;
            const Milliseconds took = at.time.now() - moment;
            largest = std::max(largest, took);
            EXPECT_LE(took, Milliseconds(100));
            EXPECT_NE(outcome.end, End::done);
            EXPECT_TRUE(at.left_in_order());
            if (cases % 8 != 0) continue;
            at.mend();
            EXPECT_EQ(at.run(kind).end, kind.healthy);
        }
    }
    RecordProperty("cases", cases);
    RecordProperty("largest_ms", static_cast<int>(largest.count()));
}

TEST(Link_Search, a_basul_is_found_by_its_status_and_a_port_that_goes_is_passed_over) {
    int last = 0;
    for (int step = 0; step <= last; ++step) { // the first run loses nothing
        SCOPED_TRACE(step);
        timing::Virtual_Time time;
        serial::Fake_SComm control{time};
        timing::Interruption stop;
        Log log;
        control.ports[2].refusal = serial::Error(failure::Kind::denied, "COM2", "refused");
        control.ports[3].on_rts = [&](bool on) { control.answer(Bytes(on ? 1 : 0, 0x81)); };
        control.gone_at = step;
        link_serial::Interface_Search search(control, time, stop, log);
        const auto result = search.run({2, 3});
        if (step == 0) {
            last = control.steps();
            ASSERT_TRUE(result.found && result.found->kind == link_serial::Port_Kind::basul);
            EXPECT_EQ(result.status,
                      (std::array{true, false, false, false, false, false, false, true}));
        }
        EXPECT_EQ(result.ComPort, result.found ? 3 : 2);
        EXPECT_FALSE(result.BasuModeActive);
        EXPECT_FALSE(control.is_open());
        EXPECT_LT(time.now(), Milliseconds(1500));
    }
}
