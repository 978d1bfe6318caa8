#include <QDeadlineTimer>
#include <QGuiApplication>

#include <gtest/gtest.h>

// Every test program runs inside a Qt application without a display, so that event loops, timers and images
// work as they do in the player.
int main(int argc, char **argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    QGuiApplication application(argc, argv);
    const int status = RUN_ALL_TESTS();
    // Coroutines whose streams or timers went with the last test end in the event loop; left waiting, they
    // would count as leaks.
    for (const QDeadlineTimer end(100); !end.hasExpired();)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    return status;
}
