#pragma once

#include <QJsonObject>
#include <QString>

#include <array>
#include <optional>

namespace vantor {

/// What a library item is.
enum class MediaKind { artist, album, track, playlist, radio };

inline constexpr std::array allMediaKinds{MediaKind::artist, MediaKind::album, MediaKind::track,
                                          MediaKind::playlist, MediaKind::radio};

[[nodiscard]] QString rawValue(MediaKind kind);
/// None for a word that names no kind.
[[nodiscard]] std::optional<MediaKind> mediaKindFromRawValue(const QString &text);

/// Names one item of a music library. `rawValue` is the source's own identifier and opaque to everyone else.
struct MediaID {
    MediaKind kind = MediaKind::track;
    QString rawValue;

    /// "album:123".
    [[nodiscard]] QString description() const;

    /// The keys "kind" and "rawValue".
    [[nodiscard]] QJsonObject toJson() const;
    /// None unless both keys hold a text and the kind is a known one.
    [[nodiscard]] static std::optional<MediaID> fromJson(const QJsonObject &object);

    bool operator==(const MediaID &) const = default;
};

[[nodiscard]] size_t qHash(const MediaID &id, size_t seed = 0) noexcept;

} // namespace vantor
