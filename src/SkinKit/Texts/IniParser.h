#pragma once

#include <QMap>
#include <QString>

namespace vantor {

/// Lower-case section name to lower-case key to value.
using IniDocument = QMap<QString, QMap<QString, QString>>;

namespace IniParser {

/// Bounds the memory that a large hostile file can take; real files hold some dozens.
inline constexpr int maxEntries = 65'536;

/// Total: what is no section, comment or property is skipped; a later duplicate of a key wins; properties
/// before the first section are dropped. A section that holds no property is still present.
/// Reading ends behind `maxEntries` sections and properties together.
[[nodiscard]] IniDocument parse(const QString &text);

} // namespace IniParser
} // namespace vantor
