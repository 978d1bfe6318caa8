#pragma once

#include <QString>

namespace vantor::TextFolding {

/// The form in which texts are compared when somebody searches: without case and without accents. Any thread.
[[nodiscard]] QString folded(const QString &text);

} // namespace vantor::TextFolding
