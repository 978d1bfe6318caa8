#pragma once

#include "AudioCore/Graph/PlayerNode.h"

#include <QMap>
#include <QString>

#include <sys/types.h>

#include <span>
#include <string>
#include <vector>

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

/// Writes an audio file with the ffmpeg program; the name's extension (wav, aiff, flac, mp3, ogg, opus, m4a,
/// mka) chooses format and codec. Throws std::runtime_error.
void writeAudioFile(const QString &path, const AudioFileContent &content = {});

/// Encodes a sound (16 bits per sample where the format is lossless). `options` go to the ffmpeg program.
void encodeAudioFile(const QString &path, std::span<const StereoFrame> sound, int sampleRate,
                     const std::vector<std::string> &options = {});

/// Starts a program, whose complaints go nowhere. Throws std::runtime_error.
[[nodiscard]] pid_t spawn(const std::vector<std::string> &words);

} // namespace vantor
