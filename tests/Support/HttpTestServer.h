#pragma once

#include <QByteArray>
#include <QHash>
#include <QUrl>

#include <atomic>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace vantor {

/// How a file is sent.
struct HttpFileOptions {
    bool ranges = true;
    qint64 closeAfter = -1; ///< bytes of the body; −1: all
    qint64 stallAfter = -1; ///< as well
    qint64 claimedSize = -1;
    QByteArray headers = {}; ///< more of them, each with its line end
};

/// A web server on this machine that misbehaves as a test wants. Every request has a connection and a thread
/// of its own, on which the handler writes what it likes; the connection closes when the handler returns.
class HttpTestServer {
  public:
    struct Request {
        int number = 0; ///< from 0, of all requests
        QByteArray path;
        QHash<QByteArray, QByteArray> headers; ///< names in lower case
        std::optional<qint64> rangeStart;
    };

    class Connection {
      public:
        Connection(int socket, const std::atomic<bool> &stopping) : m_socket(socket), m_stopping(stopping) {}
        /// False when nobody listens any more.
        bool send(const QByteArray &bytes);
        /// Says nothing until the server stops or the other side goes away.
        void stall();
        [[nodiscard]] bool pause(int milliseconds) const;

      private:
        int m_socket;
        const std::atomic<bool> &m_stopping;
    };

    using Handler = std::function<void(const Request &, Connection &)>;

    explicit HttpTestServer(Handler handler);
    ~HttpTestServer();
    HttpTestServer(const HttpTestServer &) = delete;
    HttpTestServer &operator=(const HttpTestServer &) = delete;

    [[nodiscard]] QUrl url(const char *path = "/song") const;
    [[nodiscard]] std::vector<Request> requests() const;

    /// The usual answer to a request for a file, and its faults.
    static void sendFile(const Request &request, Connection &connection, const QByteArray &body,
                         const HttpFileOptions &options = {});
    /// A radio server's sound with a block of metadata after every `interval` bytes.
    [[nodiscard]] static QByteArray withMetadata(const QByteArray &sound, int interval,
                                                 const std::vector<QByteArray> &blocks);

  private:
    void run();
    void serve(int socket, int number);

    const Handler m_handler;
    int m_socket = -1;
    quint16 m_port = 0;
    std::atomic<bool> m_stopping{false};
    mutable std::mutex m_mutex;
    std::vector<Request> m_requests;
    std::vector<std::thread> m_connections;
    std::thread m_thread; ///< last: it uses the others
};

} // namespace vantor
