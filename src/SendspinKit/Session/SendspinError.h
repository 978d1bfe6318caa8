#pragma once

#include <QByteArray>
#include <QDebug>
#include <QString>

#include <exception>

namespace vantor {

/// Why a connection as a Sendspin player failed or ended. A value.
class SendspinError : public std::exception {
  public:
    enum class Case { unauthorized, handshake, malformed, timeout, transport, roleRejected };

    /// `detail`: what the server said of it, for the log; may be empty.
    [[nodiscard]] static SendspinError unauthorized(const QString &detail = {});
    [[nodiscard]] static SendspinError handshake(const QString &detail);
    /// `type`: of the message, such as "server/hello"; empty when it has none that could be read.
    [[nodiscard]] static SendspinError malformed(const QString &detail, const QString &type);
    [[nodiscard]] static SendspinError timeout(const QString &detail);
    [[nodiscard]] static SendspinError transport(const QString &detail);
    [[nodiscard]] static SendspinError roleRejected();

    [[nodiscard]] Case errorCase() const { return m_case; }
    [[nodiscard]] const QString &detail() const { return m_detail; }
    [[nodiscard]] const QString &type() const { return m_type; } ///< of `malformed`
    /// The sentence for the user.
    [[nodiscard]] QString description() const;
    [[nodiscard]] const char *what() const noexcept override { return m_what.constData(); }

    bool operator==(const SendspinError &other) const;

  private:
    SendspinError(Case errorCase, const QString &detail, const QString &type = {});

    Case m_case;
    QString m_detail;
    QString m_type;
    QByteArray m_what;
};

QDebug operator<<(QDebug debug, const SendspinError &error);

} // namespace vantor
