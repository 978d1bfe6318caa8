#include "tests/Vantor/X11/TestDisplay.h"

#include <QApplication>

#include <gtest/gtest.h>

vantor::VirtualDisplay &testDisplay() {
    static vantor::VirtualDisplay display(QSize(1600, 900));
    return display;
}

/// The message bus's library keeps something of its own, which the leak checker counts as ours.
extern "C" const char *__lsan_default_suppressions() {
    return "leak:libdbus-1.so";
}

// These tests place real windows on a display of their own.
int main(int argc, char **argv) {
    testing::InitGoogleTest(&argc, argv);
    if (GTEST_FLAG_GET(list_tests))
        return RUN_ALL_TESTS();
    testDisplay();
    QApplication application(argc, argv);
    const int status = RUN_ALL_TESTS();
    testDisplay().setWindowManager(false);
    return status;
}
