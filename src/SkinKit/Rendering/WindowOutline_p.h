#pragma once

#include "SkinKit/Texts/SkinRegion.h"

#include <QRegion>
#include <QSize>

namespace vantor {

/// The pixels of a window that lie inside one of the polygons; may be empty. Time and memory are bounded
/// whatever a file says.
[[nodiscard]] QRegion windowOutline(const QList<SkinRegion::Polygon> &polygons, QSize window);

} // namespace vantor
