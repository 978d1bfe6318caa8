#include "AudioCore/Decoding/MediaContainer.h"

#include "AudioCore/AudioCoreError.h"
#include "AudioCore/Network/ProgressiveError.h"

#include <array>
#include <string_view>

extern "C" {
#include <libavutil/log.h>
#include <libavutil/mem.h>
}

namespace vantor {

static constexpr int ioBufferBytes = 64 * 1024;
// How far FFmpeg may read to find out what a file is. Radio comes no faster than it plays and begins in the
// middle of something, so that to be quite sure takes long; two seconds of it have to do.
static constexpr std::int64_t probeBytes = 4 * 1024 * 1024;
static constexpr std::int64_t liveProbeBytes = 32 * 1024;
static constexpr std::int64_t liveProbeTime = 2 * AV_TIME_BASE;

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

int MediaContainer::readData(void *opaque, std::uint8_t *buffer, int size) {
    auto &self = *static_cast<MediaContainer *>(opaque);
    try {
        const std::size_t count =
            self.m_input->read({reinterpret_cast<char *>(buffer), static_cast<std::size_t>(size)});
        return count == 0 ? AVERROR_EOF : static_cast<int>(count);
    } catch (...) { // not through the library, which is C
        self.m_failure = std::current_exception();
        return AVERROR_EXIT;
    }
}

std::int64_t MediaContainer::seekData(void *opaque, std::int64_t offset, int whence) {
    auto &self = *static_cast<MediaContainer *>(opaque);
    AudioInput &input = *self.m_input;
    try {
        const std::optional<qint64> size = input.size();
        switch (whence & ~AVSEEK_FORCE) {
        case AVSEEK_SIZE:
            return size.value_or(AVERROR(ENOSYS));
        case SEEK_CUR:
            offset += input.position();
            break;
        case SEEK_END:
            offset += size.value_or(0);
            break;
        default:
            break;
        }
        if (offset < 0)
            return AVERROR(EINVAL);
        if (input.seek(offset))
            return offset;
    } catch (...) {
        self.m_failure = std::current_exception();
        return AVERROR_EXIT;
    }
    self.m_refusedSeek = true;
    return AVERROR(ESPIPE);
}

void MediaContainer::throwFailure() const {
    if (m_failure)
        std::rethrow_exception(m_failure);
}

MediaContainer::MediaContainer(std::shared_ptr<AudioInput> input) : m_input(std::move(input)) {
    av_log_set_level(AV_LOG_QUIET); // broken files are ordinary input
    createIO();

    AVFormatContext *const format = avformat_alloc_context();
    format->pb = m_io.get();
    format->probesize = probeBytes;
    if (!m_input->size())
        format->max_analyze_duration = liveProbeTime;
    format->format_whitelist = av_strdup(allowedFormats().constData());
    format->io_open = refuseToOpen;
    format->protocol_whitelist = av_strdup("none"); // for formats that open files without asking io_open
    open(format);
}

void MediaContainer::createIO() {
    const bool hasPlaces = m_input->size().has_value();
    auto *const buffer = static_cast<unsigned char *>(av_malloc(ioBufferBytes));
    m_io.reset(avio_alloc_context(buffer, ioBufferBytes, 0, this, readData, nullptr,
                                  hasPlaces ? seekData : nullptr));
}

// A file whose end cannot be reached is opened as if it had no places at all, or formats that like to look at
// the end would read all that is before it. MP4 is the exception: it says at the start that its index is at
// the end, and then it is better to be told at once.
void MediaContainer::open(AVFormatContext *format) {
    const QByteArray name = m_input->name().toUtf8();
    const AVInputFormat *kind = nullptr;
    const bool hasPlaces = m_io->seekable != 0;
    if (!m_input->isSeekable()) {
        const auto most = static_cast<unsigned>(hasPlaces ? probeBytes : liveProbeBytes);
        if (av_probe_input_buffer2(m_io.get(), &kind, name.constData(), nullptr, 0, most) >= 0 &&
            !std::string_view(kind->name).starts_with("mov"))
            m_io->seekable = 0;
    }
    const int result = avformat_open_input(&format, name.constData(), kind, nullptr); // frees it
    if (result >= 0)
        m_format.reset(format);
    // FFmpeg forgets to end the check sum of an MP3 file's table when there is none, and then adds up
    // everything that it reads.
    m_io->update_checksum = nullptr;
    if (result < 0 || avformat_find_stream_info(format, nullptr) < 0)
        failOpening();
    throwFailure();
    if (hasPlaces && m_io->seekable == 0 && std::string_view(m_format->iformat->name) == "ogg")
        forgetDuration();
    m_io->seekable = hasPlaces ? AVIO_SEEKABLE_NORMAL : 0;
}

// Which Ogg says at the end only. What the library guesses from the codec's idea of a bit rate is far off.
void MediaContainer::forgetDuration() {
    m_format->duration = AV_NOPTS_VALUE;
    for (unsigned i = 0; i < m_format->nb_streams; ++i)
        m_format->streams[i]->duration = AV_NOPTS_VALUE;
}

void MediaContainer::failOpening() const {
    throwFailure();
    if (!m_input->isProgressive())
        throw AudioCoreError::openFailure();
    throw m_refusedSeek ? ProgressiveError::notStreamable() : ProgressiveError::cannotOpen();
}

} // namespace vantor
