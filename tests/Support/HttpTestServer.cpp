#include "tests/Support/HttpTestServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

namespace vantor {

static constexpr int patienceStep = 20; // ms between looks at whether the server stops

HttpTestServer::HttpTestServer(Handler handler)
    : m_handler(std::move(handler)), m_socket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto *const where = reinterpret_cast<sockaddr *>(&address);
    if (bind(m_socket, where, size) != 0 || listen(m_socket, 16) != 0 ||
        getsockname(m_socket, where, &size) != 0)
        throw std::runtime_error("no test server");
    m_port = ntohs(address.sin_port);
    m_thread = std::thread([this] { run(); });
}

HttpTestServer::~HttpTestServer() {
    m_stopping = true;
    m_thread.join();
    for (std::thread &connection : m_connections)
        connection.join();
    close(m_socket);
}

QUrl HttpTestServer::url(const char *path) const {
    return QUrl(QStringLiteral("http://127.0.0.1:%1").arg(m_port) + QLatin1String(path));
}

std::vector<HttpTestServer::Request> HttpTestServer::requests() const {
    const std::lock_guard lock(m_mutex);
    return m_requests;
}

static bool waitFor(int socket, short what, const std::atomic<bool> &stopping) {
    while (!stopping) {
        pollfd entry{.fd = socket, .events = what, .revents = 0};
        if (poll(&entry, 1, patienceStep) > 0)
            return true;
    }
    return false;
}

void HttpTestServer::run() {
    for (int number = 0; waitFor(m_socket, POLLIN, m_stopping); ++number) {
        const int connection = accept4(m_socket, nullptr, nullptr, SOCK_CLOEXEC);
        m_connections.emplace_back([this, connection, number] { serve(connection, number); });
    }
}

void HttpTestServer::serve(int socket, int number) {
    QByteArray head;
    while (!head.contains("\r\n\r\n") && waitFor(socket, POLLIN, m_stopping)) {
        char bytes[4096];
        const ssize_t count = recv(socket, bytes, sizeof bytes, 0);
        if (count <= 0)
            break;
        head.append(bytes, count);
    }
    const QList<QByteArray> lines = head.split('\n');
    if (lines.first().startsWith("GET ")) {
        Request request{
            .number = number, .path = lines.first().split(' ').value(1), .headers = {}, .rangeStart = {}};
        for (const QByteArray &line : lines.mid(1)) {
            const qsizetype colon = line.indexOf(':');
            request.headers.insert(line.left(colon).toLower(), line.mid(colon + 1).trimmed());
        }
        const QByteArray range = request.headers.value("range");
        if (range.startsWith("bytes="))
            request.rangeStart = range.mid(6).chopped(1).toLongLong();
        {
            const std::lock_guard lock(m_mutex);
            m_requests.push_back(request);
        }
        Connection connection(socket, m_stopping);
        m_handler(request, connection);
    }
    close(socket);
}

bool HttpTestServer::Connection::send(const QByteArray &bytes) {
    qsizetype sent = 0;
    while (sent < bytes.size() && waitFor(m_socket, POLLOUT, m_stopping)) {
        const auto rest = static_cast<std::size_t>(bytes.size() - sent);
        const ssize_t count = ::send(m_socket, bytes.constData() + sent, rest, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count < 0 && errno != EAGAIN)
            return false;
        sent += std::max<ssize_t>(count, 0);
    }
    return sent == bytes.size();
}

void HttpTestServer::Connection::stall() {
    char byte = 0;
    while (waitFor(m_socket, POLLIN, m_stopping) && recv(m_socket, &byte, 1, 0) > 0) {
    }
}

bool HttpTestServer::Connection::pause(int milliseconds) const {
    for (int waited = 0; waited < milliseconds && !m_stopping; waited += patienceStep)
        std::this_thread::sleep_for(std::chrono::milliseconds(std::min(patienceStep, milliseconds)));
    return !m_stopping;
}

void HttpTestServer::sendFile(const Request &request, Connection &connection, const QByteArray &body,
                              const HttpFileOptions &options) {
    const qint64 size = options.claimedSize < 0 ? body.size() : options.claimedSize;
    const qint64 start = options.ranges ? std::min(request.rangeStart.value_or(0), size) : 0;
    QByteArray head = "HTTP/1.1 200 OK\r\n";
    if (options.ranges && request.rangeStart)
        head = "HTTP/1.1 206 Partial Content\r\nContent-Range: bytes " + QByteArray::number(start) + '-' +
               QByteArray::number(size - 1) + '/' + QByteArray::number(size) + "\r\n";
    head += "Content-Length: " + QByteArray::number(size - start) + "\r\nConnection: close\r\n" +
            options.headers + "\r\n";
    QByteArray rest = body.mid(start);
    if (options.closeAfter >= 0)
        rest.truncate(options.closeAfter);
    if (options.stallAfter >= 0)
        rest.truncate(options.stallAfter);
    if (connection.send(head) && connection.send(rest) && options.stallAfter >= 0)
        connection.stall();
}

QByteArray HttpTestServer::withMetadata(const QByteArray &sound, int interval,
                                        const std::vector<QByteArray> &blocks) {
    QByteArray stream;
    std::size_t next = 0;
    for (qsizetype at = 0; at < sound.size(); at += interval) {
        const QByteArray piece = sound.mid(at, interval);
        stream += piece;
        if (piece.size() < interval)
            break;
        QByteArray block = next < blocks.size() ? blocks[next++] : QByteArray();
        block.append((16 - block.size() % 16) % 16, '\0');
        stream += static_cast<char>(block.size() / 16) + block;
    }
    return stream;
}

} // namespace vantor
