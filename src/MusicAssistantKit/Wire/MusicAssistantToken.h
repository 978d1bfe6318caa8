#pragma once

#include <QDebug>
#include <QString>

namespace vantor {

/// The long-lived token that signs in at a server. Its descriptions never show it.
class MusicAssistantToken {
  public:
    /// `secret` as it was pasted: white space around it does not belong to it.
    explicit MusicAssistantToken(const QString &secret) : m_secret(secret.trimmed()) {}

    [[nodiscard]] bool isEmpty() const { return m_secret.isEmpty(); }
    /// The token itself, for the message that signs in and for the keychain; nothing else may have it.
    [[nodiscard]] const QString &reveal() const { return m_secret; }
    [[nodiscard]] static QString description() { return QStringLiteral("MusicAssistantToken(redacted)"); }

    bool operator==(const MusicAssistantToken &) const = default;

  private:
    QString m_secret;
};

inline QDebug operator<<(QDebug debug, const MusicAssistantToken &) {
    return debug << MusicAssistantToken::description();
}

} // namespace vantor
