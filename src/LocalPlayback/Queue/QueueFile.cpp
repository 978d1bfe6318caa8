#include "LocalPlayback/Queue/QueueFile.h"

#include "LocalPlayback/Loading/AddressLoader.h"
#include "LocalPlayback/LocalPlaybackError.h"

#include <QIODevice>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <limits>

namespace vantor::QueueFile {

namespace {

constexpr QLatin1String version("version");
constexpr QLatin1String items("items");
constexpr QLatin1String currentIndex("currentIndex");
constexpr QLatin1String repeat("repeat");
constexpr QLatin1String shuffle("shuffle");
constexpr QLatin1String source("source");
constexpr QLatin1String mediaID("mediaID");
constexpr double longestRange = 1e9; // seconds

QLatin1String nameOf(RepeatMode mode) {
    switch (mode) {
    case RepeatMode::off:
        return QLatin1String("off");
    case RepeatMode::all:
        return QLatin1String("all");
    case RepeatMode::one:
        return QLatin1String("one");
    }
    return {};
}

RepeatMode repeatModeNamed(const QString &name) {
    const auto *const mode =
        std::ranges::find_if(allRepeatModes, [&](RepeatMode each) { return nameOf(each) == name; });
    return mode == allRepeatModes.end() ? RepeatMode::off : *mode;
}

// The local file of an item, or its web address, which stands in the path's place: no path from the root
// looks like one. So does the address of a file whose name is no text. "start" and "end" in seconds, where
// the item is a part of the file.
namespace StoredSource {

QJsonObject encode(const QUrl &url, const std::optional<TrackRange> &range) {
    QString path = url.isLocalFile() ? url.toLocalFile() : QString();
    if (path.isEmpty() || path.contains(QChar::ReplacementCharacter))
        path = url.toString(QUrl::FullyEncoded);
    QJsonObject object{{QStringLiteral("kind"), QStringLiteral("file")}, {QStringLiteral("path"), path}};
    if (range)
        object[QStringLiteral("start")] = range->start;
    if (range && range->end)
        object[QStringLiteral("end")] = *range->end;
    return object;
}

std::optional<TrackRange> decodeRange(const QJsonObject &object) {
    const QJsonValue start = object.value(QLatin1String("start"));
    const QJsonValue end = object.value(QLatin1String("end"));
    if (start.isUndefined() && end.isUndefined())
        return std::nullopt;
    TrackRange range{.start = start.toDouble(-1), .end = std::nullopt};
    if (!end.isUndefined())
        range.end = end.toDouble(-1);
    if (range.start < 0 || range.start > longestRange || (range.end && *range.end <= range.start) ||
        range.end > longestRange)
        throw LocalPlaybackError::unknownSourceKind();
    return range;
}

QUrl decode(const QJsonObject &object) {
    const QString path = object.value(QLatin1String("path")).toString();
    if (object.value(QLatin1String("kind")) != QLatin1String("file") || path.isEmpty())
        throw LocalPlaybackError::unknownSourceKind();
    const QUrl address(path);
    const bool isAddress = AddressLoader::isAddress(address) || path.startsWith(QLatin1String("file:///"));
    return isAddress ? address : QUrl::fromLocalFile(path);
}

} // namespace StoredSource

namespace StoredItem {

bool canBeStored(const Track &track) {
    const QUrl *url = std::get_if<QUrl>(&track.source);
    return url == nullptr || url->isLocalFile() || AddressLoader::isAddress(*url);
}

QJsonObject encode(const Track &track) {
    QJsonObject object{{QStringLiteral("id"), track.id.toString(QUuid::WithoutBraces)},
                       {QStringLiteral("title"), track.title},
                       {QStringLiteral("artist"), track.artist},
                       {QStringLiteral("duration"), std::isfinite(track.duration) ? track.duration : 0}};
    if (track.album)
        object[QStringLiteral("album")] = *track.album;
    if (track.bitrate)
        object[QStringLiteral("bitrate")] = *track.bitrate;
    if (track.sampleRate && std::isfinite(*track.sampleRate))
        object[QStringLiteral("sampleRate")] = *track.sampleRate;
    if (track.channels)
        object[QStringLiteral("channels")] = *track.channels;
    if (const auto *file = std::get_if<QUrl>(&track.source))
        object[source] = StoredSource::encode(*file, track.range);
    else
        object[mediaID] = std::get<MediaID>(track.source).toJson();
    return object;
}

std::optional<int> wholeNumber(const QJsonValue &value) {
    const int number = value.toInt(-1);
    return number < 0 ? std::nullopt : std::optional(number);
}

/// Throws LocalPlaybackError for a source of an unknown kind.
Track::Source decodeSource(const QJsonObject &object) {
    if (object.contains(source))
        return StoredSource::decode(object.value(source).toObject());
    if (const auto id = MediaID::fromJson(object.value(mediaID).toObject()))
        return *id;
    throw LocalPlaybackError::unknownSourceKind();
}

std::optional<Track> decode(const QJsonObject &object) {
    Track track;
    track.id = QUuid::fromString(object.value(QLatin1String("id")).toString());
    const QJsonValue title = object.value(QLatin1String("title"));
    if (track.id.isNull() || !title.isString())
        return std::nullopt;
    try {
        track.source = decodeSource(object);
        track.range = StoredSource::decodeRange(object.value(source).toObject());
    } catch (const LocalPlaybackError &) {
        return std::nullopt;
    }
    track.title = title.toString();
    track.artist = object.value(QLatin1String("artist")).toString();
    if (const QJsonValue album = object.value(QLatin1String("album")); album.isString())
        track.album = album.toString();
    track.duration = std::max(object.value(QLatin1String("duration")).toDouble(), 0.0);
    track.bitrate = wholeNumber(object.value(QLatin1String("bitrate")));
    track.channels = wholeNumber(object.value(QLatin1String("channels")));
    if (const double rate = object.value(QLatin1String("sampleRate")).toDouble(-1); rate >= 0)
        track.sampleRate = rate;
    return track;
}

} // namespace StoredItem

/// Whether a parsed form would stay in proportion: a small text can ask for very many tiny values.
bool isParsable(const QByteArray &bytes) {
    constexpr size_t containersPerItem = 2; // the item and its source
    constexpr size_t valuesPerItem = 14;
    size_t containers = 0;
    size_t values = 0;
    bool inText = false;
    for (auto byte = bytes.begin(); byte != bytes.end(); ++byte) {
        if (inText && *byte == '\\') {
            if (++byte == bytes.end())
                break;
        } else if (*byte == '"') {
            inText = !inText;
        } else if (!inText) {
            containers += *byte == '{' || *byte == '[';
            values += *byte == ',';
        }
    }
    return containers <= containersPerItem * maxItems + 2 && values <= valuesPerItem * maxItems;
}

Decoded decodeObject(const QJsonObject &object) {
    const QJsonArray stored = object.value(items).toArray();
    const int current = object.value(currentIndex).toInt(-1);
    Decoded decoded;
    QueueSnapshot &snapshot = decoded.snapshot;
    snapshot.items.reserve(static_cast<size_t>(stored.size()));
    QSet<QUuid> ids;
    for (qsizetype index = 0; index < stored.size(); ++index) {
        std::optional<Track> track = StoredItem::decode(stored.at(index).toObject());
        if (!track) {
            ++decoded.dropped;
            continue;
        }
        if (ids.contains(track->id)) // an id names one entry
            track->id = QUuid::createUuid();
        ids.insert(track->id);
        if (index == current)
            snapshot.currentIndex = static_cast<int>(snapshot.items.size());
        snapshot.items.push_back(std::move(*track));
    }
    snapshot.repeatMode = repeatModeNamed(object.value(repeat).toString());
    snapshot.isShuffled = object.value(shuffle).toBool();
    return decoded;
}

QByteArray lineOf(const QJsonObject &object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

} // namespace

bool write(const QueueSnapshot &snapshot, QIODevice &device) {
    if (snapshot.items.size() > maxItems)
        throw LocalPlaybackError::queueTooLarge();
    std::optional<int> current;
    int kept = 0;
    for (size_t index = 0; index < snapshot.items.size(); ++index) {
        if (!StoredItem::canBeStored(snapshot.items[index]))
            continue;
        if (snapshot.currentIndex == static_cast<int>(index))
            current = kept;
        ++kept;
    }

    qint64 size = 0;
    const auto put = [&](const QByteArray &bytes) {
        size += bytes.size();
        if (size > maxBytes)
            throw LocalPlaybackError::queueTooLarge();
        return device.write(bytes) == bytes.size();
    };
    bool ok = put("{\n");
    if (current)
        ok = ok && put("\"currentIndex\": " + QByteArray::number(*current) + ",\n");
    ok = ok && put("\"items\": [");
    const char *separator = "\n";
    for (const Track &track : snapshot.items) {
        if (ok && StoredItem::canBeStored(track))
            ok = put(std::exchange(separator, ",\n") + lineOf(StoredItem::encode(track)));
    }
    const QJsonObject rest{{repeat, nameOf(snapshot.repeatMode)},
                           {shuffle, snapshot.isShuffled},
                           {version, QueueSnapshot::currentVersion}};
    return ok && put("\n],\n" + lineOf(rest).sliced(1) + "\n");
}

std::optional<Decoded> decode(const QByteArray &bytes) {
    if (bytes.size() > maxBytes || !isParsable(bytes))
        return std::nullopt;
    const QJsonObject object = QJsonDocument::fromJson(bytes).object();
    const QJsonValue stored = object.value(items);
    if (object.value(version) != QueueSnapshot::currentVersion || !stored.isArray() ||
        static_cast<size_t>(stored.toArray().size()) > maxItems)
        return std::nullopt;
    return decodeObject(object);
}

} // namespace vantor::QueueFile
