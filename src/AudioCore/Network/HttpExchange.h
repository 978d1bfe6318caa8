#pragma once

#include <QByteArray>
#include <QHash>
#include <QNetworkRequest>
#include <QObject>
#include <QUrl>

#include <optional>

class QIODevice;
class QNetworkAccessManager;
class QNetworkReply;
class QTcpSocket;

namespace vantor {

/// One GET request and its answer, whose body is read piece by piece while a bounded part of it waits. Emits
/// answered() once, readable() when there may be more to read, and ended() last; nothing follows deletion.
class HttpExchange : public QObject {
    Q_OBJECT

  public:
    struct Answer {
        int status = 0;
        QUrl url;                              ///< where redirections have led to
        QHash<QByteArray, QByteArray> headers; ///< names in lower case
    };

    /// Redirections are followed to http and from there or https to https, five at most.
    HttpExchange(QNetworkAccessManager &network, const QNetworkRequest &request, QObject *parent);
    /// An http server that answers "ICY 200 OK", as only radio servers of the first kind do.
    static HttpExchange *withOldServer(const QNetworkRequest &request, QObject *parent);
    ~HttpExchange() override;

    [[nodiscard]] const std::optional<Answer> &answer() const { return m_answer; }
    [[nodiscard]] bool isRequestSent() const { return m_isRequestSent; }
    [[nodiscard]] bool hasEnded() const { return m_hasEnded; }
    /// Of one that has ended: the body came whole, as far as can be known.
    [[nodiscard]] bool isComplete() const { return m_isComplete; }
    /// Of one that has ended: what answered does not speak HTTP as it is now.
    [[nodiscard]] bool isForeign() const { return m_isForeign; }
    /// Empty when nothing is there now.
    [[nodiscard]] QByteArray read(qint64 most);
    [[nodiscard]] bool hasBytes() const;

  Q_SIGNALS:
    void requestSent();
    void answered();
    void readable();
    void ended();

  private:
    explicit HttpExchange(QObject *parent) : QObject(parent) {}
    void takeHeaders();
    void takeReplyEnd();
    void openSocket(const QNetworkRequest &request);
    void takeSocketBytes();
    void takeSocketEnd();

    QNetworkReply *m_reply = nullptr;
    QTcpSocket *m_socket = nullptr;
    QByteArray m_head; ///< of an old server, until it is whole
    QUrl m_url;
    std::optional<Answer> m_answer;
    bool m_isRequestSent = false;
    bool m_hasEnded = false;
    bool m_isComplete = false;
    bool m_isForeign = false;
};

} // namespace vantor
