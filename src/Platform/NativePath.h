#pragma once

#include <QByteArray>
#include <QStringList>
#include <QUrl>

/// File names as text and back without loss. Names are bytes; those that are no UTF-8 (skins unpacked long
/// ago in some other encoding) keep each odd byte as a lone surrogate U+DC80 … U+DCFF, which no sound text
/// holds. Such a text finds its file again only through bytes(). Any thread.
namespace vantor::NativePath {

[[nodiscard]] QString text(QByteArrayView bytes);
[[nodiscard]] QByteArray bytes(const QString &text);

/// The file's address, which keeps every byte, and back. (QUrl's own conversions know only sound names.)
[[nodiscard]] QUrl url(const QString &text);
[[nodiscard]] QString fromUrl(const QUrl &url);

// These wait for the disk, but never for the other end of a pipe.
/// What a file holds; empty when it is more than `maxBytes`, or no file that can be read.
[[nodiscard]] QByteArray read(const QString &path, qint64 maxBytes);
/// The names of the files of a folder that are not hidden, sorted.
[[nodiscard]] QStringList files(const QString &folder);

} // namespace vantor::NativePath
