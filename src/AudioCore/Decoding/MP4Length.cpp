#include "AudioCore/Decoding/MP4Length.h"

#include <algorithm>

namespace vantor {

namespace {

// More boxes side by side than any file has that is not made to keep a reader busy.
constexpr int mostBoxes = 4096;

struct Span {
    std::int64_t begin = 0;
    std::int64_t end = 0;
};

struct Clock {
    std::uint32_t ticksPerSecond = 0;
    std::int64_t duration = 0; ///< in ticks
};

struct Edit {
    std::int64_t duration = 0; ///< in the movie's ticks
    std::int64_t start = 0;    ///< in the track's ticks
};

class BoxReader {
  public:
    explicit BoxReader(AVIOContext &io) : m_io(io), m_start(avio_tell(&io)) {}
    ~BoxReader() { avio_seek(&m_io, m_start, SEEK_SET); }
    BoxReader(const BoxReader &) = delete;
    BoxReader &operator=(const BoxReader &) = delete;

    [[nodiscard]] Span file() const { return {0, std::max<std::int64_t>(avio_size(&m_io), 0)}; }
    [[nodiscard]] std::optional<Span> find(const Span &parent, const char *type, std::int64_t from = 0);
    [[nodiscard]] std::optional<std::uint32_t> trackID(const Span &header);
    [[nodiscard]] std::optional<Clock> clock(const Span &header);
    [[nodiscard]] std::optional<Edit> onlyEdit(const Span &list);

  private:
    bool open(const Span &box, std::int64_t least) {
        return box.end - box.begin >= least && avio_seek(&m_io, box.begin, SEEK_SET) == box.begin;
    }

    AVIOContext &m_io;
    const std::int64_t m_start;
};

std::optional<Span> BoxReader::find(const Span &parent, const char *type, std::int64_t from) {
    std::int64_t place = std::max(parent.begin, from);
    for (int box = 0; box < mostBoxes && place + 8 <= parent.end; ++box) {
        if (avio_seek(&m_io, place, SEEK_SET) != place)
            break;
        std::int64_t size = avio_rb32(&m_io);
        const std::uint32_t found = avio_rl32(&m_io);
        std::int64_t header = 8;
        if (size == 1) {
            size = static_cast<std::int64_t>(avio_rb64(&m_io));
            header = 16;
        } else if (size == 0) {
            size = parent.end - place;
        }
        if (size < header || size > parent.end - place)
            break;
        if (found == MKTAG(type[0], type[1], type[2], type[3]))
            return Span{place + header, place + size};
        place += size;
    }
    return std::nullopt;
}

std::optional<std::uint32_t> BoxReader::trackID(const Span &header) {
    if (!open(header, 24))
        return std::nullopt;
    const bool isLong = avio_r8(&m_io) == 1;
    avio_skip(&m_io, isLong ? 19 : 11);
    return avio_rb32(&m_io);
}

// The movie's and the track's headers begin alike.
std::optional<Clock> BoxReader::clock(const Span &header) {
    if (!open(header, 20))
        return std::nullopt;
    const bool isLong = avio_r8(&m_io) == 1;
    avio_skip(&m_io, isLong ? 19 : 11);
    const std::uint32_t rate = avio_rb32(&m_io);
    const auto duration =
        isLong ? static_cast<std::int64_t>(avio_rb64(&m_io)) : std::int64_t{avio_rb32(&m_io)};
    if (rate == 0 || duration <= 0)
        return std::nullopt;
    return Clock{rate, duration};
}

std::optional<Edit> BoxReader::onlyEdit(const Span &list) {
    if (!open(list, 20))
        return std::nullopt;
    const bool isLong = avio_r8(&m_io) == 1;
    avio_skip(&m_io, 3);
    if (avio_rb32(&m_io) != 1)
        return std::nullopt;
    const std::uint64_t duration = isLong ? avio_rb64(&m_io) : avio_rb32(&m_io);
    const std::uint64_t start = isLong ? avio_rb64(&m_io) : avio_rb32(&m_io);
    if (start > INT32_MAX || duration > INT64_MAX)
        return std::nullopt;
    return Edit{static_cast<std::int64_t>(duration), static_cast<std::int64_t>(start)};
}

std::optional<Span> trackOf(BoxReader &reader, const Span &movie, int id) {
    std::optional<Span> track = reader.find(movie, "trak");
    while (track) {
        const std::optional<Span> header = reader.find(*track, "tkhd");
        if (header && reader.trackID(*header) == static_cast<std::uint32_t>(id))
            break;
        track = reader.find(movie, "trak", track->end);
    }
    return track;
}

// What the edit list leaves of the track, in the track's ticks.
std::optional<std::int64_t> editedLength(BoxReader &reader, const Span &movie, const Span &track,
                                         const Clock &sound) {
    const std::optional<Span> edits = reader.find(track, "edts");
    const std::optional<Span> list = edits ? reader.find(*edits, "elst") : std::nullopt;
    if (!list)
        return sound.duration;
    const std::optional<Edit> edit = reader.onlyEdit(*list);
    const std::optional<Span> header = reader.find(movie, "mvhd");
    const std::optional<Clock> whole = header ? reader.clock(*header) : std::nullopt;
    if (!edit || !whole)
        return std::nullopt;
    // Rounded to the movie's clock it is the same; much shorter is a cut that somebody made.
    const std::int64_t length = sound.duration - edit->start;
    if (av_rescale(edit->duration + 1, sound.ticksPerSecond, whole->ticksPerSecond) < length)
        return std::nullopt;
    return length;
}

} // namespace

std::optional<std::int64_t> lengthInMP4(AVFormatContext &format, const AVStream &stream) {
    BoxReader reader(*format.pb);
    const std::optional<Span> movie = reader.find(reader.file(), "moov");
    const std::optional<Span> track = movie ? trackOf(reader, *movie, stream.id) : std::nullopt;
    const std::optional<Span> media = track ? reader.find(*track, "mdia") : std::nullopt;
    const std::optional<Span> header = media ? reader.find(*media, "mdhd") : std::nullopt;
    const std::optional<Clock> sound = header ? reader.clock(*header) : std::nullopt;
    const auto rate = static_cast<std::uint32_t>(std::max(stream.codecpar->sample_rate, 0));
    if (!sound || rate == 0 || (rate % sound->ticksPerSecond != 0 && sound->ticksPerSecond % rate != 0))
        return std::nullopt;
    const std::optional<std::int64_t> length = editedLength(reader, *movie, *track, *sound);
    if (!length || *length <= 0)
        return std::nullopt;
    return av_rescale(*length, rate, sound->ticksPerSecond);
}

} // namespace vantor
