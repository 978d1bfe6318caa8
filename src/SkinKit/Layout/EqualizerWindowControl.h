#pragma once

#include <QPoint>
#include <QRect>

#include <optional>

namespace vantor {

/// Everything of the equalizer window that a pointer can act on.
enum class EqualizerWindowControl {
    none, ///< plain background: drags the window
    shade,
    close,
    on,
    autoLoad,
    presets,
    plus12, ///< this and the next two: a click sets every band
    zero,
    minus12,
    preamp,
    band0, ///< the lowest; see bandControl()
    band9 = band0 + 9,
    volume, ///< only in shade form, like the next
    balance,
};

/// `band` 0…9.
[[nodiscard]] constexpr EqualizerWindowControl bandControl(int band) {
    return static_cast<EqualizerWindowControl>(static_cast<int>(EqualizerWindowControl::band0) + band);
}

/// Which band a control is, if it is one.
[[nodiscard]] constexpr std::optional<int> bandOf(EqualizerWindowControl control) {
    if (control < EqualizerWindowControl::band0 || control > EqualizerWindowControl::band9)
        return std::nullopt;
    return static_cast<int>(control) - static_cast<int>(EqualizerWindowControl::band0);
}

/// The control under a point in skin pixels; `none` outside the window. The gap between two bands belongs to
/// the left one.
[[nodiscard]] EqualizerWindowControl equalizerWindowControlAt(QPoint point, bool shaded);
/// Where a control is; null where that form of the window does not have it.
[[nodiscard]] QRect equalizerWindowControlRect(EqualizerWindowControl control, bool shaded);

} // namespace vantor
