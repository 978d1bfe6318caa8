#pragma once

#include <QHash>
#include <QJsonArray>
#include <QJsonObject>
#include <QSslConfiguration>
#include <QTcpServer>
#include <QUrl>

#include <functional>
#include <optional>

namespace vantor {

/// An online museum of skins as far as a client sees one, with the faults that a test asks for. Encrypted
/// when it has a configuration for that. One thread, that of the event loop.
class FakeMuseum : public QTcpServer {
  public:
    enum class Fault {
        none,
        limitsRate,   ///< 429 with `retryAfter`
        fails,        ///< 500
        reportsError, ///< a whole answer that tells of an error
        garbles,      ///< bytes that mean nothing
        truncates,    ///< the connection ends in the middle of the body
        claimsMore,   ///< a length greater than what is sent, and then silence
        isEndless,    ///< without a length, and never an end
        redirects,    ///< to `redirectTarget`
        hangs,        ///< not a word
        wrongContent, ///< well formed, but not what was asked for
    };
    enum class Kind { page, screenshot, archive };

    struct Request {
        QByteArray method;
        QString path;
        QHash<QByteArray, QByteArray> headers; ///< names in lower case
        QByteArray body;
        bool isWellFormed = false; ///< as a question to the museum
    };
    struct Content {
        int count = 200;
        std::function<QString(int)> name;
        std::function<QByteArray(int)> archive;
    };
    static constexpr int nsfwEvery = 10; ///< the last of so many

    explicit FakeMuseum(Content content);
    ~FakeMuseum() override;

    // To be changed at any time.
    std::optional<QSslConfiguration> tls; ///< of connections to come
    QHash<Kind, Fault> faults;
    int faultsLeft = -1; ///< after so many all is well again; −1: never
    QByteArray retryAfter = "1";
    QUrl redirectTarget;
    int latency = 0; ///< milliseconds
    std::function<void(QJsonArray &rows)> onRows;

    /// On this machine only; 0 for any free port.
    bool open(quint16 port = 0);
    /// Takes nobody and drops everybody, until it is opened at the same port again.
    void goOffline();
    [[nodiscard]] QUrl url(const QString &path = QStringLiteral("/graphql")) const;

    [[nodiscard]] QString md5(int number);
    [[nodiscard]] const QList<Request> &requests() const { return m_requests; }
    [[nodiscard]] qsizetype count(Kind kind) const;
    /// How many were answered at the same time, at most.
    [[nodiscard]] int mostAtOnce() const { return m_mostAtOnce; }

    [[nodiscard]] static QByteArray screenshot(int number);

  protected:
    void incomingConnection(qintptr handle) override;

  private:
    struct Answer {
        int status = 200;
        QByteArray body = {};
        QByteArray headers = {}; ///< each with its line end
        qsizetype sent = -1;     ///< bytes of the body; −1: all
        bool closes = false;
        bool hasLength = true;
    };

    void read(QTcpSocket *socket);
    void answer(QTcpSocket *socket, const Request &request);
    void send(QTcpSocket *socket, const Answer &answer);
    [[nodiscard]] static Kind kindOf(const Request &request);
    [[nodiscard]] Fault takeFault(Kind kind);
    [[nodiscard]] Answer faulty(Fault fault, Kind kind, Answer whole) const;
    [[nodiscard]] Answer whole(const Request &request);
    [[nodiscard]] QByteArray page(const QByteArray &question);
    [[nodiscard]] QJsonObject row(int number);
    [[nodiscard]] QList<int> found(const QString &text, bool includesNSFW);

    Content m_content;
    quint16 m_port = 0;
    QHash<QTcpSocket *, QByteArray> m_received;
    QHash<int, QString> m_md5s;
    QStringList m_names;
    QList<Request> m_requests;
    int m_atOnce = 0;
    int m_mostAtOnce = 0;
};

} // namespace vantor
