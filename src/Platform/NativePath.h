#pragma once

#include <QByteArray>
#include <QString>
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

} // namespace vantor::NativePath
