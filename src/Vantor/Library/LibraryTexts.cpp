#include "Vantor/Library/LibraryTexts.h"

#include <QObject>

#include <cmath>

namespace vantor {

QString LibraryTexts::count(MediaKind kind, int count) {
    const bool isOne = count == 1;
    switch (kind) {
    case MediaKind::artist:
        return isOne ? QObject::tr("1 artist") : QObject::tr("%L1 artists").arg(count);
    case MediaKind::album:
        return isOne ? QObject::tr("1 album") : QObject::tr("%L1 albums").arg(count);
    case MediaKind::track:
        return isOne ? QObject::tr("1 track") : QObject::tr("%L1 tracks").arg(count);
    case MediaKind::playlist:
        return isOne ? QObject::tr("1 playlist") : QObject::tr("%L1 playlists").arg(count);
    case MediaKind::radio:
        break;
    }
    return isOne ? QObject::tr("1 radio station") : QObject::tr("%L1 radio stations").arg(count);
}

QString LibraryTexts::runningTime(double seconds) {
    if (seconds < 59.5)
        return QObject::tr("%1 s").arg(std::max(1L, std::lround(seconds)));
    const int minutes = static_cast<int>(std::lround(std::min(seconds, 1e8) / 60));
    if (minutes < 60)
        return QObject::tr("%1 min").arg(minutes);
    return QObject::tr("%1 h %2 min").arg(minutes / 60).arg(minutes % 60);
}

QString LibraryTexts::joined(QStringList facts) {
    facts.removeAll(QString());
    return facts.join(QStringLiteral("  ·  "));
}

} // namespace vantor
