#include "LocalPlayback/Playlists/PlaylistFile.h"

#include "LocalPlayback/Loading/AddressLoader.h"
#include "LocalPlayback/Loading/TrackLoader.h"
#include "LocalPlayback/Playlists/PlaylistParser.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace vantor::PlaylistFile {

namespace {

constexpr QLatin1String unreadable("This playlist could not be read.");
constexpr QLatin1String tooLarge("This playlist file is too large.");
constexpr QLatin1String damaged("This playlist file is damaged.");
constexpr QLatin1String circular("This playlist contains itself.");
constexpr QLatin1String tooDeep("This playlist lies too deep inside other playlists.");
constexpr QLatin1String tooMany("This playlist is too long; its end was left out.");
constexpr QLatin1String tooManyLists("Too many playlists are inside each other.");
constexpr QLatin1String unsupportedAddress("This kind of address is not supported.");

QUrl localFile(const QDir &folder, const QString &path) {
    return QUrl::fromLocalFile(QDir::cleanPath(folder.absoluteFilePath(path)));
}

/// A path as written, else what a writer on another system or one fond of addresses meant by it.
QUrl resolvedPath(const QDir &folder, const QString &path) {
    const auto exists = [&](const QString &other) {
        return QFileInfo::exists(folder.absoluteFilePath(other));
    };
    const bool hasBackslash = path.contains(QLatin1Char('\\'));
    if ((!hasBackslash && !path.contains(QLatin1Char('%'))) || exists(path))
        return localFile(folder, path);
    if (hasBackslash)
        return resolvedPath(folder, QString(path).replace(QLatin1Char('\\'), QLatin1Char('/')));
    const QString decoded = QUrl::fromPercentEncoding(path.toUtf8());
    return localFile(folder, exists(decoded) ? decoded : path);
}

QUrl resolved(const QDir &folder, const PlaylistParser::Line &line) {
    if (line.location.contains(QLatin1String("://")) ||
        line.location.startsWith(QLatin1String("file:"), Qt::CaseInsensitive))
        return QUrl(line.location);
    if (line.isURI) {
        const QUrl base = QUrl::fromLocalFile(folder.absolutePath() + QLatin1Char('/'));
        return base.resolved(QUrl(line.location));
    }
    return resolvedPath(folder, line.location);
}

/// The file itself, or the one of the same name beside it: cue sheets keep the names that files had before
/// they were compressed.
QUrl asKeptNow(const QUrl &file) {
    const QFileInfo info(file.toLocalFile());
    if (!file.isLocalFile() || info.exists())
        return file;
    const QString stem = info.path() + QLatin1Char('/') + info.completeBaseName();
    for (const QString &pattern : TrackLoader::audioPatterns()) {
        const QString other = stem + pattern.sliced(1);
        if (QFileInfo::exists(other))
            return QUrl::fromLocalFile(other);
    }
    return file;
}

bool isSupported(const QUrl &url) {
    return (url.isLocalFile() && !url.toLocalFile().isEmpty()) || AddressLoader::isAddress(url);
}

class Reader {
  public:
    void read(const QUrl &list) {
        const QFileInfo info(list.toLocalFile());
        const QString identity = info.canonicalFilePath(); // several names of one file are one list
        if (m_open.contains(identity))
            return skip(list, circular);
        if (m_open.size() > maxDepth)
            return skip(list, tooDeep);
        if (++m_lists > maxLists)
            return skip(list, tooManyLists);
        QFile file(info.filePath());
        if (!info.isFile() || !file.open(QIODevice::ReadOnly)) // a pipe would keep us waiting
            return skip(list, unreadable);
        if (file.size() > maxBytes)
            return skip(list, tooLarge);
        m_open.append(identity);
        take(list, info, file.readAll());
        m_open.removeLast();
    }

    Contents contents;

  private:
    void take(const QUrl &list, const QFileInfo &info, const QByteArray &bytes) {
        const auto format = PlaylistParser::formatOf(bytes, info.suffix().toLower());
        const auto parsed = PlaylistParser::parse(bytes, format, room());
        const QDir folder = info.absoluteDir();
        bool isCut = parsed.isCut;
        for (const PlaylistParser::Line &line : parsed.lines) {
            if (room() == 0) { // lists inside this one take room as well
                isCut = true;
                break;
            }
            const QUrl url = resolved(folder, line);
            takeLine(format == PlaylistParser::Format::cue ? asKeptNow(url) : url, line);
        }
        if (isCut)
            skip(list, tooMany, true);
        if (parsed.isDamaged)
            skip(list, damaged, !parsed.lines.empty());
    }

    void takeLine(const QUrl &url, const PlaylistParser::Line &line) {
        if (isPlaylist(url))
            read(url);
        else if (isSupported(url))
            contents.entries.push_back({url, line.title, line.artist, line.album, line.range});
        else
            skip(url, unsupportedAddress);
    }

    /// What is left out takes room too: lists that name each other are many lines in little space.
    [[nodiscard]] size_t room() const {
        return maxEntries - std::min(maxEntries, contents.entries.size() + contents.skipped.size());
    }
    void skip(const QUrl &url, QLatin1String reason, bool isPartial = false) {
        contents.skipped.push_back({url, reason, isPartial});
    }

    QStringList m_open; ///< the lists around the present one, and itself
    int m_lists = 0;
};

} // namespace

const QStringList &patterns() {
    static const QStringList value{QStringLiteral("*.m3u"), QStringLiteral("*.m3u8"), QStringLiteral("*.pls"),
                                   QStringLiteral("*.xspf"), QStringLiteral("*.cue")};
    return value;
}

bool isPlaylist(const QUrl &url) {
    const QString extension = QFileInfo(url.fileName()).suffix().toLower();
    return url.isLocalFile() && patterns().contains(QStringLiteral("*.") + extension);
}

Contents read(const QUrl &list) {
    Reader reader;
    reader.read(list);
    return std::move(reader.contents);
}

} // namespace vantor::PlaylistFile
