#pragma once

#include "MusicAssistantKit/Backend/MAServerCommands.h"

#include <QJsonObject>

namespace vantor {

[[nodiscard]] QString playlistMoveCommand();

/// What moves a playlist's track from one position to another. No server is known that has the command, so
/// its own description says what its arguments are called; none when they are not understood. Any thread.
[[nodiscard]] std::optional<QJsonObject>
playlistMoveArguments(const QList<MAServerCommands::Parameter> &parameters, const QString &libraryID,
                      int from, int to);

} // namespace vantor
