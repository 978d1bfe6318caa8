#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

#include <array>

/// Where everything of the equalizer window is, in skin pixels from its top-left corner, and the maths of its
/// sliders. Slider values are 0 (−12 dB) through 50 (0 dB) to 100 (+12 dB), gains are in decibels; what lies
/// outside is clamped, and what is no number counts as the lowest.
namespace vantor::EQLayout {

inline constexpr QSize windowSize{275, 116};
inline constexpr QSize shadeSize{275, 14};
inline constexpr int titleBarHeight = 14;
inline constexpr QRect shadeButton{254, 3, 9, 9};
inline constexpr QRect closeButton{264, 3, 9, 9};
inline constexpr std::array titleButtonRects{shadeButton, closeButton};
inline constexpr QRect onButton{14, 18, 26, 12};
inline constexpr QRect autoButton{40, 18, 32, 12};
inline constexpr QRect presetsButton{217, 18, 44, 12};
inline constexpr QRect graph{86, 17, 113, 19};
// The scale beside the preamp: a click sets every band to the level printed there.
inline constexpr QRect plus12{45, 36, 22, 8};
inline constexpr QRect zero{45, 64, 22, 8};
inline constexpr QRect minus12{45, 95, 22, 8};

inline constexpr QPoint preampOrigin{21, 38};
inline constexpr int bandCount = 10;
inline constexpr int bandSpacing = 18;
inline constexpr QRect bandStrip{78, 38, 176, 63}; ///< all bands with the gaps between them
inline constexpr QSize bandSize{14, 63};           ///< of a slider, the preamp included
inline constexpr int sliderHeight = 62;
inline constexpr QSize thumbSize{11, 11};
inline constexpr int thumbInsetX = 1;
inline constexpr int thumbTravel = 51;
[[nodiscard]] constexpr QPoint bandOrigin(int band) {
    return bandStrip.topLeft() + QPoint(bandSpacing * band, 0);
}

inline constexpr double midValue = 50;
inline constexpr double snapDistance = 5;
inline constexpr int frameCount = 28; ///< of the slider background

/// The band whose column an x of the window belongs to; the outer ones reach to the window's edges.
[[nodiscard]] int bandIndex(double x);
[[nodiscard]] double value(double gain);
[[nodiscard]] double gain(double value);
/// Catches on the middle when close to it.
[[nodiscard]] double snapped(double value);
[[nodiscard]] int frame(double value);
/// Where a frame lies in the slider background that fills `rect`: a grid of 14 columns and two rows.
[[nodiscard]] QRect bandFrameRect(const QRect &rect, int frame);
/// The thumb's top, from the slider's top.
[[nodiscard]] int thumbY(double value);
/// `y` counts from the slider's top; the pointer is taken as holding the thumb by its middle.
[[nodiscard]] double valueForPointerY(double y);

} // namespace vantor::EQLayout
