#include "Platform/CacheFolder.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

namespace vantor::CacheFolder {

qint64 write(const QString &path, const QByteArray &bytes, const QDateTime &time) {
    QDir().mkpath(QFileInfo(path).path());
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || !file.setPermissions(QFile::ReadOwner | QFile::WriteOwner) ||
        file.write(bytes) != bytes.size() || !file.flush() ||
        !file.setFileTime(time, QFileDevice::FileModificationTime))
        return 0;
    return file.commit() ? bytes.size() : 0;
}

QByteArray read(const QString &path, qint64 maxBytes) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > maxBytes)
        return {};
    return file.read(maxBytes);
}

void trim(const QString &folder, qint64 maxBytes, qsizetype maxEntries) {
    const QFileInfoList files = QDir(folder).entryInfoList(QDir::Files, QDir::Time); // the newest first
    qint64 bytes = 0;
    qsizetype entries = 0;
    for (const QFileInfo &file : files) {
        bytes += file.size();
        if (++entries > maxEntries || bytes > maxBytes)
            QFile::remove(file.filePath());
    }
}

} // namespace vantor::CacheFolder
