#include "LocalPlayback/Loading/AddressLoader.h"

#include "AudioCore/Network/ProgressiveInput.h"
#include "LocalPlayback/Loading/TrackLoader.h"
#include "LocalPlayback/Playlists/PlaylistParser.h"

#include <QFileInfo>

namespace vantor::AddressLoader {

namespace {

constexpr QLatin1String tooLarge("This playlist file is too large.");
constexpr QLatin1String damaged("This playlist file is damaged.");
constexpr QLatin1String tooMany("This playlist is too long; its end was left out.");
constexpr QLatin1String circular("This playlist contains itself.");
constexpr QLatin1String tooDeep("This playlist lies too deep inside other playlists.");
constexpr QLatin1String tooManyLists("Too many playlists are inside each other.");
constexpr QLatin1String unsupportedAddress("This kind of address is not supported.");

QString endingOf(const QUrl &url) {
    return QFileInfo(url.fileName()).suffix().toLower();
}

bool hasEnding(const QUrl &url, const QStringList &patterns) {
    return patterns.contains(QStringLiteral("*.") + endingOf(url));
}

bool isListType(const QByteArray &contentType) {
    static constexpr std::array types{
        "application/mpegurl",   "application/pls+xml",  "application/vnd.apple.mpegurl",
        "application/x-mpegurl", "application/xspf+xml", "application/x-scpls",
        "audio/mpegurl",         "audio/scpls",          "audio/vnd.apple.mpegurl",
        "audio/x-mpegurl",       "audio/x-scpls"};
    return std::ranges::any_of(types, [&](const char *type) { return contentType == type; });
}

/// Lists of the pieces of one programme.
bool isSegmentList(const QByteArray &bytes) {
    return bytes.contains("#EXT-X-TARGETDURATION") || bytes.contains("#EXT-X-STREAM-INF");
}

class Loader {
  public:
    explicit Loader(const std::stop_token &stop) : m_stop(stop) {}

    void take(const PlaylistEntry &address, bool asks) {
        const bool isList = hasEnding(address.url, PlaylistFile::patterns());
        if (!isList && (!asks || hasEnding(address.url, TrackLoader::audioPatterns())))
            return add(address);
        if (isList && m_open.contains(address.url))
            return skip(address.url, circular);
        if (isList && m_open.size() > PlaylistFile::maxDepth)
            return skip(address.url, tooDeep);
        if (m_lists >= maxLists)
            return skip(address.url, tooManyLists);
        try {
            ask(address, isList);
        } catch (const ProgressiveError &error) {
            if (isList)
                skip(address.url, error.description());
            else
                add(address); // the player says why it does not play, as it does of those that nobody asks
                              // for
        } catch (const AudioInput::Interrupted &) {
        }
    }

    PlaylistFile::Contents contents;

  private:
    void ask(const PlaylistEntry &address, bool isList) {
        ProgressiveInput input(address.url);
        input.setStopToken(m_stop);
        const DownloadInfo info = input.info();
        if (isList || isListType(info.contentType)) {
            ++m_lists;
            m_open.append(address.url);
            takeList(address.url, info, readAll(input));
            m_open.removeLast();
        } else {
            add({address.url, address.title.isEmpty() ? info.stationName : address.title, address.artist});
        }
    }

    /// One byte more than can be when it is too much.
    static QByteArray readAll(AudioInput &input) {
        QByteArray bytes;
        std::array<char, 16 * 1024> piece;
        while (bytes.size() <= maxListBytes) {
            const std::size_t count = input.read(piece);
            if (count == 0)
                break;
            bytes.append(piece.data(), static_cast<qsizetype>(count));
        }
        return bytes;
    }

    void takeList(const QUrl &list, const DownloadInfo &info, const QByteArray &bytes) {
        if (bytes.size() > maxListBytes)
            return skip(list, tooLarge);
        if (isSegmentList(bytes))
            return skip(list, ProgressiveError::formatUnsupported().description());
        const auto format = PlaylistParser::formatOf(bytes, endingOf(info.url));
        const auto parsed = PlaylistParser::parse(bytes, format, maxListEntries);
        QString divided; // what downloads is not played in parts
        for (const PlaylistParser::Line &line : parsed.lines) {
            if (line.range && std::exchange(divided, line.location) == line.location)
                continue;
            const QUrl url = info.url.resolved(QUrl(line.location));
            if (m_stop.stop_requested())
                return;
            if (isAddress(url))
                take({url, line.range ? line.album : line.title, line.artist}, false);
            else
                skip(url, unsupportedAddress); // files of this machine are none of the list's business
        }
        if (parsed.isDamaged)
            skip(list, damaged, !parsed.lines.empty());
        if (parsed.isCut)
            skip(list, tooMany, true);
    }

    void add(const PlaylistEntry &entry) {
        if (contents.entries.size() < maxListEntries)
            contents.entries.push_back(entry);
    }
    void skip(const QUrl &url, const QString &reason, bool isPartial = false) {
        if (contents.skipped.size() < maxListEntries)
            contents.skipped.push_back({url, reason, isPartial});
    }

    const std::stop_token m_stop;
    QList<QUrl> m_open; ///< the lists around the present one, and itself
    int m_lists = 0;
};

} // namespace

bool isAddress(const QUrl &url) {
    return ProgressiveInput::takes(url);
}

PlaylistFile::Contents load(const PlaylistEntry &address, bool asks, const std::stop_token &stop) {
    Loader loader(stop);
    loader.take(address, asks);
    return std::move(loader.contents);
}

QString titleOf(const QUrl &address) {
    const QString name = address.fileName(QUrl::FullyDecoded).simplified();
    const QString stem =
        hasEnding(address, TrackLoader::audioPatterns()) ? QFileInfo(name).completeBaseName() : name;
    return stem.isEmpty() ? address.host() : stem;
}

} // namespace vantor::AddressLoader
