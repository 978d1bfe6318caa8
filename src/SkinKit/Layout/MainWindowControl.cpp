#include "SkinKit/Layout/MainWindowControl.h"

#include "SkinKit/Layout/MainShadeLayout.h"
#include "SkinKit/Layout/MainSliders.h"
#include "SkinKit/Layout/MainWindowLayout.h"

#include <vector>

namespace vantor {

namespace {

struct Place {
    QRect rect;
    MainWindowControl control;
};

constexpr std::array titleControls{MainWindowControl::options, MainWindowControl::minimize,
                                   MainWindowControl::shade, MainWindowControl::close};
constexpr std::array clutterControls{MainWindowControl::clutterMainMenu,
                                     MainWindowControl::clutterAlwaysOnTop,
                                     MainWindowControl::clutterFileInfo, MainWindowControl::clutterDoubleSize,
                                     MainWindowControl::clutterVisualizer};
constexpr std::array transportControls{MainWindowControl::previous, MainWindowControl::play,
                                       MainWindowControl::pause,    MainWindowControl::stop,
                                       MainWindowControl::next,     MainWindowControl::eject};
constexpr std::array toggleControls{MainWindowControl::shuffle, MainWindowControl::repeat,
                                    MainWindowControl::equalizer, MainWindowControl::playlist};

void addTitleButtons(std::vector<Place> &places) {
    for (std::size_t i = 0; i < titleControls.size(); ++i)
        places.push_back({MainWindowLayout::rect(MainWindowLayout::titleButtons[i]), titleControls[i]});
}

void addSlider(std::vector<Place> &places, const MainSliders::Slider &slider, MainWindowControl control) {
    places.push_back({QRect(slider.origin, slider.size), control});
}

std::vector<Place> fullPlaces() {
    std::vector<Place> places;
    addTitleButtons(places);
    for (std::size_t i = 0; i < clutterControls.size(); ++i)
        places.push_back({MainWindowLayout::rect(MainWindowLayout::clutterButtons[i]), clutterControls[i]});
    for (std::size_t i = 0; i < transportControls.size(); ++i)
        places.push_back(
            {MainWindowLayout::rect(MainWindowLayout::transportButtons[i]), transportControls[i]});
    for (std::size_t i = 0; i < toggleControls.size(); ++i)
        places.push_back({MainSliders::frame(MainSliders::toggles[i]), toggleControls[i]});
    addSlider(places, MainSliders::volume, MainWindowControl::volume);
    addSlider(places, MainSliders::balance, MainWindowControl::balance);
    addSlider(places, MainSliders::position, MainWindowControl::position);
    places.push_back({MainWindowLayout::timeHitArea, MainWindowControl::time});
    places.push_back({MainWindowLayout::visualizer, MainWindowControl::visualizer});
    places.push_back({MainWindowLayout::marqueeHitArea, MainWindowControl::marquee});
    return places;
}

std::vector<Place> shadePlaces() {
    std::vector<Place> places;
    addTitleButtons(places);
    for (std::size_t i = 0; i < transportControls.size(); ++i)
        places.push_back(
            {MainShadeLayout::frame(MainWindowLayout::transportButtons[i]), transportControls[i]});
    addSlider(places, MainSliders::shadePosition, MainWindowControl::position);
    places.push_back({MainShadeLayout::miniTimeHitArea, MainWindowControl::time});
    places.push_back({MainShadeLayout::visualizerFrame, MainWindowControl::visualizer});
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
    return MainWindowControl::none;
}

QRect mainWindowControlRect(MainWindowControl control, bool shaded) {
    for (const Place &place : places(shaded)) {
        if (place.control == control)
            return place.rect;
    }
    return {};
}

} // namespace vantor
