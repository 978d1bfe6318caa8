#pragma once

#include <QByteArrayView>
#include <QString>

#include <optional>

/// How the bytes of a skin's text files become text.
namespace vantor::SkinText {

/// The text if the bytes are valid UTF-8 (a byte-order mark is dropped), else nothing.
[[nodiscard]] std::optional<QString> utf8(QByteArrayView bytes);

/// The bytes as Windows code page 1252; nothing if one of its five unassigned bytes occurs.
[[nodiscard]] std::optional<QString> windows1252(QByteArrayView bytes);

/// Never fails: UTF-8, else Windows-1252, else Latin-1.
[[nodiscard]] QString lenient(QByteArrayView bytes);

} // namespace vantor::SkinText
