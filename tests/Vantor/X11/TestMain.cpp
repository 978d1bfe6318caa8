#include "tests/Vantor/X11/TestDisplay.h"

#include <QApplication>

#include <gtest/gtest.h>

vantor::VirtualDisplay &testDisplay() {
    static vantor::VirtualDisplay display(QSize(1600, 900));
    return display;
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
