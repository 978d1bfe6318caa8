#pragma once

#include "MusicBackendKit/MediaID.h"

#include <QByteArray>
#include <QList>

class QMimeData;

namespace vantor {

/// Library items that are dragged between lists, playlists and the queue. A value; any thread.
struct MediaIDTransfer {
    static constexpr const char *contentType = "co.kelvane.vantor.media-id";
    /// What is larger is not read.
    static constexpr qsizetype maxBytes = 32 << 20;

    QList<MediaID> ids;

    [[nodiscard]] QByteArray toJson() const;
    /// None for what toJson() cannot have written.
    [[nodiscard]] static std::optional<MediaIDTransfer> fromJson(const QByteArray &bytes);

    void write(QMimeData &data) const;
    /// None when there is nothing under our content type, or nothing readable.
    [[nodiscard]] static std::optional<MediaIDTransfer> read(const QMimeData &data);

    bool operator==(const MediaIDTransfer &) const = default;
};

[[nodiscard]] size_t qHash(const MediaIDTransfer &transfer, size_t seed = 0) noexcept;

} // namespace vantor
