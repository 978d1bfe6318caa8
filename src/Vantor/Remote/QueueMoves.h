#pragma once

#include "MusicBackendKit/RemoteQueue.h"

#include <QSet>

/// Pure functions.
namespace vantor::QueueMoves {

/// The edits that make `after` of `before`, lists of the same queue item IDs, by moving only `moved`, in the
/// order in which they have to be carried out.
[[nodiscard]] QList<QueueEdit> edits(const QStringList &before, const QStringList &after,
                                     const QSet<QString> &moved);

} // namespace vantor::QueueMoves
