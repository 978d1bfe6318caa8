#pragma once

#include <QUrl>

namespace vantor {

/// `path`, such as "/info", under the address of a server, which may have a path of its own.
[[nodiscard]] QUrl endpointURL(const QUrl &baseURL, const QString &path);
/// The same for a WebSocket: ws for http, wss for https.
[[nodiscard]] QUrl webSocketURL(const QUrl &baseURL, const QString &path);
/// Whether it is http or https, has a host and carries no password.
[[nodiscard]] bool isServerURL(const QUrl &baseURL);

} // namespace vantor
