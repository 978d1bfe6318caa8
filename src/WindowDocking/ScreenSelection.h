#pragma once

#include "WindowDocking/Box.h"

#include <span>

namespace vantor {

/// Which screen a box belongs to. Pure functions; any thread.
namespace ScreenSelection {

/// The screen that shows most of the box, the first of equals; `fallback` when none shows any of it.
[[nodiscard]] Box bounds(const Box &box, std::span<const Box> among, const Box &fallback);

/// The same, but when no screen shows any of the box the nearest one; `fallback` only without screens.
[[nodiscard]] Box nearest(const Box &to, std::span<const Box> among, const Box &fallback);

} // namespace ScreenSelection

} // namespace vantor
