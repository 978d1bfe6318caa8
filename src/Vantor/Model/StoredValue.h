#pragma once

#include <QString>

class QSettings;

/// Reads settings that a person, a fault or a later version may have written: what cannot be a value of the
/// kind counts as absent. Main thread.
namespace vantor::StoredValue {

[[nodiscard]] bool boolean(const QSettings &settings, const QString &key, bool fallback);
/// A finite number, brought into the range.
[[nodiscard]] double number(const QSettings &settings, const QString &key, double fallback, double minimum,
                            double maximum);

} // namespace vantor::StoredValue
