#include "SkinKit/Layout/MainWindowControl.h"

#include "SkinKit/Layout/MainShadeLayout.h"
#include "SkinKit/Layout/MainSliders.h"
#include "SkinKit/Layout/MainWindowLayout.h"

#include <algorithm>
#include <span>
#include <vector>

namespace vantor {

namespace {

using Control = MainWindowControl;
using MainSliders::Slider;
using MainSliders::Toggle;

struct Place {
    QRect rect;
    Control control;
};

void append(std::vector<Place> &places, std::span<const MainWindowLayout::TitleButton> buttons) {
    constexpr std::array controls{Control::options, Control::minimize, Control::shade, Control::close};
    for (std::size_t i = 0; i < controls.size(); ++i)
        places.push_back({MainWindowLayout::rect(buttons[i]), controls[i]});
}

constexpr std::array transportControls{Control::previous, Control::play, Control::pause,
                                       Control::stop,     Control::next, Control::eject};

/// Where two places share a pixel, the one drawn on top comes first.
std::vector<Place> fullPlaces() {
    std::vector<Place> places;
    append(places, MainWindowLayout::titleButtons);
    constexpr std::array clutter{Control::clutterMainMenu, Control::clutterAlwaysOnTop,
                                 Control::clutterFileInfo, Control::clutterDoubleSize,
                                 Control::clutterVisualizer};
    for (std::size_t i = 0; i < clutter.size(); ++i)
        places.push_back({MainWindowLayout::rect(MainWindowLayout::clutterButtons[i]), clutter[i]});
    for (std::size_t i = 0; i < transportControls.size(); ++i)
        places.push_back({MainWindowLayout::rect(MainWindowLayout::transports[i]), transportControls[i]});
    places.insert(places.end(), {{MainSliders::frame(Toggle::repeatAll), Control::repeat},
                                 {MainSliders::frame(Toggle::shuffle), Control::shuffle},
                                 {MainSliders::frame(Toggle::equalizer), Control::equalizer},
                                 {MainSliders::frame(Toggle::playlist), Control::playlist},
                                 {Slider::volume.rect(), Control::volume},
                                 {Slider::balance.rect(), Control::balance},
                                 {Slider::position.rect(), Control::position},
                                 {MainWindowLayout::timeHitArea, Control::time},
                                 {MainWindowLayout::visualizer, Control::visualizer},
                                 {MainWindowLayout::marqueeHitArea, Control::marquee}});
    return places;
}

std::vector<Place> shadePlaces() {
    std::vector<Place> places;
    append(places, MainWindowLayout::titleButtons);
    for (std::size_t i = 0; i < transportControls.size(); ++i)
        places.push_back({MainShadeLayout::frame(MainWindowLayout::transports[i]), transportControls[i]});
    places.insert(places.end(), {{Slider::shadePosition.rect(), Control::position},
                                 {MainShadeLayout::miniTimeHitArea, Control::time},
                                 {MainShadeLayout::visualizerFrame, Control::visualizer}});
    return places;
}

const std::vector<Place> &places(bool shaded) {
    static const std::vector<Place> full = fullPlaces();
    static const std::vector<Place> shade = shadePlaces();
    return shaded ? shade : full;
}

} // namespace

MainWindowControl mainWindowControlAt(QPoint point, bool shaded) {
    for (const Place &place : places(shaded)) {
        if (place.rect.contains(point))
            return place.control;
    }
    return Control::none;
}

QRect mainWindowControlRect(MainWindowControl control, bool shaded) {
    const auto &all = places(shaded);
    const auto found = std::ranges::find(all, control, &Place::control);
    return found == all.end() ? QRect() : found->rect;
}

} // namespace vantor
