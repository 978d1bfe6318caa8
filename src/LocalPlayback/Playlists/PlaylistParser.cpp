#include "LocalPlayback/Playlists/PlaylistParser.h"

#include "Platform/TextDecoding.h"
#include "Platform/TextLines.h"

#include <QHash>
#include <QXmlStreamReader>

#include <algorithm>
#include <array>
#include <map>
#include <optional>

namespace vantor::PlaylistParser {

namespace {

constexpr qsizetype longestTitle = 1024; // as of a tag; the rest is dropped

QString tidy(QStringView text) {
    return text.left(longestTitle).toString().simplified();
}

/// Adds a line unless the list is full. Whether to go on.
bool add(Result &result, Line line, size_t maxLines) {
    result.isCut = result.lines.size() >= maxLines;
    if (!result.isCut)
        result.lines.push_back(std::move(line));
    return !result.isCut;
}

/// The text after "#EXTINF:seconds attributes,". Attributes are name="value", and commas may stand in them.
QString titleOfExtInf(QStringView text) {
    bool quoted = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'"')
            quoted = !quoted;
        else if (text[i] == u',' && !quoted)
            return tidy(text.sliced(i + 1));
    }
    const qsizetype comma = text.indexOf(u',');
    return comma < 0 ? QString() : tidy(text.sliced(comma + 1));
}

Result parseM3U(const QString &text, size_t maxLines) {
    Result result;
    QString title;
    forEachLine(text, [&](QStringView line) {
        const QStringView trimmed = line.trimmed();
        if (trimmed.startsWith(u"#EXTINF:", Qt::CaseInsensitive))
            title = titleOfExtInf(trimmed.sliced(8));
        if (trimmed.isEmpty() || trimmed.startsWith(u'#'))
            return true;
        return add(result, {.location = trimmed.toString(), .title = std::exchange(title, {})}, maxLines);
    });
    return result;
}

Result parsePLS(const QString &text, size_t maxLines) {
    std::map<int, Line> numbered; // File2 may come before File1, Title1 before both
    Result result;
    forEachLine(text, [&](QStringView line) {
        const qsizetype equals = line.indexOf(u'=');
        if (equals < 0)
            return true;
        const QStringView key = line.first(equals).trimmed();
        const QStringView value = line.sliced(equals + 1).trimmed();
        const bool isFile = key.startsWith(u"file", Qt::CaseInsensitive);
        if (!isFile && !key.startsWith(u"title", Qt::CaseInsensitive))
            return true;
        bool ok = false;
        const int number = key.sliced(isFile ? 4 : 5).toInt(&ok);
        if (!ok)
            return true;
        if (numbered.size() >= maxLines && !numbered.contains(number))
            result.isCut = true;
        else if (isFile)
            numbered[number].location = value.toString();
        else
            numbered[number].title = tidy(value);
        return true;
    });
    for (auto &[number, line] : numbered) {
        if (!line.location.isEmpty())
            result.lines.push_back(std::move(line));
    }
    return result;
}

// QXmlStreamReader::skipCurrentElement() follows any depth, at a price in memory for each level.
void skipElement(QXmlStreamReader &xml) {
    constexpr int maxXMLDepth = 64;
    int depth = 1;
    while (depth > 0 && !xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement())
            ++depth;
        else if (xml.isEndElement())
            --depth;
        if (depth > maxXMLDepth)
            xml.raiseError();
    }
}

Line xspfTrack(QXmlStreamReader &xml) {
    Line line;
    line.isURI = true;
    while (xml.readNextStartElement()) {
        if (xml.name() == u"location" && line.location.isEmpty()) // others are the same music elsewhere
            line.location = xml.readElementText().trimmed();
        else if (xml.name() == u"title")
            line.title = tidy(xml.readElementText());
        else if (xml.name() == u"creator")
            line.artist = tidy(xml.readElementText());
        else
            skipElement(xml);
    }
    return line;
}

Result parseXSPF(const QByteArray &bytes, size_t maxLines) {
    Result result;
    QXmlStreamReader xml(bytes);
    if (!xml.readNextStartElement() || xml.name() != u"playlist") {
        result.isDamaged = true;
        return result;
    }
    while (!result.isCut && xml.readNextStartElement()) {
        if (xml.name() != u"trackList") {
            skipElement(xml);
            continue;
        }
        while (!result.isCut && xml.readNextStartElement()) {
            if (xml.name() != u"track") {
                skipElement(xml);
                continue;
            }
            Line line = xspfTrack(xml);
            if (!line.location.isEmpty() && !xml.hasError())
                add(result, std::move(line), maxLines);
        }
    }
    result.isDamaged = xml.hasError();
    return result;
}

/// Up to the first blank, and what is behind it.
std::pair<QStringView, QStringView> splitWord(QStringView text) {
    text = text.trimmed();
    const auto *const end = std::ranges::find_if(text, [](QChar c) { return c.isSpace(); });
    const QStringView word = text.first(end - text.begin());
    return {word, text.sliced(word.size()).trimmed()};
}

/// The rest of a cue line behind the command: without its quotes, or of a FILE line without the type.
QString cueValue(QStringView rest, bool hasType) {
    const qsizetype end = rest.startsWith(u'"') ? rest.indexOf(u'"', 1) : -1;
    if (end > 0)
        return rest.sliced(1, end - 1).toString();
    const qsizetype blank = hasType ? rest.lastIndexOf(u' ') : -1;
    return (blank < 0 ? rest : rest.first(blank)).trimmed().toString();
}

/// Of "mm:ss:ff", with 75 frames to a second.
std::optional<double> cueTime(QStringView text) {
    constexpr int framesPerSecond = 75;
    constexpr int mostMinutes = 100'000;
    const auto parts = text.split(u':');
    if (parts.size() != 3)
        return std::nullopt;
    std::array<int, 3> numbers{};
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        bool ok = false;
        numbers[i] = parts[static_cast<qsizetype>(i)].toInt(&ok);
        if (!ok || numbers[i] < 0 || numbers[i] >= (i == 0 ? mostMinutes : i == 1 ? 60 : framesPerSecond))
            return std::nullopt;
    }
    return numbers[0] * 60 + numbers[1] + static_cast<double>(numbers[2]) / framesPerSecond;
}

// A sheet lists the tracks inside each file. A file of one track comes as a whole; of several each is the
// part from its first index up to the next one's, unless their places make no sense.
class CueReader {
  public:
    explicit CueReader(size_t maxLines) : m_maxLines(maxLines) {}

    /// Whether to go on.
    bool take(QStringView line) {
        const auto [command, rest] = splitWord(line);
        const auto is = [word = command](QStringView name) {
            return word.compare(name, Qt::CaseInsensitive) == 0;
        };
        if (is(u"FILE"))
            return takeFile(cueValue(rest, true));
        if (is(u"TRACK"))
            return endTrack() && beginTrack(rest);
        if (is(u"INDEX") && m_track && splitWord(rest).first.toInt() == 1) {
            m_track->file = m_file; // the pause before a track may end the file before
            m_track->start = cueTime(splitWord(rest).second);
        } else if (is(u"TITLE")) {
            (m_track ? m_track->names : m_album).title = tidy(cueValue(rest, false));
        } else if (is(u"PERFORMER")) {
            (m_track ? m_track->names : m_album).artist = tidy(cueValue(rest, false));
        }
        return true;
    }

    Result finish() {
        if (!m_result.isCut)
            endTrack();
        for (const File &file : m_files) {
            if (isDivided(file))
                addTracks(file);
            else
                addWhole(file);
        }
        return std::move(m_result);
    }

  private:
    struct Names {
        QString artist;
        QString title;
    };
    struct Track {
        Names names;
        QString number;
        std::optional<size_t> file;
        std::optional<double> start;
    };
    struct File {
        QString location;
        std::vector<Track> tracks;
    };

    bool takeFile(const QString &location) {
        m_file.reset();
        if (location.isEmpty())
            return true;
        const auto known = m_numbers.constFind(location); // some sheets name the file again for every track
        if (known != m_numbers.constEnd()) {
            m_file = *known;
            return true;
        }
        if (!hasRoom())
            return false;
        m_file = m_files.size();
        m_numbers.insert(location, m_files.size());
        m_files.push_back({location, {}});
        return true;
    }

    bool beginTrack(QStringView rest) {
        m_track = Track{.names = {.artist = m_album.artist, .title = {}},
                        .number = QString::number(splitWord(rest).first.toInt()),
                        .file = m_file,
                        .start = {}};
        return true;
    }

    bool endTrack() {
        const std::optional<Track> track = std::exchange(m_track, std::nullopt);
        if (!track || !track->file)
            return true;
        std::vector<Track> &tracks = m_files[*track->file].tracks;
        if (!tracks.empty() && !hasRoom()) // the first one is the file's line
            return false;
        tracks.push_back(*track);
        return true;
    }

    bool hasRoom() {
        m_result.isCut = m_lines >= m_maxLines;
        m_lines += m_result.isCut ? 0 : 1;
        return !m_result.isCut;
    }

    static bool isDivided(const File &file) {
        const auto isOutOfOrder = [](const Track &track, const Track &next) {
            return !track.start || !next.start || *track.start >= *next.start;
        };
        return file.tracks.size() > 1 && !file.location.contains(u"://") &&
               std::ranges::adjacent_find(file.tracks, isOutOfOrder) == file.tracks.end();
    }

    void addTracks(const File &file) {
        for (size_t i = 0; i < file.tracks.size(); ++i) {
            const Track &track = file.tracks[i];
            TrackRange range{.start = *track.start, .end = {}};
            if (i + 1 < file.tracks.size())
                range.end = file.tracks[i + 1].start;
            Line line{.location = file.location, .title = track.names.title};
            if (line.title.isEmpty())
                line.title = QStringLiteral("Track ") + track.number;
            line.artist = track.names.artist;
            line.album = m_album.title;
            line.range = range;
            m_result.lines.push_back(std::move(line));
        }
    }

    /// Under the title of its track when it has only one, under the album's otherwise.
    void addWhole(const File &file) {
        const bool isOne = file.tracks.size() == 1 && !file.tracks.front().names.title.isEmpty();
        const Names &names = isOne ? file.tracks.front().names : m_album;
        Line line{.location = file.location, .title = names.title};
        line.artist = names.artist;
        m_result.lines.push_back(std::move(line));
    }

    Result m_result;
    size_t m_maxLines;
    size_t m_lines = 0; ///< that the files and their tracks will make at most
    std::vector<File> m_files;
    QHash<QString, size_t> m_numbers;
    std::optional<size_t> m_file;
    Names m_album;
    std::optional<Track> m_track;
};

Result parseCue(const QString &text, size_t maxLines) {
    CueReader reader(maxLines);
    forEachLine(text, [&](QStringView line) { return reader.take(line); });
    return reader.finish();
}

} // namespace

Format formatOf(const QByteArray &bytes, const QString &extension) {
    const QByteArray start = bytes.first(std::min<qsizetype>(bytes.size(), 64)).trimmed().toLower();
    const QByteArrayView word = start.startsWith("\xEF\xBB\xBF") ? QByteArrayView(start).sliced(3) : start;
    if (word.startsWith("#extm3u"))
        return Format::m3u;
    if (word.startsWith("[playlist]"))
        return Format::pls;
    if (word.startsWith("<?xml") || word.startsWith("<playlist"))
        return Format::xspf;
    if (extension == QLatin1String("pls"))
        return Format::pls;
    if (extension == QLatin1String("xspf"))
        return Format::xspf;
    return extension == QLatin1String("cue") ? Format::cue : Format::m3u;
}

Result parse(const QByteArray &bytes, Format format, size_t maxLines) {
    if (format == Format::xspf)
        return parseXSPF(bytes, maxLines);
    if (bytes.contains('\0')) // no text: a picture or music under a list's name
        return {.lines = {}, .isDamaged = true};
    const QString text = TextDecoding::lenient(bytes);
    switch (format) {
    case Format::pls:
        return parsePLS(text, maxLines);
    case Format::cue:
        return parseCue(text, maxLines);
    case Format::m3u:
    case Format::xspf:
        break;
    }
    return parseM3U(text, maxLines);
}

} // namespace vantor::PlaylistParser
