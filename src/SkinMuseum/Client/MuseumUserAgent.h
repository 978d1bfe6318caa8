#pragma once

#include <QByteArray>
#include <QString>

namespace vantor::MuseumUserAgent {

/// Where people find out what asks their server.
inline constexpr const char *productAddress = "https://vantor.kelvane.co";

[[nodiscard]] inline QByteArray make(const QString &version) {
    return "Vantor/" + version.toUtf8() + " (+" + productAddress + ')';
}

} // namespace vantor::MuseumUserAgent
