#include "LocalPlayback/LocalPlaybackError.h"
#include "LocalPlayback/Playlists/PlaylistFile.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

namespace vantor::PlaylistFile {

namespace {

/// Whether a reader takes the path for what it is: no comment, no address, nothing trimmed off.
bool isPlain(const QString &path) {
    const auto isControl = [](QChar c) { return c.unicode() < 0x20; };
    return path == path.trimmed() && !path.startsWith(QLatin1Char('#')) &&
           !path.startsWith(QLatin1String("file:"), Qt::CaseInsensitive) &&
           !path.contains(QLatin1String("://")) && std::ranges::none_of(path, isControl);
}

QString location(const QDir &folder, const QUrl &url) {
    if (!url.isLocalFile())
        return url.toString(QUrl::FullyEncoded);
    const QString path = url.toLocalFile();
    const QString relative = folder.relativeFilePath(path);
    const QString written = relative.startsWith(QLatin1String("../")) ? path : relative;
    return isPlain(written) ? written : url.toString(QUrl::FullyEncoded);
}

struct Line {
    QString location;
    QString title;
    qint64 seconds = -1; ///< unknown
};

std::vector<Line> linesOf(const QDir &folder, const std::vector<Track> &tracks) {
    std::vector<Line> lines;
    const QUrl *divided = nullptr; // the file of which the track before is a part
    for (const Track &track : tracks) {
        const QUrl *url = std::get_if<QUrl>(&track.source);
        if (url == nullptr)
            continue;
        if (const QUrl *before = std::exchange(divided, track.range ? url : nullptr); track.range) {
            if (before == nullptr || *before != *url)
                lines.push_back(
                    {.location = location(folder, *url),
                     .title =
                         track.album.value_or(QFileInfo(url->fileName()).completeBaseName()).simplified()});
            continue;
        }
        Line line{.location = location(folder, *url), .title = track.title.simplified()};
        if (!track.artist.isEmpty())
            line.title = track.artist.simplified() + QStringLiteral(" - ") + line.title;
        if (track.duration > 0 && track.duration < 1e9)
            line.seconds = std::llround(track.duration);
        lines.push_back(line);
    }
    return lines;
}

QString m3u8(const std::vector<Line> &lines) {
    QString text = QStringLiteral("#EXTM3U\n");
    for (const Line &line : lines)
        text += QStringLiteral("#EXTINF:") + QString::number(line.seconds) + QLatin1Char(',') + line.title +
                QLatin1Char('\n') + line.location + QLatin1Char('\n');
    return text;
}

QString pls(const std::vector<Line> &lines) {
    QString text = QStringLiteral("[playlist]\n");
    for (size_t i = 0; i < lines.size(); ++i) {
        const QString number = QString::number(i + 1) + QLatin1Char('=');
        text += QStringLiteral("File") + number + lines[i].location + QStringLiteral("\nTitle") + number +
                lines[i].title + QStringLiteral("\nLength") + number + QString::number(lines[i].seconds) +
                QLatin1Char('\n');
    }
    return text + QStringLiteral("NumberOfEntries=") + QString::number(lines.size()) +
           QStringLiteral("\nVersion=2\n");
}

} // namespace

void write(const QUrl &list, const std::vector<Track> &tracks) {
    const QFileInfo info(list.toLocalFile());
    const std::vector<Line> lines = linesOf(info.absoluteDir(), tracks);
    const bool asPLS = info.suffix().compare(QLatin1String("pls"), Qt::CaseInsensitive) == 0;
    const QByteArray bytes = (asPLS ? pls(lines) : m3u8(lines)).toUtf8();
    if (lines.size() > maxEntries || bytes.size() > maxBytes) // it would not be read back whole
        throw LocalPlaybackError::playlistTooLarge();
    QSaveFile file(info.filePath());
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        throw LocalPlaybackError::playlistWrite(file.errorString());
}

} // namespace vantor::PlaylistFile
