#include "tests/Support/FakeMusicAssistant/FakeLibrary.h"

#include <QBuffer>
#include <QImage>
#include <QJsonDocument>
#include <QUrlQuery>

namespace vantor {

using namespace Qt::Literals::StringLiterals;

// What the commands about the library do.

namespace {

enum ErrorCode { notFound = 2, invalidData = 3, unexpected = 999 };

const QStringList mediaTypes{u"artist"_s, u"album"_s, u"track"_s, u"playlist"_s, u"radio"_s};

int indexOf(const QJsonValue &itemID) {
    return (itemID.isString() ? itemID.toString().toInt() : itemID.toInt()) - 1;
}

QJsonObject task(const QString &status = u"pending"_s) {
    return {{u"task_id"_s, u"t1"_s}, {u"status"_s, status}};
}

} // namespace

void FakeLibrary::listCommand(const QString &name, const QStringList &parameters) {
    m_listed.insert(name, parameters);
}

void FakeLibrary::command(const QString &name, const QStringList &parameters,
                          FakeMusicAssistant::CommandHandler handler) {
    listCommand(name, parameters);
    m_server.onCommand(name, [parameters, handler](const Args &args, const FakeAnswer &answer) {
        for (const QString &parameter : parameters) {
            if (!parameter.endsWith(u'?') && !args.contains(parameter)) {
                answer.error(unexpected, u"Missing argument: %1"_s.arg(parameter));
                return;
            }
        }
        handler(args, answer);
    });
}

void FakeLibrary::addListCommands() {
    for (const QString &mediaType : mediaTypes) {
        const QString folder = u"music/%1s/"_s.arg(mediaType);
        const QStringList parameters{u"favorite?"_s, u"search?"_s, u"limit?"_s, u"offset?"_s, u"order_by?"_s};
        command(folder + u"library_items"_s, parameters,
                [this, mediaType](const Args &args, const FakeAnswer &answer) {
                    answer.result(stretch(mediaType, args));
                });
        command(folder + u"count"_s, {u"favorite_only?"_s},
                [this, mediaType](const Args &args, const FakeAnswer &answer) {
                    const bool favoritesOnly = args["favorite_only"_L1].toBool();
                    answer.result(favoritesOnly ? static_cast<int>(favorites(mediaType).size())
                                                : count(mediaType));
                });
        const QStringList identity{u"item_id"_s, u"provider_instance_id_or_domain"_s};
        command(folder + u"get"_s, identity, [this, mediaType](const Args &args, const FakeAnswer &answer) {
            const QJsonValue found = item(mediaType, indexOf(args["item_id"_L1]));
            found.isNull() ? answer.error(notFound, u"Not found"_s) : answer.result(found);
        });
    }
}

void FakeLibrary::addItemCommands() {
    const QStringList identity{u"item_id"_s, u"provider_instance_id_or_domain"_s};
    const auto expand = [this](const QString &mediaType, const QString &of) {
        return [this, mediaType, of](const Args &args, const FakeAnswer &answer) {
            const QString parent = uri(of, indexOf(args["item_id"_L1]));
            if (itemByURI(parent).isNull())
                return answer.error(notFound, u"Not found"_s);
            QJsonArray items;
            QString former;
            for (const QString &trackURI : expanded(parent)) {
                const QJsonObject found = itemByURI(trackURI).toObject();
                const QString album = found["album"_L1]["uri"_L1].toString();
                if (mediaType == "track"_L1)
                    items.append(found);
                else if (album != std::exchange(former, album))
                    items.append(itemByURI(album));
            }
            answer.result(items);
        };
    };
    command(u"music/artists/artist_albums"_s, identity, expand(u"album"_s, u"artist"_s));
    command(u"music/artists/artist_tracks"_s, identity, expand(u"track"_s, u"artist"_s));
    command(u"music/albums/album_tracks"_s, identity, expand(u"track"_s, u"album"_s));
    command(u"music/item_by_uri"_s, {u"uri"_s}, [this](const Args &args, const FakeAnswer &answer) {
        const QJsonValue found = itemByURI(args["uri"_L1].toString());
        found.isNull() ? answer.error(notFound, u"Not found"_s) : answer.result(found);
    });
    command(u"music/search"_s, {u"search_query"_s, u"media_types?"_s, u"limit?"_s},
            [this](const Args &args, const FakeAnswer &answer) {
                const QString text = args["search_query"_L1].toString();
                const int limit = args["limit"_L1].toInt(25);
                QJsonObject found;
                for (const QString &mediaType : mediaTypes) {
                    QJsonArray items;
                    for (int i = 0; i < count(mediaType) && items.size() < limit; ++i) {
                        if (nameOf(mediaType, i).contains(text, Qt::CaseInsensitive))
                            items.append(item(mediaType, i));
                    }
                    found.insert(mediaType == "radio"_L1 ? mediaType : mediaType + u's', items);
                }
                answer.result(found);
            });
    command(u"music/library/remove_item"_s, {u"media_type"_s, u"library_item_id"_s},
            [this](const Args &args, const FakeAnswer &answer) {
                const QString mediaType = args["media_type"_L1].toString();
                const int index = indexOf(args["library_item_id"_L1]);
                const QJsonValue former = item(mediaType, index);
                if (mediaType == "playlist"_L1)
                    m_playlists.remove(index);
                answer.result({});
                m_server.sendEvent(u"media_item_deleted"_s, uri(mediaType, index), former);
            });
}

void FakeLibrary::addPlaylistCommands() {
    const auto created = [this](const QString &name, const QStringList &tracks, const FakeAnswer &answer) {
        const int index = addPlaylist(name, tracks);
        answer.result(playlist(index));
        sendItemEvent(u"media_item_added"_s, uri(u"playlist"_s, index));
    };
    /// An edit is accepted, then carried out.
    const auto edited = [this](const Args &args, const FakeAnswer &answer, auto edit) {
        const int index = indexOf(args["db_playlist_id"_L1]);
        if (!m_playlists.contains(index))
            return answer.error(notFound, u"Not found"_s);
        answer.result(task());
        edit(m_playlists[index].tracks);
        sendItemEvent(u"media_item_updated"_s, uri(u"playlist"_s, index));
    };
    command(u"music/playlists/playlist_tracks"_s, {u"item_id"_s, u"provider_instance_id_or_domain"_s},
            [this](const Args &args, const FakeAnswer &answer) {
                QJsonArray items;
                for (const QString &trackURI : m_playlists.value(indexOf(args["item_id"_L1])).tracks) {
                    QJsonObject found = itemByURI(trackURI).toObject();
                    found.insert("position"_L1, items.size() + 1);
                    items.append(found);
                }
                answer.stream(items);
            });
    command(u"music/playlists/create_playlist"_s, {u"name"_s},
            [created](const Args &args, const FakeAnswer &answer) {
                created(args["name"_L1].toString(), {}, answer);
            });
    command(u"music/playlists/import_playlist"_s, {u"m3u_data"_s},
            [created](const Args &args, const FakeAnswer &answer) {
                if (args["m3u_data"_L1].toString().trimmed() == "#EXTM3U"_L1)
                    return answer.error(invalidData, u"Empty"_s);
                created(u"Imported Playlist"_s, {}, answer);
            });
    command(u"music/playlists/export_playlist"_s, {u"db_playlist_id"_s},
            [this](const Args &args, const FakeAnswer &answer) {
                const auto tracks = m_playlists.value(indexOf(args["db_playlist_id"_L1])).tracks;
                answer.result(u"#EXTM3U\n"_s + tracks.join(u'\n'));
            });
    command(u"music/playlists/update"_s, {u"item_id"_s, u"update"_s, u"overwrite?"_s},
            [this](const Args &args, const FakeAnswer &answer) {
                const int index = indexOf(args["item_id"_L1]);
                if (args["overwrite"_L1].toBool())
                    m_playlists[index].name = args["update"_L1]["name"_L1].toString();
                answer.result(playlist(index));
                sendItemEvent(u"media_item_updated"_s, uri(u"playlist"_s, index));
            });
    command(u"music/playlists/add_playlist_tracks"_s, {u"db_playlist_id"_s, u"uris"_s},
            [this, edited](const Args &args, const FakeAnswer &answer) {
                edited(args, answer, [&](QStringList &tracks) {
                    for (const QJsonValue added : args["uris"_L1].toArray())
                        tracks += expanded(added.toString());
                });
            });
    command(u"music/playlists/remove_playlist_tracks"_s, {u"db_playlist_id"_s, u"positions_to_remove"_s},
            [edited](const Args &args, const FakeAnswer &answer) {
                edited(args, answer, [&](QStringList &tracks) {
                    QList<int> positions;
                    for (const QJsonValue position : args["positions_to_remove"_L1].toArray())
                        positions.append(position.toInt());
                    std::sort(positions.begin(), positions.end(), std::greater<>());
                    for (const int position : positions) {
                        if (position >= 1 && position <= tracks.size())
                            tracks.remove(position - 1);
                    }
                });
            });
}

void FakeLibrary::addFavoriteCommands() {
    const auto set = [this](const QString &itemURI, bool isOn, const FakeAnswer &answer) {
        if (itemByURI(itemURI).isNull())
            return answer.error(notFound, u"Not found"_s);
        m_favorites.insert(itemURI, isOn);
        answer.result({});
        sendItemEvent(u"media_item_updated"_s, itemURI);
    };
    command(u"music/favorites/add_item"_s, {u"item"_s}, [set](const Args &args, const FakeAnswer &answer) {
        set(args["item"_L1].toString(), true, answer);
    });
    command(u"music/favorites/remove_item"_s, {u"media_type"_s, u"library_item_id"_s},
            [set](const Args &args, const FakeAnswer &answer) {
                set(uri(args["media_type"_L1].toString(), indexOf(args["library_item_id"_L1])), false,
                    answer);
            });
    if (m_dialect == Dialect::old)
        return;
    command(u"builtin/add_radio"_s, {u"url"_s, u"name"_s},
            [this](const Args &args, const FakeAnswer &answer) {
                m_radios.append({args["name"_L1].toString(), args["url"_L1].toString()});
                const int index = static_cast<int>(m_radios.size()) - 1;
                answer.result(radio(index));
                sendItemEvent(u"media_item_added"_s, uri(u"radio"_s, index));
            });
}

void FakeLibrary::addRecommendationCommands() {
    const auto items = [this](const QString &id) -> QJsonArray {
        if (id == "mixed"_L1)
            return {album(0),
                    artist(0),
                    track(0),
                    playlist(0),
                    mapping(u"album"_s, 1),
                    mapping(u"radio"_s, 0),
                    QJsonObject{{u"item_id"_s, u"f"_s},
                                {u"provider"_s, u"library"_s},
                                {u"name"_s, u"A folder"_s},
                                {u"uri"_s, u"library://folder/f"_s},
                                {u"media_type"_s, u"folder"_s}}};
        return stretch(u"album"_s, {{u"limit"_s, 20}});
    };
    const auto folder = [this, items](const QString &id, const QString &name, const QString &type) {
        QJsonObject made{{u"item_id"_s, id},
                         {u"provider"_s, u"library"_s},
                         {u"name"_s, name},
                         {u"uri"_s, u"library://folder/"_s + id},
                         {u"media_type"_s, u"folder"_s},
                         {u"icon"_s, u"mdi-star"_s},
                         {u"subtitle"_s, QJsonValue()},
                         {u"type"_s, type},
                         {u"enabled_by_default"_s, true}};
        if (m_dialect == Dialect::old)
            made.insert("items"_L1, items(id));
        return made;
    };
    command(u"music/recommendations"_s, {}, [folder](const Args &, const FakeAnswer &answer) {
        answer.result(QJsonArray{folder(u"mixed"_s, u"A bit of all"_s, u"default"_s),
                                 folder(u"recent"_s, u"Recently played"_s, u"timeline"_s)});
    });
    if (m_dialect == Dialect::today)
        command(u"music/recommendations/items"_s, {u"provider"_s, u"item_id"_s},
                [items](const Args &args, const FakeAnswer &answer) {
                    answer.result(items(args["item_id"_L1].toString()));
                });
}

void FakeLibrary::addPages() {
    m_server.onHTTP(u"/imageproxy"_s, [this](const QUrl &target) { return picture(target); });
    m_server.onHTTP(u"/imageproxy/"_s, [this](const QUrl &target) { return picture(target); });
    if (m_dialect == Dialect::old)
        return;
    m_server.onHTTP(u"/api-docs/commands.json"_s, [this](const QUrl &) {
        QJsonArray commands;
        for (auto listed = m_listed.cbegin(); listed != m_listed.cend(); ++listed) {
            QJsonArray parameters;
            for (QString name : *listed) {
                const bool isRequired = !name.endsWith(u'?');
                parameters.append(QJsonObject{{u"name"_s, name.remove(u'?')},
                                              {u"type"_s, u"string"_s},
                                              {u"required"_s, isRequired},
                                              {u"description"_s, u""_s}});
            }
            commands.append(QJsonObject{{u"command"_s, listed.key()},
                                        {u"category"_s, listed.key().section(u'/', 0, 0)},
                                        {u"parameters"_s, parameters},
                                        {u"authenticated"_s, true}});
        }
        return FakeMusicAssistant::HTTPAnswer{.body = QJsonDocument(commands).toJson(QJsonDocument::Compact)};
    });
}

FakeMusicAssistant::HTTPAnswer FakeLibrary::picture(const QUrl &target) const {
    static const QSet<int> sizes{0, 80, 160, 256, 512, 1024};
    const QUrlQuery query(target);
    const int size = query.queryItemValue(u"size"_s).toInt();
    const bool isLegacy = target.path() == "/imageproxy"_L1;
    const QString path =
        isLegacy ? QUrl::fromPercentEncoding(query.queryItemValue(u"path"_s, QUrl::FullyDecoded).toUtf8())
                 : target.path().section(u'/', -1);
    if (isLegacy != (m_dialect == Dialect::old) || path.isEmpty())
        return {.status = 404};
    if (!isLegacy && (!sizes.contains(size) || path.size() != 64))
        return {.status = 400};
    QImage drawn(std::max(size, 1), std::max(size, 1), QImage::Format_RGB32);
    drawn.fill(QColor::fromHsv(static_cast<int>(qHash(path, 0) % 360), 160, 200));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    drawn.save(&buffer, "JPEG");
    return {.type = "image/jpeg", .body = bytes, .headers = "Cache-Control: max-age=31536000\r\n"};
}

} // namespace vantor
