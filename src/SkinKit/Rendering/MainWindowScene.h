#pragma once

#include "SkinKit/Layout/MainWindowControl.h"
#include "SkinKit/Layout/MainWindowStatus.h"

#include <QString>

#include <array>
#include <optional>
#include <variant>

namespace vantor {

/// The spectrum's bars: per column a height and the row of its falling peak.
struct VisualizerBars {
    std::array<int, 75> heights{}; ///< 0…16 pixels from the bottom
    std::array<int, 75> peaks{};   ///< rows from the bottom, 1 the lowest; below 1 hidden
    bool thin = false;             ///< a line a column instead of bars three columns wide

    bool operator==(const VisualizerBars &) const = default;
};

/// How the oscilloscope joins its samples: not at all, to each other, or to the middle line.
enum class ScopeStyle { dots, lines, solid };

/// The oscilloscope's curve.
struct VisualizerScope {
    std::array<float, 76> samples{}; ///< −1…1
    ScopeStyle style = ScopeStyle::lines;

    bool operator==(const VisualizerScope &) const = default;
};

/// monostate: the visualizer is switched off and its area is background only.
using VisualizerPicture = std::variant<std::monostate, VisualizerBars, VisualizerScope>;

/// Everything that the main window shows at one instant: two equal scenes give the same picture.
struct MainWindowScene {
    MainWindowStatus status;
    bool shaded = false;
    bool focused = true;
    bool showsRates = true; ///< false when nobody knows the rates of what plays: their places stay empty
    bool timeLit = true;    ///< false in the dark half of the blink while paused

    MainWindowControl pressed = MainWindowControl::none; ///< drawn down or, for sliders, with a lit thumb

    double volume = 1;              ///< 0…1
    double balance = 0;             ///< −1…1
    std::optional<double> position; ///< 0…1 of the track; none hides the position bar

    bool shuffle = false;
    bool repeat = false;
    bool equalizerOpen = false;
    bool playlistOpen = false;
    bool alwaysOnTop = false; ///< lights the letter A
    bool doubleSize = false;  ///< lights the letter D

    QString marquee;
    int marqueeOffset = 0; ///< pixels that the text has moved to the left; only used when it scrolls

    VisualizerPicture visualizer; ///< always in full size; the shade form reduces it

    bool operator==(const MainWindowScene &) const = default;
};

} // namespace vantor
