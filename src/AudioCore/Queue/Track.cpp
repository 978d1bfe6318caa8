#include "AudioCore/Queue/Track.h"

#include "AudioCore/AudioCoreError.h"
#include "AudioCore/Queue/FileMetadata.h"

#include <QFileInfo>
#include <QHash>

namespace vantor {

Track Track::file(const QUrl &url) {
    if (!url.isLocalFile())
        throw AudioCoreError::unresolvableSource();
    const QFileInfo file(url.toLocalFile());
    const FileMetadata metadata = FileMetadata::read(file.filePath());
    Track track;
    track.id = QUuid::createUuid();
    track.title = metadata.title;
    if (track.title.isEmpty())
        track.title = file.completeBaseName();
    if (track.title.isEmpty()) // nothing but an extension
        track.title = file.fileName();
    track.artist = metadata.artist;
    if (!metadata.album.isEmpty())
        track.album = metadata.album;
    track.duration = metadata.duration;
    if (metadata.bitrate > 0)
        track.bitrate = metadata.bitrate;
    if (metadata.sampleRate > 0)
        track.sampleRate = metadata.sampleRate;
    if (metadata.channels > 0)
        track.channels = metadata.channels;
    track.source = url;
    return track;
}

size_t qHash(const Track::Source &source, size_t seed) noexcept {
    return std::visit([&](const auto &value) { return qHash(value, seed); }, source);
}

// Entries have ids of their own; equal tracks have equal ids.
size_t qHash(const Track &track, size_t seed) noexcept {
    return qHash(track.id, seed);
}

} // namespace vantor
