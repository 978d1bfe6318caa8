#include "Vantor/Mpris/SessionBus.h"

#include <QByteArray>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstring>

namespace vantor::SessionBus {

namespace {

constexpr int patience = 2000; // ms: a bus that is well answers within one

/// The socket that the address names, as the system wants it; empty for every other kind of address.
QByteArray socketName(const QByteArray &address) {
    const QByteArray first = address.split(';').first();
    for (const QByteArray &part : first.mid(first.indexOf(':') + 1).split(',')) {
        const QByteArray value = QByteArray::fromPercentEncoding(part.mid(part.indexOf('=') + 1));
        if (part.startsWith("path="))
            return value;
        if (part.startsWith("abstract="))
            return '\0' + value;
    }
    return {};
}

/// Whether somebody listens and says nothing to the words with which every client begins.
bool isSilent(const QByteArray &name) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (name.isEmpty() || static_cast<std::size_t>(name.size()) >= sizeof address.sun_path)
        return false;
    std::memcpy(address.sun_path, name.constData(), static_cast<std::size_t>(name.size()));
    const auto size =
        static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + static_cast<std::size_t>(name.size()));
    const int connection = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    bool silent = false;
    if (connect(connection, reinterpret_cast<const sockaddr *>(&address), size) == 0) {
        const QByteArray hello =
            QByteArray(1, '\0') + "AUTH EXTERNAL " + QByteArray::number(getuid()).toHex() + "\r\n";
        pollfd answer{.fd = connection, .events = POLLIN, .revents = 0};
        silent = send(connection, hello.constData(), static_cast<std::size_t>(hello.size()), MSG_NOSIGNAL) ==
                     hello.size() &&
                 poll(&answer, 1, patience) == 0;
    } else {
        silent = errno == EAGAIN; // so many wait already
    }
    close(connection);
    return silent;
}

} // namespace

void avoidIfSilent() {
    QByteArray address = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    if (address.isEmpty())
        address = "unix:path=" + qgetenv("XDG_RUNTIME_DIR") + "/bus";
    if (isSilent(socketName(address)))
        qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
}

} // namespace vantor::SessionBus
