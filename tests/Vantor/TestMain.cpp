#include <QApplication>
#include <QDeadlineTimer>

#include <gtest/gtest.h>

// Windows need the widgets' application object; otherwise as the other test programs' main.
int main(int argc, char **argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    const int status = RUN_ALL_TESTS();
    // Coroutines whose streams or timers went with the last test end in the event loop; left waiting, they
    // would count as leaks.
    for (const QDeadlineTimer end(100); !end.hasExpired();)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    return status;
}
