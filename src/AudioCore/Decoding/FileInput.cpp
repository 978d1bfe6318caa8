#include "AudioCore/Decoding/FileInput.h"

#include "AudioCore/AudioCoreError.h"

#include <QFileInfo>

#include <array>
#include <string_view>

extern "C" {
#include <libavutil/log.h>
#include <libavutil/mem.h>
}

namespace vantor {

static constexpr int ioBufferBytes = 64 * 1024;
// How far FFmpeg may read to find out what a file is.
static constexpr std::int64_t probeBytes = 4 * 1024 * 1024;

// Formats that are lists of other files or addresses. FFmpeg would try for seconds to open those.
static bool isList(std::string_view format) {
    static constexpr std::array lists{"concat", "dash", "hls", "imf", "rtsp", "sdp"};
    return std::any_of(lists.begin(), lists.end(), [&](const char *list) { return format == list; });
}

// All others, in FFmpeg's own notation.
static const QByteArray &allowedFormats() {
    static const QByteArray names = [] {
        QByteArray joined;
        void *place = nullptr;
        while (const AVInputFormat *format = av_demuxer_iterate(&place)) {
            if (!isList(format->name))
                joined += QByteArray(format->name) + ',';
        }
        return joined;
    }();
    return names;
}

static int refuseToOpen(AVFormatContext *, AVIOContext **, const char *, int, AVDictionary **) {
    return AVERROR(EPERM);
}

int FileInput::readData(void *opaque, std::uint8_t *buffer, int size) {
    const qint64 count = static_cast<QFile *>(opaque)->read(reinterpret_cast<char *>(buffer), size);
    if (count < 0)
        return AVERROR(EIO);
    return count == 0 ? AVERROR_EOF : static_cast<int>(count);
}

std::int64_t FileInput::seekData(void *opaque, std::int64_t offset, int whence) {
    QFile &file = *static_cast<QFile *>(opaque);
    switch (whence & ~AVSEEK_FORCE) {
    case AVSEEK_SIZE:
        return file.size();
    case SEEK_CUR:
        offset += file.pos();
        break;
    case SEEK_END:
        offset += file.size();
        break;
    default:
        break;
    }
    return offset >= 0 && file.seek(offset) ? offset : AVERROR(EINVAL);
}

FileInput::FileInput(const QString &path) : m_file(path) {
    av_log_set_level(AV_LOG_QUIET); // broken files are ordinary input
    // Not a pipe or device either: opening one may wait for ever.
    if (!QFileInfo(path).isFile() || !m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        throw AudioCoreError::openFailure();
    auto *const buffer = static_cast<unsigned char *>(av_malloc(ioBufferBytes));
    m_io.reset(avio_alloc_context(buffer, ioBufferBytes, 0, &m_file, readData, nullptr, seekData));

    AVFormatContext *format = avformat_alloc_context();
    format->pb = m_io.get();
    format->probesize = probeBytes;
    format->format_whitelist = av_strdup(allowedFormats().constData());
    format->io_open = refuseToOpen;
    format->protocol_whitelist = av_strdup("none"); // for formats that open files without asking io_open
    const QByteArray name = QFileInfo(path).fileName().toUtf8(); // its ending helps to tell formats apart
    if (avformat_open_input(&format, name.constData(), nullptr, nullptr) < 0) // frees it
        throw AudioCoreError::openFailure();
    m_format.reset(format);
    if (avformat_find_stream_info(format, nullptr) < 0)
        throw AudioCoreError::openFailure();
}

} // namespace vantor
