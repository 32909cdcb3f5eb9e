#include "platform/desktop/end_signals.h"

#include <QCoreApplication>
#include <csignal>
#include <gtest/gtest.h>

TEST(End_Signals, reach_the_event_loop_once_each_and_not_the_program) {
    int argc = 1;
    char name[] = "test";
    char* argv[] = {name, nullptr};
    QCoreApplication application(argc, argv);
    int ends = 0;
    const desktop::End_Signals signals([&] { ++ends; });
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        const int before = ends;
        raise(signal);
        EXPECT_EQ(ends, before) << "acted inside the handler";
        while (ends == before) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        EXPECT_EQ(ends, before + 1);
    }
}
