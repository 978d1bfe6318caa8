#pragma once

#include "tests/Support/FakeSendspin/FakeNetwork.h"
#include "tests/Support/FakeSendspin/MadeStream.h"

#include <QJsonObject>
#include <QObject>

#include <optional>

namespace vantor {

class FakeSendspin;

/// How a server reaches one of its clients.
struct FakeLink {
    std::function<void(const QString &)> sendText;
    std::function<void(const QByteArray &)> sendBinary;
    std::function<void(int code, const QString &reason)> close;
};

/// One client of a FakeSendspin, from its connection to its end.
class FakeSendspinPeer : public QObject {
  public:
    FakeSendspinPeer(FakeSendspin &server, FakeLink link);

    // From the link.
    void takeText(const QString &text);

    /// After the network's delay.
    void send(const QString &type, const QJsonObject &payload);
    void sendText(const QString &text);
    void sendBinary(const QByteArray &data);
    void close(int code, const QString &reason);

    /// Goes on with the stream as far as the client's buffer takes it.
    void pump();
    /// The stream was replaced. A client that knows the old one's format with that number goes on with it as
    /// the first of the new one, without another announcement.
    void restart(std::optional<int> formatThatStays);
    void endStream();

    [[nodiscard]] const QJsonObject &hello() const { return m_hello; } ///< what came with "client/hello"
    [[nodiscard]] const QJsonObject &state() const { return m_state; } ///< the last "client/state"
    [[nodiscard]] int timeRequests() const { return m_timeRequests; }
    [[nodiscard]] std::int64_t mostBuffered() const { return m_mostBuffered; } ///< bytes
    [[nodiscard]] std::int64_t chunksSent() const { return m_chunksSent; }
    [[nodiscard]] std::int64_t nextChunk() const { return m_nextChunk; }

  private:
    void handle(const QString &text);
    void greet();
    void answerTime(const QJsonObject &payload, std::int64_t receivedAt);
    void announce(int formatNumber);
    [[nodiscard]] bool takesStream() const;
    [[nodiscard]] bool fits(const MadeStream::Chunk &chunk);

    FakeSendspin &m_server;
    const FakeLink m_link;
    DelayedPipe m_toServer;
    DelayedPipe m_toClient;
    bool m_signedIn = false;
    QJsonObject m_hello;
    QJsonObject m_state;
    int m_timeRequests = 0;

    struct Buffered {
        std::int64_t end;
        std::int64_t bytes;
    };
    std::deque<Buffered> m_buffer; ///< what the client holds, as a server sees it
    std::int64_t m_bufferedBytes = 0;
    std::int64_t m_mostBuffered = 0;
    std::int64_t m_chunksSent = 0;
    std::int64_t m_nextChunk = -1;  ///< −1: to be found
    std::optional<int> m_announced; ///< the number of the format
    bool m_hasLeft = false;         ///< the stream that plays, because it was not available
};

} // namespace vantor
