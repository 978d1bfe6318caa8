#pragma once

#include <QMap>
#include <QString>

namespace vantor {

/// The sound and the tags of a made audio file.
struct AudioFileContent {
    double frequency = 440; ///< Hz, of a sine in phase on every channel; 0: silence
    double seconds = 1;
    int sampleRate = 44100; ///< Opus takes 48000 only
    int channels = 2;
    double amplitude = 0.5;
    QMap<QString, QString> tags = {}; ///< under FFmpeg's names: "title", "artist", "album" …
};

/// Writes an audio file for a test; the name's extension (wav, aiff, flac, mp3, ogg, opus, m4a, mka) chooses
/// format and codec. Throws std::runtime_error.
void writeAudioFile(const QString &path, const AudioFileContent &content = {});

} // namespace vantor
