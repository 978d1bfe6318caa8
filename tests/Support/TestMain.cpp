#include <QGuiApplication>

#include <gtest/gtest.h>

// Every test program runs inside a Qt application without a display, so that event loops, timers and images
// work as they do in the player.
int main(int argc, char **argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
