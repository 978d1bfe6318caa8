#include "Vantor/App/QuitSignals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <csignal>

namespace vantor {

namespace {

constexpr std::array quitSignals{SIGTERM, SIGINT, SIGHUP};
std::array<int, 2> pipeEnds{-1, -1}; // what a handler may use is what it finds here

void takeSignal(int) {
    const char byte = 0;
    [[maybe_unused]] const auto written = write(pipeEnds[1], &byte, 1);
}

void setHandler(void (*handler)(int), int flags) {
    struct sigaction action{};
    action.sa_handler = handler;
    action.sa_flags = flags;
    for (const int signal : quitSignals)
        sigaction(signal, &action, nullptr);
}

} // namespace

QuitSignals::QuitSignals() {
    if (pipe2(pipeEnds.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return; // they end the program as they always did
    auto *const notifier = new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [notifier] {
        notifier->setEnabled(false);
        QCoreApplication::exit();
    });
    setHandler(&takeSignal, static_cast<int>(SA_RESETHAND) | SA_RESTART);
}

QuitSignals::~QuitSignals() {
    setHandler(SIG_DFL, 0);
    for (int &end : pipeEnds)
        close(std::exchange(end, -1));
}

} // namespace vantor
