#pragma once

#include "WindowDocking/Box.h"

#include <QRectF>

namespace vantor {

/// Converts between screen coordinates whose y axis grows upwards and the desktop space, whose origin is the
/// top of the primary screen and whose y axis grows downwards. An upwards rectangle is written as a QRectF
/// whose y is its lower edge: y + height is then its upper one.
struct DesktopSpace {
    double primaryTop = 0; ///< the top edge (largest y) of the primary screen, in upwards coordinates

    [[nodiscard]] Box box(const QRectF &rect) const {
        return {rect.x(), primaryTop - (rect.y() + rect.height()), rect.width(), rect.height()};
    }
    [[nodiscard]] QRectF rect(const Box &box) const {
        return {box.x, primaryTop - (box.y + box.height), box.width, box.height};
    }

    bool operator==(const DesktopSpace &) const = default;
};

} // namespace vantor
