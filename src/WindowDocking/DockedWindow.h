#pragma once

#include "WindowDocking/Box.h"
#include "WindowDocking/WindowKind.h"

namespace vantor {

/// One visible window as the rules see it.
struct DockedWindow {
    WindowKind kind = WindowKind::main;
    Box box;

    bool operator==(const DockedWindow &) const = default;
};

} // namespace vantor
