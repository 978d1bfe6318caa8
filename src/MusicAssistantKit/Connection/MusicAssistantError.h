#pragma once

#include <QByteArray>
#include <QDebug>
#include <QString>

#include <exception>

namespace vantor {

/// Why a socket or a request failed.
struct MATransportError {
    enum class Kind {
        network,          ///< refused, unknown host, broken off, wrong certificate, no answer in HTTP …
        securityRequired, ///< nothing was sent: the address is too public for plain http
    };
    Kind kind = Kind::network;
    QString detail; ///< for the log

    bool operator==(const MATransportError &) const = default;
};

/// Failures of a connection to a server and of the commands on it.
class MusicAssistantError : public std::exception {
  public:
    enum class Case {
        transport,
        schemaUnsupported,
        server,
        timeout,
        decoding,
        invalidURL,
        handshakeFailed,
        serverMismatch,
        tokenRejected,
        unauthenticated,
        disconnected,
        notConnected,
    };

    [[nodiscard]] static MusicAssistantError transport(const MATransportError &error);
    /// `server`: its schema; `minSupported`: the oldest schema that it still speaks.
    [[nodiscard]] static MusicAssistantError schemaUnsupported(qint64 server, qint64 minSupported);
    [[nodiscard]] static MusicAssistantError server(qint64 code, const QString &details);
    [[nodiscard]] static MusicAssistantError timeout(const QString &command);
    [[nodiscard]] static MusicAssistantError decoding(const QString &command, const QString &detail);
    [[nodiscard]] static MusicAssistantError invalidURL();
    [[nodiscard]] static MusicAssistantError handshakeFailed();
    [[nodiscard]] static MusicAssistantError serverMismatch();
    [[nodiscard]] static MusicAssistantError tokenRejected();
    [[nodiscard]] static MusicAssistantError unauthenticated();
    [[nodiscard]] static MusicAssistantError disconnected();
    [[nodiscard]] static MusicAssistantError notConnected();

    [[nodiscard]] Case errorCase() const { return m_case; }
    /// Of `server`: its number and its own words, which may be in any language.
    [[nodiscard]] qint64 code() const { return m_code; }
    [[nodiscard]] const QString &details() const { return m_details; }
    /// Of `transport`.
    [[nodiscard]] const MATransportError &transportError() const { return m_transport; }
    /// Whether the same attempt would fail again however often it is made.
    [[nodiscard]] bool isPermanent() const;

    /// The sentence for the user.
    [[nodiscard]] const QString &description() const { return m_description; }
    /// For the log: the case with its command, detail or number.
    [[nodiscard]] QString logText() const;
    [[nodiscard]] const char *what() const noexcept override { return m_what.constData(); }

    bool operator==(const MusicAssistantError &other) const;

  private:
    MusicAssistantError(Case errorCase, const QString &description);

    Case m_case;
    qint64 m_code = 0; ///< of `server`; of `schemaUnsupported` the server's schema
    QString m_command; ///< of `timeout` and `decoding`
    QString m_details; ///< of `server` and `decoding`
    MATransportError m_transport;
    QString m_description;
    QByteArray m_what;
};

QDebug operator<<(QDebug debug, const MusicAssistantError &error);

} // namespace vantor
