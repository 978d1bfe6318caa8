#include "LocalPlayback/LocalPlaybackError.h"

namespace vantor {

LocalPlaybackError::LocalPlaybackError(Case errorCase, const QString &reason)
    : m_case(errorCase), m_reason(reason), m_what(description().toUtf8()) {}

LocalPlaybackError LocalPlaybackError::unknownSourceKind() {
    return LocalPlaybackError(Case::unknownSourceKind);
}

LocalPlaybackError LocalPlaybackError::queueTooLarge() {
    return LocalPlaybackError(Case::queueTooLarge);
}

LocalPlaybackError LocalPlaybackError::queueWrite(const QString &reason) {
    return LocalPlaybackError(Case::queueWrite, reason);
}

LocalPlaybackError LocalPlaybackError::playlistTooLarge() {
    return LocalPlaybackError(Case::playlistTooLarge);
}

LocalPlaybackError LocalPlaybackError::playlistWrite(const QString &reason) {
    return LocalPlaybackError(Case::playlistWrite, reason);
}

QString LocalPlaybackError::description() const {
    switch (m_case) {
    case Case::unknownSourceKind:
        return QStringLiteral("unknown source kind");
    case Case::queueTooLarge:
        return QStringLiteral("The queue is too long to be saved.");
    case Case::queueWrite:
        return QStringLiteral("The queue could not be saved: ") + m_reason;
    case Case::playlistTooLarge:
        return QStringLiteral("The playlist is too long to be saved.");
    case Case::playlistWrite:
        return QStringLiteral("The playlist could not be saved: ") + m_reason;
    }
    return {};
}

} // namespace vantor
