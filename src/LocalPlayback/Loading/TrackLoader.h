#pragma once

#include "AudioCore/Queue/SkippedFile.h"
#include "AudioCore/Queue/Track.h"

#include <QStringList>

#include <functional>
#include <stop_token>
#include <vector>

/// Expands files, folders, playlists and web addresses into tracks. Worker threads.
namespace vantor::TrackLoader {

struct Batch {
    std::vector<Track> tracks;
    std::vector<SkippedFile> skipped;
};

/// Glob patterns of the audio files that folders give ("*.flac" …).
[[nodiscard]] const QStringList &audioPatterns();

/// Folders are walked in name order and give the files whose extension is an audio one; playlists give what
/// they name, and their titles to files that have none; other files are tried whatever they are called.
/// Addresses are taken unheard, but for lists there and for what may be one, which are asked for. Delivers
/// the first track at once and the others several at a time, on the calling thread, and ends with a delivery
/// that may be empty. Once told to stop it returns soon and delivers no more.
void load(const QList<QUrl> &urls, const std::stop_token &stop, const std::function<void(Batch)> &deliver);

} // namespace vantor::TrackLoader
