#pragma once

#include <QPoint>
#include <QRect>

/// Where the parts stand in their windows, in skin pixels; what the windows' layouts fix and the artwork has
/// to meet.
namespace vantor::art::places {

inline constexpr int windowWidth = 275;
inline constexpr int windowHeight = 116;

// Title bars
inline constexpr int titleKeyRow = 3;
inline constexpr int optionsX = 6;
inline constexpr int minimizeX = 244;
inline constexpr int shadeX = 254;
inline constexpr int closeX = 264;

// Main window
inline constexpr QPoint clutterBar{10, 22};
inline constexpr QPoint playIndicator{26, 28};
inline constexpr int digitX[] = {48, 60, 78, 90};
inline constexpr int digitRow = 26;
inline constexpr QRect visualizer{24, 43, 76, 16};
inline constexpr QRect marquee{111, 27, 154, 6};
inline constexpr QPoint kbps{111, 43};
inline constexpr QPoint khz{156, 43};
inline constexpr QPoint mono{212, 41};
inline constexpr QPoint stereo{239, 41};
inline constexpr QPoint volume{107, 57};
inline constexpr QPoint balance{177, 57};
inline constexpr QPoint equalizer{219, 58};
inline constexpr QPoint playlist{242, 58};
inline constexpr QRect position{16, 72, 248, 10};
inline constexpr QPoint transport{16, 88};
inline constexpr QPoint eject{136, 89};
inline constexpr QPoint shuffle{164, 89};
inline constexpr QPoint repeat{210, 89};

// Shade form of the main window
inline constexpr QRect shadeVisualizer{79, 5, 76, 5};
inline constexpr QRect shadeTime{127, 4, 30, 6};
inline constexpr QRect shadePosition{226, 4, 17, 7};
struct ShadeKey {
    int x;
    int width;
};
inline constexpr ShadeKey shadeTransport[] = {{169, 7}, {176, 10}, {186, 9}, {195, 9}, {204, 10}, {215, 10}};

// Equalizer
inline constexpr QPoint equalizerOn{14, 18};
inline constexpr QPoint equalizerAuto{40, 18};
inline constexpr QPoint presets{217, 18};
inline constexpr QRect graph{86, 17, 113, 19};
inline constexpr QPoint preamp{21, 38};
inline constexpr QPoint bands{78, 38};
inline constexpr int bandSpacing = 18;
inline constexpr int bandCount = 10;
inline constexpr QSize band{14, 63};
inline constexpr QRect shadeVolume{61, 4, 97, 6};
inline constexpr QRect shadeBalance{164, 4, 43, 6};

} // namespace vantor::art::places
