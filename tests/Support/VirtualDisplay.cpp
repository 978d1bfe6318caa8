#include "tests/Support/VirtualDisplay.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QRasterWindow>
#include <QTemporaryFile>
#include <QThread>

#include <sys/prctl.h>

#include <csignal>
#include <stdexcept>

namespace vantor {

namespace {

constexpr int patience = 20'000; // milliseconds

void waitFor(const char *what, const std::function<bool()> &condition) {
    const QDeadlineTimer deadline(patience);
    while (!condition()) {
        if (deadline.hasExpired())
            throw std::runtime_error(std::string("waited in vain for ") + what);
        QThread::msleep(5);
    }
}

QByteArray outputOf(const QString &command) {
    QProcess process;
    process.startCommand(command);
    if (!process.waitForFinished(patience) || process.exitCode() != 0)
        throw std::runtime_error(command.toStdString() + ": " + process.readAllStandardError().toStdString());
    return process.readAllStandardOutput();
}

} // namespace

VirtualDisplay::VirtualDisplay(QSize size) {
    QTemporaryFile number; // of the display, as the server chooses it
    if (!number.open())
        throw std::runtime_error("no temporary file");
    QProcess server;
    server.setProgram(QStringLiteral("Xvfb"));
    server.setArguments(
        QProcess::splitCommand(QStringLiteral("-displayfd 1 -terminate -nolisten tcp -screen 0 %1x%2x24")
                                   .arg(size.width())
                                   .arg(size.height())));
    server.setStandardOutputFile(number.fileName());
    server.setStandardErrorFile(QProcess::nullDevice());
    if (!server.startDetached())
        throw std::runtime_error("Xvfb is not installed (scripts/install-deps.sh test)");
    QByteArray text;
    waitFor("Xvfb", [&] {
        number.seek(0);
        text = number.readAll();
        return text.endsWith('\n');
    });
    qputenv("DISPLAY", ":" + text.trimmed());
    qunsetenv("WAYLAND_DISPLAY");
    qputenv("QT_QPA_PLATFORM", "xcb");
}

void VirtualDisplay::setScreens(const QList<QRect> &screens) {
    for (qsizetype i = 0; i < screens.size(); ++i) {
        const QRect &at = screens[i];
        if (m_screens.value(i) == at)
            continue;
        // The first takes the output over, which otherwise remains a screen of its own.
        outputOf(QStringLiteral("xrandr --setmonitor part-%1 %2/%2x%3/%3+%4+%5 %6")
                     .arg(i)
                     .arg(at.width())
                     .arg(at.height())
                     .arg(at.x())
                     .arg(at.y())
                     .arg(i == 0 ? QStringLiteral("screen") : QStringLiteral("none")));
    }
    for (qsizetype i = screens.size(); i < m_screens.size(); ++i)
        outputOf(QStringLiteral("xrandr --delmonitor part-%1").arg(i));
    m_screens = screens;
}

void VirtualDisplay::setWindowManager(bool runs) {
    if (runs == (m_windowManager != nullptr))
        return;
    if (!runs) {
        m_windowManager->terminate();
        m_windowManager->waitForFinished(patience);
        m_windowManager.reset();
        return;
    }
    m_windowManager = std::make_unique<QProcess>();
    m_windowManager->setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGTERM); });
    m_windowManager->start(QStringLiteral("openbox"), {});
    if (!m_windowManager->waitForStarted(patience))
        throw std::runtime_error("openbox is not installed (scripts/install-deps.sh test)");
    // It may overlook what asks to be shown while it starts: ask until it answers.
    waitFor("the window manager", [] {
        QRasterWindow probe;
        probe.resize(10, 10);
        probe.show();
        const QDeadlineTimer soon(200);
        while (!probe.isExposed() && !soon.hasExpired())
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        return outputOf(QStringLiteral("xprop -id %1 WM_STATE").arg(probe.winId())).contains("Normal");
    });
}

} // namespace vantor
