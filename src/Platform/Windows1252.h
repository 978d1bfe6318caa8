#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// Windows code page 1252, the encoding of many texts in older files; Qt has no codec for it.
namespace vantor::Windows1252 {

/// Nothing if one of the five unassigned bytes (81 8D 8F 90 9D) occurs.
[[nodiscard]] std::optional<QString> decode(QByteArrayView bytes);

/// Characters outside the code page become "?", one for each.
[[nodiscard]] QByteArray encodeLossy(const QString &text);

} // namespace vantor::Windows1252
