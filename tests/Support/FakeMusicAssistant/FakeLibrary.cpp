#include "tests/Support/FakeMusicAssistant/FakeLibrary.h"

#include <QCryptographicHash>

namespace vantor {

using namespace Qt::Literals::StringLiterals;

// What the items look like.

namespace {

constexpr int tracksPerAlbum = 10;
constexpr int albumsPerArtist = 5;

/// "Silver Harbour 12": the same for the same number.
QString madeName(int index, const QString &what) {
    static const QStringList firsts{u"Silver"_s, u"Amber"_s,    u"Distant"_s, u"Quiet"_s,
                                    u"Paper"_s,  u"Northern"_s, u"Velvet"_s,  u"Electric"_s};
    static const QStringList seconds{u"Harbour"_s, u"Rivers"_s,   u"Signal"_s, u"Garden"_s,
                                     u"Motion"_s,  u"Lanterns"_s, u"Orchard"_s};
    return u"%1 %2 %3 %4"_s.arg(firsts[index % firsts.size()], seconds[index / 3 % seconds.size()], what)
        .arg(index);
}

QJsonObject withoutNulls(const QJsonObject &object) {
    QJsonObject kept;
    for (auto member = object.begin(); member != object.end(); ++member) {
        if (!member->isNull())
            kept.insert(member.key(), *member);
    }
    return kept;
}

int divided(int count, int by) {
    return (count + by - 1) / by;
}

} // namespace

FakeLibrary::FakeLibrary(FakeMusicAssistant &server, Size size, Dialect dialect)
    : m_server(server), m_size(size), m_dialect(dialect) {
    for (int i = 0; i < size.radios; ++i)
        m_radios.append({madeName(i, u"Radio"_s), u"http://radio.invalid/%1"_s.arg(i)});
    makePlaylists();
    addListCommands();
    addItemCommands();
    addPlaylistCommands();
    addFavoriteCommands();
    addRecommendationCommands();
    addPages();
}

void FakeLibrary::makePlaylists() {
    for (int i = 0; i < m_size.playlists; ++i) {
        Playlist made{.name = madeName(i, u"Mix"_s), .tracks = {}};
        if (i % 4 == 2) { // the server's own
            made.isEditable = false;
            made.isDynamic = true;
        } else if (i % 4 == 3) {
            made.domain = u"some_streaming"_s;
            made.isEditable = false;
        }
        const int length = i == 0 ? std::min(m_size.tracks, 30) : std::min(m_size.tracks, 40 * i);
        for (int track = 0; track < length; ++track)
            made.tracks.append(uri(u"track"_s, (track * (i + 1)) % m_size.tracks));
        m_playlists.insert(i, made);
    }
}

int FakeLibrary::addPlaylist(const QString &name, const QStringList &tracks) {
    const int index = m_playlists.isEmpty() ? 0 : m_playlists.lastKey() + 1;
    m_playlists.insert(index, {.name = name, .tracks = tracks});
    return index;
}

int FakeLibrary::count(const QString &mediaType) const {
    if (mediaType == "track"_L1)
        return m_size.tracks;
    if (mediaType == "album"_L1)
        return divided(m_size.tracks, tracksPerAlbum);
    if (mediaType == "artist"_L1)
        return divided(m_size.tracks, tracksPerAlbum * albumsPerArtist);
    return static_cast<int>(mediaType == "playlist"_L1 ? m_playlists.size() : m_radios.size());
}

QString FakeLibrary::uri(const QString &mediaType, int index) {
    return u"library://%1/%2"_s.arg(mediaType).arg(index + 1); // the server's numbers begin with 1
}

QString FakeLibrary::nameOf(const QString &mediaType, int index) const {
    if (mediaType == "playlist"_L1)
        return m_playlists.value(index).name;
    if (mediaType == "radio"_L1)
        return m_radios.value(index).name;
    return madeName(index, mediaType == "track"_L1   ? u"Song"_s
                           : mediaType == "album"_L1 ? u"Album"_s
                                                     : u"Band"_s);
}

QJsonObject FakeLibrary::image(const QString &path) const {
    QJsonObject made{{u"type"_s, u"thumb"_s},
                     {u"path"_s, path},
                     {u"provider"_s, u"filesystem_local--fake"_s},
                     {u"remotely_accessible"_s, false}};
    if (m_dialect == Dialect::today) {
        const QByteArray hash = QCryptographicHash::hash(path.toUtf8(), QCryptographicHash::Sha256);
        made.insert("proxy_id"_L1, QString::fromLatin1(hash.toHex()));
    }
    return made;
}

bool FakeLibrary::isFavorite(const QString &itemURI, int index) const {
    return m_favorites.value(itemURI, index % m_size.favoriteEvery == 0);
}

QJsonObject FakeLibrary::base(const QString &mediaType, int index, const QString &name) const {
    const QString id = QString::number(index + 1);
    const QString own = uri(mediaType, index);
    const QJsonObject format{{u"content_type"_s, u"flac"_s},
                             {u"codec_type"_s, u"flac"_s},
                             {u"sample_rate"_s, 44100},
                             {u"bit_depth"_s, 16},
                             {u"channels"_s, 2},
                             {u"bit_rate"_s, 900},
                             {u"output_format_str"_s, u"flac"_s}};
    const QJsonObject provider{{u"item_id"_s, u"%1/%2.flac"_s.arg(mediaType, id)},
                               {u"provider_domain"_s, u"filesystem_local"_s},
                               {u"provider_instance"_s, u"filesystem_local--fake"_s},
                               {u"available"_s, true},
                               {u"in_library"_s, QJsonValue()},
                               {u"is_unique"_s, true},
                               {u"audio_format"_s, format},
                               {u"url"_s, QJsonValue()},
                               {u"details"_s, QJsonValue()}};
    const QJsonObject metadata{{u"images"_s, QJsonArray{image(u"%1/%2/cover.jpg"_s.arg(mediaType, id))}},
                               {u"genres"_s, QJsonArray{u"Made Up"_s}},
                               {u"description"_s, QJsonValue()},
                               {u"explicit"_s, QJsonValue()},
                               {u"lyrics"_s, QJsonValue()},
                               {u"popularity"_s, 50}};
    return {{u"item_id"_s, id},
            {u"provider"_s, u"library"_s},
            {u"name"_s, name},
            {u"version"_s, u""_s},
            {u"sort_name"_s, name.toLower()},
            {u"uri"_s, own},
            {u"external_ids"_s, QJsonArray()},
            {u"is_playable"_s, true},
            {u"media_type"_s, mediaType},
            {u"provider_mappings"_s, QJsonArray{provider}},
            {u"metadata"_s, metadata},
            {u"favorite"_s, isFavorite(own, index)},
            {u"position"_s, QJsonValue()},
            {u"date_added"_s, u"2026-01-02T03:04:05+00:00"_s}};
}

QJsonObject FakeLibrary::mapping(const QString &mediaType, int index) const {
    const QString id = QString::number(index + 1);
    return {{u"item_id"_s, id},
            {u"provider"_s, u"library"_s},
            {u"name"_s, nameOf(mediaType, index)},
            {u"version"_s, u""_s},
            {u"sort_name"_s, nameOf(mediaType, index).toLower()},
            {u"uri"_s, uri(mediaType, index)},
            {u"media_type"_s, mediaType},
            {u"available"_s, true},
            {u"image"_s, image(u"%1/%2/cover.jpg"_s.arg(mediaType, id))}};
}

QJsonObject FakeLibrary::artist(int index) const {
    QJsonObject made = base(u"artist"_s, index, nameOf(u"artist"_s, index));
    made.insert("artist_type"_L1, u"artist"_s);
    return made;
}

QJsonObject FakeLibrary::album(int index) const {
    QJsonObject made = base(u"album"_s, index, nameOf(u"album"_s, index));
    made.insert("year"_L1, 1970 + index % 55);
    made.insert("artists"_L1, QJsonArray{mapping(u"artist"_s, index / albumsPerArtist)});
    made.insert("album_type"_L1, u"album"_s);
    return made;
}

QJsonObject FakeLibrary::track(int index) const {
    const int ofAlbum = index / tracksPerAlbum;
    QJsonObject made = base(u"track"_s, index, nameOf(u"track"_s, index));
    made.insert("duration"_L1, 120 + index % 180);
    made.insert("artists"_L1, QJsonArray{mapping(u"artist"_s, ofAlbum / albumsPerArtist)});
    made.insert("album"_L1, mapping(u"album"_s, ofAlbum));
    made.insert("disc_number"_L1, 1);
    made.insert("track_number"_L1, index % tracksPerAlbum + 1);
    made.insert("last_played"_L1, 0);
    return made;
}

QJsonObject FakeLibrary::playlist(int index) const {
    const Playlist &known = m_playlists[index];
    QJsonObject made = base(u"playlist"_s, index, known.name);
    QJsonArray mappings = made["provider_mappings"_L1].toArray();
    QJsonObject provider = mappings[0].toObject();
    provider.insert("provider_domain"_L1, known.domain);
    mappings[0] = provider;
    made.insert("provider_mappings"_L1, mappings);
    made.insert("owner"_L1, u"Listener"_s);
    made.insert("is_editable"_L1, known.isEditable);
    made.insert("is_dynamic"_L1, known.isDynamic);
    made.insert("supported_mediatypes"_L1, QJsonArray{u"track"_s});
    return made;
}

QJsonObject FakeLibrary::radio(int index) const {
    QJsonObject made = base(u"radio"_s, index, m_radios[index].name);
    made.insert("duration"_L1, QJsonValue());
    return made;
}

QJsonValue FakeLibrary::item(const QString &mediaType, int index) const {
    if (mediaType == "playlist"_L1 && m_playlists.contains(index))
        return playlist(index);
    if (mediaType == "playlist"_L1 || index < 0 || index >= count(mediaType))
        return {};
    if (mediaType == "radio"_L1)
        return radio(index);
    if (mediaType == "track"_L1)
        return track(index);
    return mediaType == "album"_L1 ? album(index) : artist(index);
}

QJsonValue FakeLibrary::itemByURI(const QString &itemURI) const {
    const QString mediaType = itemURI.section(u'/', 2, 2);
    static const QStringList known{u"artist"_s, u"album"_s, u"track"_s, u"playlist"_s, u"radio"_s};
    return known.contains(mediaType) ? item(mediaType, itemURI.section(u'/', 3).toInt() - 1) : QJsonValue();
}

QStringList FakeLibrary::expanded(const QString &itemURI) const {
    const QString mediaType = itemURI.section(u'/', 2, 2);
    const int index = itemURI.section(u'/', 3).toInt() - 1;
    if (mediaType == "playlist"_L1)
        return m_playlists.value(index).tracks;
    if (mediaType == "track"_L1) // of which there are many to look up
        return index >= 0 && index < m_size.tracks ? QStringList(itemURI) : QStringList();
    const int tracks = mediaType == "album"_L1    ? tracksPerAlbum
                       : mediaType == "artist"_L1 ? tracksPerAlbum * albumsPerArtist
                                                  : 0;
    if (tracks == 0)
        return itemByURI(itemURI).isNull() ? QStringList() : QStringList(itemURI);
    QStringList all;
    for (int track = index * tracks; track < std::min((index + 1) * tracks, m_size.tracks); ++track)
        all.append(uri(u"track"_s, track));
    return all;
}

QList<int> FakeLibrary::favorites(const QString &mediaType) const {
    QHash<int, bool> chosen;
    for (auto favorite = m_favorites.begin(); favorite != m_favorites.end(); ++favorite) {
        if (favorite.key().section(u'/', 2, 2) == mediaType)
            chosen.insert(favorite.key().section(u'/', 3).toInt() - 1, *favorite);
    }
    QList<int> found;
    for (int i = 0; i < count(mediaType); ++i) {
        if (chosen.value(i, i % m_size.favoriteEvery == 0))
            found.append(i);
    }
    return found;
}

QJsonArray FakeLibrary::stretch(const QString &mediaType, const Args &args) const {
    const bool onlyFavorites = args["favorite"_L1].toBool();
    const QList<int> chosen = onlyFavorites ? favorites(mediaType) : QList<int>();
    const auto playlists = m_playlists.keys();
    const int total = onlyFavorites ? static_cast<int>(chosen.size()) : count(mediaType);
    const int offset = std::max(args["offset"_L1].toInt(0), 0);
    const int end = std::min(total, offset + std::min(args["limit"_L1].toInt(500), longestPage));
    const bool isSummary = m_dialect == Dialect::today && args["summary"_L1].toBool(true);
    QJsonArray items;
    for (int i = offset; i < end; ++i) {
        const int index = onlyFavorites ? chosen[i] : mediaType == "playlist"_L1 ? playlists[i] : i;
        QJsonObject made = item(mediaType, index).toObject();
        if (isSummary) {
            made.insert("provider_mappings"_L1, QJsonArray());
            made.insert("available"_L1, true);
            made = withoutNulls(made);
        }
        items.append(made);
    }
    return items;
}

void FakeLibrary::sendItemEvent(const QString &event, const QString &itemURI) {
    m_server.sendEvent(event, itemURI, itemByURI(itemURI));
}

} // namespace vantor
