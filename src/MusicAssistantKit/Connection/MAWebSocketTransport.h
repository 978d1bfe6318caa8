#pragma once

#include "MusicAssistantKit/Connection/MusicAssistantError.h"

#include <QObject>
#include <QUrl>

#include <memory>
#include <optional>
#include <variant>

namespace vantor {

/// What comes over a WebSocket.
struct MAWebSocketFrame {
    struct Text {
        QString text;
        bool operator==(const Text &) const = default;
    };
    struct Closed {
        std::optional<int> code;
        QString reason; ///< in the server's words; may be empty
        bool operator==(const Closed &) const = default;
    };
    std::variant<Text, Closed> content;
};

/// The longest frame that is taken from a server when nothing else is said, in bytes; a longer one ends the
/// connection before memory is taken for it.
inline constexpr qint64 maxFrameBytes = 64 << 20;

/// One WebSocket connection, from its opening to its end. Lives in the thread that made it, which has an
/// event loop.
///
/// After `failed` or a `Closed` frame nothing follows. Destroying it drops the connection without a word.
class MAWebSocketTransport : public QObject {
    Q_OBJECT
  public:
    virtual void open() = 0;
    /// At once, as far as the network takes it.
    virtual void send(const QString &text) = 0;
    virtual void ping() = 0;
    /// Says goodbye to the other side; no signal follows.
    virtual void close() = 0;

  Q_SIGNALS:
    void opened();
    void received(const vantor::MAWebSocketFrame &frame);
    void receivedBinary(const QByteArray &data);
    void ponged();
    void failed(const vantor::MATransportError &error);
};

/// Makes the transport of each new connection.
class MAWebSocketTransports {
  public:
    virtual ~MAWebSocketTransports() = default;
    /// `url`: ws or wss.
    [[nodiscard]] virtual std::unique_ptr<MAWebSocketTransport> make(const QUrl &url) = 0;
};

/// The real one: QWebSocket with the system's certificates. No redirection is followed and no wrong
/// certificate accepted.
class QtWebSocketTransports : public MAWebSocketTransports {
  public:
    explicit QtWebSocketTransports(qint64 longestFrame = maxFrameBytes) : m_longestFrame(longestFrame) {}
    [[nodiscard]] std::unique_ptr<MAWebSocketTransport> make(const QUrl &url) override;

  private:
    const qint64 m_longestFrame;
};

} // namespace vantor
