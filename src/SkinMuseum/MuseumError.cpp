#include "SkinMuseum/MuseumError.h"

namespace vantor {

namespace {

constexpr qsizetype maxMessage = 300; // characters
constexpr qsizetype longestWord = 60;

/// Cut behind a word, when there is one that ends not long before the limit.
QString shortened(const QString &message) {
    if (message.size() <= maxMessage)
        return message;
    const auto isBlank = [](QChar c) { return c.isSpace(); };
    qsizetype end = maxMessage;
    while (end > maxMessage - longestWord && !isBlank(message[end]))
        --end;
    if (!isBlank(message[end]))
        end = message[maxMessage].isLowSurrogate() ? maxMessage - 1 : maxMessage;
    return message.first(end).trimmed() + QChar(u'…');
}

} // namespace

MuseumError::MuseumError(Case errorCase, int status, const QString &message)
    : m_case(errorCase), m_status(status), m_message(message), m_what(description().toUtf8()) {}

MuseumError MuseumError::http(int status) {
    return MuseumError(Case::http, status);
}

MuseumError MuseumError::graphQL(const QString &message) {
    return MuseumError(Case::graphQL, 0, shortened(message));
}

MuseumError MuseumError::notSaved(const QString &message) {
    return MuseumError(Case::notSaved, 0, message);
}

QString MuseumError::description() const {
    switch (m_case) {
    case Case::http:
        return QStringLiteral("The Winamp Skin Museum returned an error (HTTP %1).").arg(m_status);
    case Case::graphQL:
        return QStringLiteral("The Winamp Skin Museum reported an error: ") + m_message;
    case Case::offline:
        return QStringLiteral("The Winamp Skin Museum can't be reached. Check your internet connection.");
    case Case::decoding:
        return QStringLiteral("The Winamp Skin Museum sent a response Vantor doesn't understand.");
    case Case::checksumMismatch:
        return QStringLiteral("The download was corrupted.");
    case Case::tooLarge:
        return QStringLiteral("The skin is too large to download.");
    case Case::noFolder:
        return QStringLiteral("Choose a skins folder to download skins into.");
    case Case::notSaved:
        break;
    }
    return QStringLiteral("The skin could not be saved: ") + m_message;
}

} // namespace vantor
