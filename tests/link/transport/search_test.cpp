#include "link/made_up_decoder.h"
#include "link/serial/interface_search.h"

#include <gtest/gtest.h>

using namespace made_up;
using namespace link_serial;

// COM2 is a BASUL, COM4 a KORLI; COM1 cannot be opened, COM3 is mute.
TEST(Interface_Search_Test, a_korli_wins_over_a_basul_and_ports_that_are_held_are_passed_over) {
    struct Row {
        bool basul, korli;
        int found; ///< 0: none
        int ComPort;
        const char* last_line;
    };
    for (const Row& row : {Row{true, true, 4, 4, "Search Programmer"},
                           Row{true, false, 2, 2, "BASUL on Comm 2 found"},
                           Row{false, true, 4, 4, "Search Programmer"},
                           Row{false, false, 0, 1, "No Programmer, select 1"}}) {
        SCOPED_TRACE(row.found);
        timing::Virtual_Time time;
        serial::Fake_SComm control(time);
        timing::Interruption stop;
        Log log;
        control.ports[1].refusal = serial::Error(serial::Failure::denied, "COM1", "no rights");
        control.ports[3].description = QStringLiteral("mute");
        if (row.basul)
            control.ports[2].on_rts = [&](bool on) {
                if (on) control.answer({0x85}, Milliseconds(2));
            };
        std::string text;
        control.ports[4].on_byte = [&](Byte byte) {
            text += static_cast<char>(byte);
            if (row.korli && text.ends_with("\rBASU_EIN\r"))
                control.answer({'?', 'O', 'K', '\r'}, Milliseconds(2));
        };
        const auto result = Interface_Search(control, time, stop, log).run({1, 2, 3, 4});
        EXPECT_EQ(result.found ? result.found->port : 0, row.found);
        if (result.found) {
            EXPECT_EQ(result.found->kind, row.korli ? Port_Kind::korli : Port_Kind::basul);
        }
        EXPECT_EQ(result.ComPort, row.ComPort);
        EXPECT_EQ(result.BasuModeActive, row.korli);
        EXPECT_EQ(log.lines.last(), QString::fromLatin1(row.last_line));
        EXPECT_EQ(log.lines.contains(QStringLiteral("No KORLI/FENTO found, search BASUL")),
                  !row.korli);
        if (row.found == 2) {
            EXPECT_EQ(result.status,
                      (std::array<bool, 8>{true, false, true, false, false, false, false, true}));
        } else if (row.korli) {
            EXPECT_TRUE(control.rts_changes().empty()) << "no second pass";
        }
        EXPECT_FALSE(control.is_open());
        EXPECT_FALSE(control.rts());
        if (row.found == 0) {
            EXPECT_FALSE(Interface_Search(control, time, stop, log).run({}).ComPort);
            EXPECT_EQ(log.lines.last(), QStringLiteral("No Programmer"));
        }
    }
}
