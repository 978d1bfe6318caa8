#include "MusicAssistantKit/Backend/PlaylistMove.h"

namespace vantor {

using namespace Qt::Literals::StringLiterals;

namespace {

/// Whether a name such as "from_position" has one of these words.
bool hasWord(const QString &name, std::initializer_list<QLatin1StringView> words) {
    const QStringList parts = name.toLower().split(u'_', Qt::SkipEmptyParts);
    return std::any_of(words.begin(), words.end(),
                       [&](QLatin1StringView word) { return parts.contains(word); });
}

} // namespace

QString playlistMoveCommand() {
    return u"music/playlists/move_playlist_track"_s;
}

std::optional<QJsonObject> playlistMoveArguments(const QList<MAServerCommands::Parameter> &parameters,
                                                 const QString &libraryID, int from, int to) {
    QString playlist;
    QString start;
    QString end;
    QString shift;
    for (const auto &parameter : parameters) {
        if (hasWord(parameter.name, {"playlist"_L1}))
            playlist = parameter.name;
        else if (hasWord(parameter.name, {"shift"_L1, "delta"_L1}))
            shift = parameter.name;
        else if (hasWord(parameter.name, {"to"_L1, "new"_L1, "target"_L1, "end"_L1}))
            end = parameter.name;
        else if (hasWord(parameter.name,
                         {"from"_L1, "old"_L1, "position"_L1, "pos"_L1, "index"_L1, "start"_L1}))
            start = parameter.name;
    }
    if (playlist.isEmpty() || start.isEmpty() || end.isEmpty() == shift.isEmpty())
        return std::nullopt;
    QJsonObject args{{playlist, libraryID}, {start, from}};
    if (end.isEmpty())
        args.insert(shift, to - from);
    else
        args.insert(end, to);
    return args;
}

} // namespace vantor
