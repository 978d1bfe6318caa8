#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace vantor {

struct Skin;

/// What skintool prints about a loaded skin. Texts that come from the skin have their control characters
/// replaced, so that they cannot steer a terminal.
namespace SkinReport {

/// A text of one line as it may go to a terminal.
[[nodiscard]] QString printable(QString text);

/// One line of counts, then "warning: …" and "fallback: …" in the skin's order.
[[nodiscard]] QStringList summary(const QString &input, const Skin &skin);

/// Sheets, colours, regions, cursors and the read-me.
[[nodiscard]] QStringList details(const Skin &skin, const std::optional<QString> &readme);

} // namespace SkinReport
} // namespace vantor
