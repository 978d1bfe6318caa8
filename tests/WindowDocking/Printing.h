#pragma once

#include "WindowDocking/LayoutRules.h"

#include <ostream>

namespace vantor {

// What a failed comparison shows.
inline void PrintTo(const Offset &offset, std::ostream *out) {
    *out << '(' << offset.x << ", " << offset.y << ')';
}

inline void PrintTo(const Box &box, std::ostream *out) {
    *out << '(' << box.x << ", " << box.y << ", " << box.width << " x " << box.height << ')';
}

namespace LayoutRules {
inline void PrintTo(const Recovery &recovery, std::ostream *out) {
    if (const auto *const shift = std::get_if<Recovery::Shift>(&recovery.kind))
        *out << "shift (" << shift->offset.x << ", " << shift->offset.y << ')';
    else
        *out << "reset";
}
} // namespace LayoutRules

} // namespace vantor
