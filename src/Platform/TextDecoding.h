#pragma once

#include <QByteArrayView>
#include <QString>

#include <optional>

/// How the bytes of a text file of unknown encoding (a skin's texts, a playlist) become text.
namespace vantor::TextDecoding {

/// The text if the bytes are valid UTF-8 (a byte-order mark is dropped), else nothing.
[[nodiscard]] std::optional<QString> utf8(QByteArrayView bytes);

/// Never fails: UTF-8, else Windows-1252, else Latin-1.
[[nodiscard]] QString lenient(QByteArrayView bytes);

} // namespace vantor::TextDecoding
