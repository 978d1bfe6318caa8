#include "SkinKit/Layout/EqualizerWindowControl.h"

#include "SkinKit/Layout/EQLayout.h"
#include "SkinKit/Layout/MainSliders.h"

#include <span>

namespace vantor {

namespace {

using Control = EqualizerWindowControl;
using MainSliders::Slider;

struct Place {
    QRect rect;
    Control control;
};

constexpr std::array fullPlaces{
    Place{EQLayout::shadeButton, Control::shade},
    Place{EQLayout::closeButton, Control::close},
    Place{EQLayout::onButton, Control::on},
    Place{EQLayout::autoButton, Control::autoLoad},
    Place{EQLayout::presetsButton, Control::presets},
    Place{EQLayout::plus12, Control::plus12},
    Place{EQLayout::zero, Control::zero},
    Place{EQLayout::minus12, Control::minus12},
    Place{QRect(EQLayout::preampOrigin, EQLayout::bandSize), Control::preamp},
};

constexpr std::array shadePlaces{
    Place{EQLayout::shadeButton, Control::shade},
    Place{EQLayout::closeButton, Control::close},
    Place{Slider::eqShadeVolume.rect(), Control::volume},
    Place{Slider::eqShadeBalance.rect(), Control::balance},
};

std::span<const Place> placesOf(bool shaded) {
    return shaded ? std::span<const Place>(shadePlaces) : fullPlaces;
}

} // namespace

Control equalizerWindowControlAt(QPoint point, bool shaded) {
    for (const Place &place : placesOf(shaded)) {
        if (place.rect.contains(point))
            return place.control;
    }
    if (!shaded && EQLayout::bandStrip.contains(point))
        return bandControl(EQLayout::bandIndex(point.x()));
    return Control::none;
}

QRect equalizerWindowControlRect(Control control, bool shaded) {
    if (const std::optional<int> band = bandOf(control); band && !shaded)
        return {EQLayout::bandOrigin(*band), EQLayout::bandSize};
    for (const Place &place : placesOf(shaded)) {
        if (place.control == control)
            return place.rect;
    }
    return {};
}

} // namespace vantor
