#include "LocalPlayback/Queue/QueueStore.h"

#include "LocalPlayback/LocalPlaybackError.h"
#include "LocalPlayback/Queue/QueueFile.h"
#include "Platform/AppPaths.h"

#include <QDir>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QSaveFile>

Q_LOGGING_CATEGORY(queueStoreLog, "co.kelvane.vantor.QueueStore")

namespace vantor {

QUrl QueueStore::defaultURL(const QString &bundleIdentifier) {
    const QString folder =
        bundleIdentifier.isEmpty() ? AppPaths::dataFolder() : AppPaths::dataFolder(bundleIdentifier);
    return QUrl::fromLocalFile(folder + QStringLiteral("/queue.json"));
}

void QueueStore::save(const QueueSnapshot &snapshot) const {
    const QString path = m_fileURL.toLocalFile();
    QDir().mkpath(QFileInfo(path).absolutePath()); // a failure shows when the file is opened
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || !QueueFile::write(snapshot, file) || !file.commit())
        throw LocalPlaybackError::queueWrite(file.errorString());
}

std::optional<QueueSnapshot> QueueStore::load() const {
    std::optional<Loaded> loaded = loadQueue();
    return loaded ? std::optional(std::move(loaded->snapshot)) : std::nullopt;
}

std::optional<QueueStore::Loaded> QueueStore::loadQueue() const {
    QFile file(m_fileURL.toLocalFile());
    if (!QFileInfo(file).isFile() || file.size() > QueueFile::maxBytes || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    std::optional<QueueFile::Decoded> decoded = QueueFile::decode(file.readAll());
    if (!decoded) {
        qCWarning(queueStoreLog, "could not read the queue file");
        return std::nullopt;
    }
    if (decoded->dropped > 0)
        qCWarning(queueStoreLog, "queue restore dropped %ld item(s) of an unknown kind",
                  static_cast<long>(decoded->dropped));
    return Loaded{std::move(decoded->snapshot)};
}

} // namespace vantor
