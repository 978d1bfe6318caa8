#pragma once

#include <QPoint>

namespace vantor {

/// Something of the equalizer window that a pointer can act on.
struct EqualizerWindowControl {
    enum Kind {
        none, ///< plain background: drags the window
        shade,
        close,
        on,
        autoLoad,
        presets,
        preamp,
        band,
        plus12, ///< this and the next two: a click sets every band
        zero,
        minus12,
        volume, ///< only in shade form, like the next
        balance,
    };

    Kind kind = none;
    int index = 0; ///< of a band, 0…9

    bool operator==(const EqualizerWindowControl &) const = default;
};

/// The control under a point in skin pixels; `none` outside the window. The gap between two bands belongs to
/// the left one.
[[nodiscard]] EqualizerWindowControl equalizerWindowControlAt(QPoint point, bool shaded);

} // namespace vantor
