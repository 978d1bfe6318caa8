#pragma once

#include <QImage>

namespace vantor::art {

/// The application's icon, drawn for its size: detail goes as the pixels do.
[[nodiscard]] QImage icon(int side);

} // namespace vantor::art
