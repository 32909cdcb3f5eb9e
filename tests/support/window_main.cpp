#include <QApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    // Without a window manager, an X server gives no window the focus, and tests that run side by
    // side would take it from one another. Each gets a screen of its own.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
