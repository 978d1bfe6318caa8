#include "tests/Support/FakeMusicAssistant/FakePlayers.h"

namespace vantor {

using namespace Qt::Literals::StringLiterals;

// What the commands about players and queues do.

namespace {

enum ErrorCode { queueIsEmpty = 8, playerUnavailable = 10, playerCommandFailed = 11, unexpected = 999 };

const QStringList modeArguments{u"shuffle_enabled?"_s, u"repeat_mode?"_s};

} // namespace

void FakePlayers::command(const QString &name, const QString &idName, const QStringList &more,
                          const Handler &handler) {
    m_library.listCommand(name, QStringList{idName} + more);
    m_server.onCommand(name, [this, idName, more, handler](const Args &args, const FakeAnswer &answer) {
        for (const QString &argument : more) {
            if (!argument.endsWith(u'?') && !args.contains(argument))
                return answer.error(unexpected, u"Missing argument: %1"_s.arg(argument));
        }
        const auto player = players.find(args[idName].toString());
        if (player == players.end() || !player->second["available"_L1].toBool())
            return answer.error(playerUnavailable, u"No such player"_s);
        handler(args, answer);
    });
}

void FakePlayers::addPlayerCommands() {
    m_library.listCommand(u"players/all"_s, {});
    m_server.onCommand(u"players/all"_s, [this](const Args &, const FakeAnswer &answer) {
        QJsonArray all;
        for (const auto &[id, player] : players) {
            if (player["type"_L1] != u"protocol"_s)
                all.append(playerRecord(id));
        }
        answer.result(all);
    });
    const QString id = u"player_id"_s;
    const auto state = [this](const QString &next) {
        return [this, next](const Args &args, const FakeAnswer &answer) {
            const QString queueID = activeQueue(args["player_id"_L1].toString());
            Queue &queue = queues[queueID];
            const bool plays = queue.state == "playing"_L1;
            queue.state = next.isEmpty() ? plays ? u"paused"_s : u"playing"_s : next;
            answer.result({});
            changed(queueID);
        };
    };
    command(u"players/cmd/play"_s, id, {}, state(u"playing"_s));
    command(u"players/cmd/pause"_s, id, {}, state(u"paused"_s));
    command(u"players/cmd/stop"_s, id, {}, state(u"idle"_s));
    command(u"players/cmd/play_pause"_s, id, {}, state({}));
    command(u"players/cmd/seek"_s, id, {u"position"_s}, [this](const Args &args, const FakeAnswer &answer) {
        const QString queueID = activeQueue(args["player_id"_L1].toString());
        queues[queueID].elapsed = args["position"_L1].toDouble();
        answer.result({});
        changed(queueID);
    });
    const auto store = [this](const QString &argument, const QString &member) {
        return [this, argument, member](const Args &args, const FakeAnswer &answer) {
            const QString playerID = args["player_id"_L1].toString();
            players[playerID].insert(member, args[argument]);
            answer.result({});
            changed(playerID);
        };
    };
    command(u"players/cmd/volume_set"_s, id, {u"volume_level"_s},
            store(u"volume_level"_s, u"volume_level"_s));
    command(u"players/cmd/volume_mute"_s, id, {u"muted"_s}, store(u"muted"_s, u"volume_muted"_s));
    command(u"players/add_currently_playing_to_favorites"_s, id, {},
            [this](const Args &args, const FakeAnswer &answer) {
                const Queue &queue = queues[activeQueue(args["player_id"_L1].toString())];
                queue.current < 0 ? answer.error(playerCommandFailed, u"Nothing plays"_s) : answer.result({});
            });
    command(u"players/cmd/set_members"_s, u"target_player"_s,
            {u"player_ids_to_add?"_s, u"player_ids_to_remove?"_s},
            [this](const Args &args, const FakeAnswer &answer) {
                const QString leader = args["target_player"_L1].toString();
                QJsonArray members = players[leader]["group_members"_L1].toArray();
                if (members.isEmpty())
                    members.append(leader);
                const auto set = [&](const QString &member, bool isIn) {
                    if (!players.contains(member))
                        return;
                    players[member].insert("synced_to"_L1, isIn ? QJsonValue(leader) : QJsonValue());
                    if (isIn)
                        members.append(member);
                    else
                        members = QJsonArray::fromVariantList([&] {
                            auto list = members.toVariantList();
                            list.removeAll(member);
                            return list;
                        }());
                };
                for (const QJsonValue member : args["player_ids_to_add"_L1].toArray())
                    set(member.toString(), true);
                for (const QJsonValue member : args["player_ids_to_remove"_L1].toArray())
                    set(member.toString(), false);
                players[leader].insert("group_members"_L1, members.size() > 1 ? members : QJsonArray());
                answer.result({});
                for (const auto &[player, record] : players)
                    m_server.sendEvent(u"player_updated"_s, player, playerRecord(player));
            });
}

void FakePlayers::addQueueCommands() {
    const QString id = u"queue_id"_s;
    m_library.listCommand(u"player_queues/all"_s, {});
    m_server.onCommand(u"player_queues/all"_s, [this](const Args &, const FakeAnswer &answer) {
        QJsonArray all;
        for (const auto &[queueID, queue] : queues)
            all.append(queueRecord(queueID));
        answer.result(all);
    });
    command(u"player_queues/get"_s, id, {}, [this](const Args &args, const FakeAnswer &answer) {
        answer.result(queueRecord(args["queue_id"_L1].toString()));
    });
    command(u"player_queues/get_active_queue"_s, u"player_id"_s, {},
            [this](const Args &args, const FakeAnswer &answer) {
                answer.result(queueRecord(activeQueue(args["player_id"_L1].toString())));
            });
    command(u"player_queues/items"_s, id, {u"limit?"_s, u"offset?"_s},
            [this](const Args &args, const FakeAnswer &answer) {
                const QString queueID = args["queue_id"_L1].toString();
                const Queue &queue = queues[queueID];
                const int offset = args["offset"_L1].toInt();
                QJsonArray items;
                for (int i = offset;
                     i < std::min<qsizetype>(queue.entries.size(), offset + args["limit"_L1].toInt(500)); ++i)
                    items.append(queueItem(queue, queueID, i));
                answer.result(items);
            });
    command(u"player_queues/play_media"_s, id, {u"media"_s, u"option?"_s, u"start_item?"_s},
            [this](const Args &args, const FakeAnswer &answer) {
                const QString queueID = args["queue_id"_L1].toString();
                playMedia(queues[queueID], args);
                answer.result({});
                itemsChanged(queueID);
            });
    command(u"player_queues/play_index"_s, id, {u"index"_s},
            [this](const Args &args, const FakeAnswer &answer) {
                const QString queueID = args["queue_id"_L1].toString();
                const int index = find(queues[queueID], args["index"_L1]);
                answer.result({});
                go(queueID, index);
            });
    for (const int step : {1, -1}) {
        command(step > 0 ? u"player_queues/next"_s : u"player_queues/previous"_s, id, {},
                [this, step](const Args &args, const FakeAnswer &answer) {
                    const QString queueID = args["queue_id"_L1].toString();
                    answer.result({});
                    go(queueID, queues[queueID].current + step);
                });
    }
    const auto mode = [this](const QString &idName) {
        return [this, idName](const Args &args, const FakeAnswer &answer) {
            const QString queueID = activeQueue(args[idName].toString());
            Queue &queue = queues[queueID];
            const bool isShuffling = args["shuffle_enabled"_L1].toBool(queue.isShuffling);
            const bool isNew = std::exchange(queue.isShuffling, isShuffling) != isShuffling;
            if (isNew)
                setShuffling(queue, isShuffling);
            queue.repeatMode = args["repeat_mode"_L1].toString(queue.repeatMode);
            answer.result({});
            isNew ? itemsChanged(queueID) : changed(queueID);
        };
    };
    for (const QString &name : {u"shuffle"_s, u"repeat"_s}) {
        command(u"player_queues/"_s + name, id, modeArguments, mode(id));
        if (m_library.dialect() == FakeLibrary::Dialect::today)
            command(u"players/cmd/"_s + name, u"player_id"_s, modeArguments, mode(u"player_id"_s));
    }
}

void FakePlayers::playMedia(Queue &queue, const Args &args) {
    const QJsonArray media =
        args["media"_L1].isArray() ? args["media"_L1].toArray() : QJsonArray{args["media"_L1]};
    QList<Entry> added;
    for (const QJsonValue one : media) {
        for (const QString &uri : m_library.expanded(one.toString()))
            added.append({u"q%1"_s.arg(m_nextEntry++), uri});
    }
    const QString option = args["option"_L1].toString(u"replace"_s);
    if (option == "replace"_L1) {
        queue = {.entries = added, .isShuffling = queue.isShuffling, .repeatMode = queue.repeatMode};
        queue.current = added.isEmpty() ? -1 : 0;
        queue.state = added.isEmpty() ? u"idle"_s : u"playing"_s;
        const QString start = args["start_item"_L1].toString();
        for (int i = 0; i < added.size() && (heedsStartItem || media.size() == 1); ++i) {
            if (added[i].uri == start)
                queue.current = i;
        }
        if (queue.isShuffling)
            setShuffling(queue, true);
    } else if (option == "add"_L1) {
        queue.entries += added;
    } else {
        const qsizetype at = std::min<qsizetype>(queue.current + 1, queue.entries.size());
        if (option == "replace_next"_L1)
            queue.entries.resize(at);
        for (qsizetype i = 0; i < added.size(); ++i)
            queue.entries.insert(at + i, added[i]);
        if (option == "play"_L1 && !added.isEmpty()) {
            queue.current = static_cast<int>(at);
            queue.state = u"playing"_s;
        }
    }
    if (queue.current < 0 && !queue.entries.isEmpty())
        queue.current = 0;
}

void FakePlayers::setShuffling(Queue &queue, bool isShuffling) {
    const auto number = [](const Entry &entry) { return QStringView(entry.id).mid(1).toUInt(); };
    const auto key = [&](const Entry &entry) {
        return isShuffling ? number(entry) * 2654435761U : number(entry);
    };
    std::sort(queue.entries.begin() + (queue.current + 1), queue.entries.end(),
              [&](const Entry &a, const Entry &b) { return key(a) < key(b); });
}

int FakePlayers::find(const Queue &queue, const QJsonValue &itemOrIndex) {
    if (itemOrIndex.isDouble())
        return itemOrIndex.toInt();
    for (int i = 0; i < queue.entries.size(); ++i) {
        if (queue.entries[i].id == itemOrIndex.toString())
            return i;
    }
    return -1;
}

void FakePlayers::addEditCommands() {
    const QString id = u"queue_id"_s;
    const auto isBuffered = [this](const Queue &queue, int index) {
        return queue.current >= 0 && index < queue.current + buffered;
    };
    command(u"player_queues/delete_item"_s, id, {u"item_id_or_index"_s},
            [this, isBuffered](const Args &args, const FakeAnswer &answer) {
                const QString queueID = args["queue_id"_L1].toString();
                Queue &queue = queues[queueID];
                const int index = find(queue, args["item_id_or_index"_L1]);
                const bool isFixed = index < 0 || isBuffered(queue, index);
                if (!isFixed)
                    queue.entries.remove(index);
                answer.result({});
                if (!isFixed)
                    itemsChanged(queueID);
            });
    command(u"player_queues/move_item"_s, id, {u"queue_item_id"_s, u"pos_shift?"_s},
            [this, isBuffered](const Args &args, const FakeAnswer &answer) {
                const QString queueID = args["queue_id"_L1].toString();
                Queue &queue = queues[queueID];
                const int index = find(queue, args["queue_item_id"_L1]);
                const int to = index + args["pos_shift"_L1].toInt(1);
                if (index < 0 || isBuffered(queue, index) || isBuffered(queue, to))
                    return answer.error(unexpected, u"Already buffered"_s);
                queue.entries.move(index, std::clamp<qsizetype>(to, 0, queue.entries.size() - 1));
                answer.result({});
                itemsChanged(queueID);
            });
    command(u"player_queues/clear"_s, id, {}, [this](const Args &args, const FakeAnswer &answer) {
        const QString queueID = args["queue_id"_L1].toString();
        queues[queueID] = {};
        answer.result({});
        itemsChanged(queueID);
    });
    command(u"player_queues/save_as_playlist"_s, id, {u"name"_s},
            [this](const Args &args, const FakeAnswer &answer) {
                QStringList tracks;
                for (const Entry &entry : queues[args["queue_id"_L1].toString()].entries)
                    tracks.append(entry.uri);
                if (tracks.isEmpty())
                    return answer.error(queueIsEmpty, u"Nothing there"_s);
                const int playlist = m_library.addPlaylist(args["name"_L1].toString(), tracks);
                answer.result(QJsonObject{{u"task_id"_s, u"t2"_s}, {u"status"_s, u"pending"_s}});
                m_library.sendItemEvent(u"media_item_added"_s, FakeLibrary::uri(u"playlist"_s, playlist));
            });
    command(u"player_queues/transfer"_s, u"source_queue_id"_s, {u"target_queue_id"_s, u"auto_play?"_s},
            [this](const Args &args, const FakeAnswer &answer) {
                const QString source = args["source_queue_id"_L1].toString();
                const QString target = args["target_queue_id"_L1].toString();
                queues[target] = std::exchange(queues[source], {});
                queues[target].state = args["auto_play"_L1].toBool() ? u"playing"_s : u"idle"_s;
                answer.result({});
                itemsChanged(source);
                itemsChanged(target);
            });
}

} // namespace vantor
