#include "LocalPlayback/Queue/QueueFile.h"

#include <QBuffer>

#include <cstdlib>

using namespace vantor;

static QByteArray bytesOf(const QueueSnapshot &snapshot) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    if (!QueueFile::write(snapshot, buffer))
        std::abort();
    return buffer.data();
}

// What can be read is written and read again without a change. -max_len=4096.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const std::optional<QueueFile::Decoded> decoded = QueueFile::decode(bytes);
    if (!decoded)
        return 0;
    const QueueSnapshot &snapshot = decoded->snapshot;
    if (snapshot.currentIndex &&
        (*snapshot.currentIndex < 0 || static_cast<size_t>(*snapshot.currentIndex) >= snapshot.items.size()))
        std::abort();
    const QByteArray written = bytesOf(snapshot);
    const std::optional<QueueFile::Decoded> again = QueueFile::decode(written);
    if (!again || again->dropped != 0 || bytesOf(again->snapshot) != written)
        std::abort();
    return 0;
}
