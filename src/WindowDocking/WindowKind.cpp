#include "WindowDocking/WindowKind.h"

#include <QString>

namespace vantor {

QString rawValue(WindowKind kind) {
    switch (kind) {
    case WindowKind::main:
        return QStringLiteral("main");
    case WindowKind::equalizer:
        return QStringLiteral("equalizer");
    case WindowKind::playlist:
        return QStringLiteral("playlist");
    }
    Q_UNREACHABLE();
}

std::optional<WindowKind> windowKindFromRawValue(QStringView text) {
    for (const WindowKind kind : allWindowKinds) {
        if (text == rawValue(kind))
            return kind;
    }
    return {};
}

std::optional<WindowKind> parentWindow(WindowKind kind) {
    if (kind == WindowKind::main)
        return {};
    return WindowKind::main;
}

WindowGroupRole windowGroupRole(WindowKind kind) {
    return kind == WindowKind::main ? WindowGroupRole::primary : WindowGroupRole::auxiliary;
}

} // namespace vantor
