#include "AudioCore/Queue/FileMetadata.h"

#include "AudioCore/AudioCoreError.h"
#include "AudioCore/Decoding/FileInput.h"
#include "AudioCore/Decoding/MediaContainer.h"
#include "Platform/NativePath.h"

#include <taglib/fileref.h>
#include <taglib/tpropertymap.h>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <sys/stat.h>
#include <unistd.h>

namespace vantor {

namespace {

constexpr qsizetype longestText = 1024; ///< of a tag; the rest is dropped

QString tidy(const QString &text) {
    return text.left(longestText).simplified();
}

QString joined(const TagLib::PropertyMap &properties, const char *key) {
    QStringList values;
    for (const TagLib::String &value : properties[key]) {
        const QString text = tidy(QString::fromStdWString(value.toWString()));
        if (!text.isEmpty() && !values.contains(text))
            values << text;
    }
    return values.join(QLatin1String(", ")).left(longestText);
}

void readTags(const QString &path, FileMetadata &metadata) {
    const TagLib::FileRef file(NativePath::bytes(path).constData());
    if (file.isNull())
        return;
    if (file.tag()) {
        const TagLib::PropertyMap properties = file.file()->properties();
        metadata.title = joined(properties, "TITLE");
        metadata.artist = joined(properties, "ARTIST");
        if (metadata.artist.isEmpty())
            metadata.artist = joined(properties, "ALBUMARTIST");
        metadata.album = joined(properties, "ALBUM");
        metadata.trackNumber = joined(properties, "TRACKNUMBER");
        metadata.discNumber = joined(properties, "DISCNUMBER");
    }
    if (const TagLib::AudioProperties *audio = file.audioProperties()) {
        metadata.duration = std::max(audio->lengthInMilliseconds(), 0) / 1000.0;
        metadata.bitrate = std::max(audio->bitrate(), 0);
        metadata.sampleRate = std::max(audio->sampleRate(), 0);
        metadata.channels = std::max(audio->channels(), 0);
    }
}

/// Fills in what `metadata` lacks. False when there is no sound that could be decoded. Throws
/// AudioCoreError::openFailure for what the decoder's library does not know.
bool readStreams(const QString &path, FileMetadata &metadata) {
    const MediaContainer file(std::make_shared<FileInput>(path));
    AVFormatContext *const input = &file.format();
    const int index = av_find_best_stream(input, AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
    if (index < 0)
        return false;
    const AVStream *stream = input->streams[index];
    const AVCodecParameters *audio = stream->codecpar;
    if (!avcodec_find_decoder(audio->codec_id) || audio->sample_rate <= 0)
        return false;

    const auto fill = [](auto &value, auto found) {
        if (value <= 0 && found > 0)
            value = found;
    };
    if (input->duration != AV_NOPTS_VALUE)
        fill(metadata.duration, static_cast<double>(input->duration) / AV_TIME_BASE);
    const int64_t bits = audio->bit_rate > 0 ? audio->bit_rate : input->bit_rate;
    fill(metadata.bitrate, static_cast<int>(std::min<int64_t>(bits / 1000, INT_MAX)));
    fill(metadata.sampleRate, static_cast<double>(audio->sample_rate));
    fill(metadata.channels, audio->ch_layout.nb_channels);

    const auto fillText = [&](QString &text, const char *key) {
        for (const AVDictionary *tags : {input->metadata, stream->metadata}) {
            const AVDictionaryEntry *tag = av_dict_get(tags, key, nullptr, 0);
            if (text.isEmpty() && tag)
                text = tidy(QString::fromUtf8(tag->value));
        }
    };
    fillText(metadata.title, "title");
    fillText(metadata.artist, "artist");
    fillText(metadata.artist, "album_artist");
    fillText(metadata.album, "album");
    fillText(metadata.trackNumber, "track");
    fillText(metadata.discNumber, "disc");
    return true;
}

} // namespace

FileMetadata FileMetadata::read(const QString &path) {
    const QByteArray native = NativePath::bytes(path);
    struct stat status;
    if (stat(native.constData(), &status) == 0 && !S_ISREG(status.st_mode))
        throw AudioCoreError::openFailure(); // folders; also pipes, on which opening would wait
    if (access(native.constData(), R_OK) != 0)
        throw AudioCoreError::readFailure();
    FileMetadata metadata;
    readTags(path, metadata);
    const bool isKnown =
        metadata.duration > 0 && metadata.bitrate > 0 && metadata.sampleRate > 0 && metadata.channels > 0;
    // An untagged file may hold texts of an older kind (those of AIFF, say) that only the decoder reads.
    if (isKnown && !metadata.title.isEmpty())
        return metadata;
    try {
        if (!readStreams(path, metadata) && !isKnown)
            throw AudioCoreError::openFailure();
    } catch (const AudioCoreError &) {
        if (!isKnown)
            throw;
    }
    return metadata;
}

} // namespace vantor
