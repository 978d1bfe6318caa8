#include "MusicBackendKit/RemoteQueue.h"

namespace vantor {

RemoteQueueSnapshot RemoteQueueSnapshot::empty(const OutputDevice::ID &output) {
    RemoteQueueSnapshot snapshot;
    snapshot.output = output;
    return snapshot;
}

QueueEdit QueueEdit::play(int index) {
    QueueEdit edit;
    edit.kind = Kind::play;
    edit.index = index;
    return edit;
}

QueueEdit QueueEdit::remove(const QStringList &items) {
    QueueEdit edit;
    edit.kind = Kind::remove;
    edit.items = items;
    return edit;
}

QueueEdit QueueEdit::move(const QString &itemID, int shift) {
    QueueEdit edit;
    edit.kind = Kind::move;
    edit.itemID = itemID;
    edit.shift = shift;
    return edit;
}

QueueEdit QueueEdit::clear() {
    return {};
}

QString QueueEditError::description() const {
    return QString::fromLatin1(what());
}

} // namespace vantor
