#include "MusicBackendKit/MediaID.h"

namespace vantor {

QString rawValue(MediaKind kind) {
    switch (kind) {
    case MediaKind::artist:
        return QStringLiteral("artist");
    case MediaKind::album:
        return QStringLiteral("album");
    case MediaKind::track:
        return QStringLiteral("track");
    case MediaKind::playlist:
        return QStringLiteral("playlist");
    case MediaKind::radio:
        return QStringLiteral("radio");
    }
    return {};
}

std::optional<MediaKind> mediaKindFromRawValue(const QString &text) {
    for (const MediaKind kind : allMediaKinds) {
        if (rawValue(kind) == text)
            return kind;
    }
    return std::nullopt;
}

QString MediaID::description() const {
    return vantor::rawValue(kind) + QLatin1Char(':') + rawValue;
}

QJsonObject MediaID::toJson() const {
    return {{QStringLiteral("kind"), vantor::rawValue(kind)}, {QStringLiteral("rawValue"), rawValue}};
}

std::optional<MediaID> MediaID::fromJson(const QJsonObject &object) {
    const auto kind = mediaKindFromRawValue(object.value(QLatin1String("kind")).toString());
    const QJsonValue rawValue = object.value(QLatin1String("rawValue"));
    if (!kind || !rawValue.isString())
        return std::nullopt;
    return MediaID{*kind, rawValue.toString()};
}

} // namespace vantor
