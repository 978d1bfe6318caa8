#include "Vantor/Remote/QueueMoves.h"

namespace vantor {

// Each one goes right behind what it follows in the end, the first ones first: what comes later cannot part
// them any more.
QList<QueueEdit> QueueMoves::edits(const QStringList &before, const QStringList &after,
                                   const QSet<QString> &moved) {
    QList<QueueEdit> edits;
    QStringList list = before;
    for (qsizetype i = 0; i < after.size(); ++i) {
        if (!moved.contains(after[i]))
            continue;
        const qsizetype from = list.indexOf(after[i]);
        if (from < 0)
            continue;
        list.removeAt(from);
        const qsizetype to = i == 0 ? 0 : list.indexOf(after[i - 1]) + 1;
        list.insert(to, after[i]);
        if (to != from) // which a server may take for something else
            edits.append(QueueEdit::move(after[i], static_cast<int>(to - from)));
    }
    return edits;
}

} // namespace vantor
