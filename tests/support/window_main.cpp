#include <QApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    // Without a window manager, an X server gives no window the focus, and tests that run side by
    // side would take it from one another. Each gets a screen of its own.
    // A test that brings a display with a window manager says so to the program it starts on it.
    qputenv("QT_QPA_PLATFORM",
            qEnvironmentVariableIsSet("CV_SETS_TEST_DISPLAY") ? "xcb" : "offscreen");
    QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
