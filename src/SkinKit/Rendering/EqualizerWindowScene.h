#pragma once

#include "SkinKit/Layout/EQLayout.h"
#include "SkinKit/Layout/EqualizerWindowControl.h"

#include <array>

namespace vantor {

/// Everything that the equalizer window shows at one instant: two equal scenes give the same picture.
struct EqualizerWindowScene {
    using Bands = std::array<double, EQLayout::bandCount>;

    static constexpr Bands flatBands = [] {
        Bands bands{};
        bands.fill(EQLayout::midValue);
        return bands;
    }();

    bool shaded = false;
    bool focused = true;

    EqualizerWindowControl pressed =
        EqualizerWindowControl::none; ///< drawn down or, for sliders, with a lit thumb

    bool on = true;
    bool autoLoad = false;
    double preamp = EQLayout::midValue; ///< slider values, 0…100
    Bands bands = flatBands;

    // Only the shade form shows these.
    double volume = 1;  ///< 0…1
    double balance = 0; ///< −1…1

    bool operator==(const EqualizerWindowScene &) const = default;
};

} // namespace vantor
