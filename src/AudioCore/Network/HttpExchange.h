#pragma once

#include "AudioCore/Network/HttpParsing.h"

#include <QObject>
#include <QUrl>

#include <optional>

class QTcpSocket;

namespace vantor {

/// One GET request over a connection of its own, and its answer, whose body is read piece by piece while a
/// bounded part of it waits. Qt's own client is not for radio: it refuses the status line of old servers
/// after four attempts, knows no bound for heads, and its end may wait for a server that sends too much.
///
/// Emits answered() once, readable() when there may be more to read, and ended() at the end.
class HttpExchange : public QObject {
    Q_OBJECT

  public:
    struct Answer {
        HttpParsing::Head head;
        QUrl url; ///< where redirections have led to

        [[nodiscard]] int status() const { return head.status; }
        [[nodiscard]] QByteArray header(const char *name) const { return head.headers.value(name); }
    };

    /// `headers`: lines with their ends. Redirections are followed to http and https, but not from https to
    /// http. A certificate that does not hold ends the exchange.
    HttpExchange(const QUrl &url, const QByteArray &headers, QObject *parent);
    ~HttpExchange() override;

    [[nodiscard]] const std::optional<Answer> &answer() const { return m_answer; }
    [[nodiscard]] bool hasEnded() const { return m_hasEnded || (m_answer && m_body.hasEnded()); }
    /// Of one that has ended: the body came whole, as far as can be known.
    [[nodiscard]] bool isComplete() const { return m_answer && m_body.isComplete(); }
    /// Why it has ended, for the log: in the system's words, or ours.
    [[nodiscard]] QString problem() const { return m_problem; }
    /// Whether read() has something to do.
    [[nodiscard]] bool hasBytes() const;
    /// Bytes of the body; perhaps none.
    [[nodiscard]] QByteArray read(qint64 most);

  Q_SIGNALS:
    void requestSent();
    void answered();
    void readable();
    void ended();

  private:
    void connectTo(const QUrl &url);
    void sendRequest();
    void takeBytes();
    void takeHead(const HttpParsing::Head &head);
    void follow(const QByteArray &location);
    void end();
    void fail(const QString &problem);

    const QByteArray m_headers;
    QUrl m_url;
    int m_redirections = 0;
    QTcpSocket *m_socket = nullptr; ///< a child
    QByteArray m_bytes;             ///< the head until it is whole, then what came with it
    std::optional<Answer> m_answer;
    HttpParsing::Body m_body;
    bool m_hasEnded = false;
    QString m_problem;
};

} // namespace vantor
