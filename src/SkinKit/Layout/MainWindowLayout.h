#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <QString>

#include <array>

/// Where everything of the full main window is, in skin pixels from its top-left corner.
namespace vantor::MainWindowLayout {

inline constexpr QSize size{275, 116};
inline constexpr QSize shadeSize{275, 14};
inline constexpr QRect titleBar{0, 0, 275, 14};
inline constexpr QRect clutterBar{10, 22, 8, 43};
inline constexpr QRect workIndicator{24, 28, 3, 9};
inline constexpr QPoint playIndicator{26, 28};
inline constexpr QRect timeHitArea{39, 26, 59, 13};
/// Minutes tens, minutes ones, seconds tens, seconds ones.
inline constexpr std::array<int, 4> digitXs{48, 60, 78, 90};
inline constexpr int digitY = 26;
inline constexpr QRect visualizer{24, 43, 76, 16};
inline constexpr QRect marquee{111, 27, 154, 6};
inline constexpr QRect marqueeHitArea{111, 24, 154, 12};
inline constexpr QPoint kbps{111, 43};
inline constexpr QPoint khz{156, 43};
inline constexpr QPoint mono{212, 41};
inline constexpr QPoint stereo{239, 41};

/// The same places in the full window and in the shade form.
enum class TitleButton { options, minimize, shade, close };
inline constexpr std::array titleButtons{TitleButton::options, TitleButton::minimize, TitleButton::shade,
                                         TitleButton::close};
[[nodiscard]] QRect rect(TitleButton button);

enum class ClutterButton { mainMenu, alwaysOnTop, fileInfo, doubleSize, visualizer };
inline constexpr std::array clutterButtons{ClutterButton::mainMenu, ClutterButton::alwaysOnTop,
                                           ClutterButton::fileInfo, ClutterButton::doubleSize,
                                           ClutterButton::visualizer};
[[nodiscard]] QRect rect(ClutterButton button);
/// The lit letter; unlit ones are part of the clutter bar's background.
[[nodiscard]] QString spriteName(ClutterButton button);

enum class Transport { previous, play, pause, stop, next, eject };
inline constexpr std::array transports{Transport::previous, Transport::play, Transport::pause,
                                       Transport::stop,     Transport::next, Transport::eject};
[[nodiscard]] QRect rect(Transport button);
[[nodiscard]] QString spriteName(Transport button, bool pressed);

} // namespace vantor::MainWindowLayout
