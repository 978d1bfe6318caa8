#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <limits>

/// A folder of files that can be had again. Blocks: worker threads only.
namespace vantor::CacheFolder {

/// The file appears whole or not at all, for its owner alone, with this time. The bytes that reached the
/// disk; 0 when it did not take them.
qint64 write(const QString &path, const QByteArray &bytes, const QDateTime &time);
/// Empty when there is no such file or it has more than `maxBytes`.
[[nodiscard]] QByteArray read(const QString &path, qint64 maxBytes);

/// Removes the files with the oldest times until no more than so many bytes and entries are left.
void trim(const QString &folder, qint64 maxBytes,
          qsizetype maxEntries = std::numeric_limits<qsizetype>::max());

} // namespace vantor::CacheFolder
