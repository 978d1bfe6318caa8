#pragma once

#include <QRgb>

/// The colours of the skin "Meridian": indigo graphite under light from the top left, and one amber that is
/// only ever used for what glows.
namespace vantor::art {

using Color = QRgb;

/// `amount` 0 gives a, 1 gives b.
constexpr Color mix(Color a, Color b, double amount) {
    const auto channel = [amount](int from, int to) {
        return static_cast<int>(from + (to - from) * amount + 0.5);
    };
    return qRgb(channel(qRed(a), qRed(b)), channel(qGreen(a), qGreen(b)), channel(qBlue(a), qBlue(b)));
}

namespace palette {

inline constexpr Color ink = qRgb(11, 11, 18); ///< outlines, gaps between parts
inline constexpr Color bodyTop = qRgb(64, 66, 92);
inline constexpr Color bodyBottom = qRgb(42, 43, 61);
inline constexpr Color barTop = qRgb(52, 54, 78); ///< title bars
inline constexpr Color barBottom = qRgb(34, 35, 51);
inline constexpr Color light = qRgb(112, 115, 150); ///< edges that face the light
inline constexpr Color shade = qRgb(25, 25, 38);    ///< edges that face away
inline constexpr Color keyTop = qRgb(94, 97, 130);
inline constexpr Color keyBottom = qRgb(62, 64, 90);
inline constexpr Color downTop = qRgb(34, 35, 50);
inline constexpr Color downBottom = qRgb(48, 49, 69);
inline constexpr Color print = qRgb(178, 181, 208);    ///< labels printed on the body
inline constexpr Color printDim = qRgb(112, 115, 146); ///< the same without focus
inline constexpr Color glyph = qRgb(232, 234, 246);    ///< symbols on keys

inline constexpr Color glass = qRgb(13, 12, 20); ///< displays; text cells and the visualizer share it
inline constexpr Color dot = qRgb(33, 30, 44);   ///< the visualizer's grid
inline constexpr Color ember = qRgb(138, 58, 22);
inline constexpr Color amber = qRgb(255, 168, 56);
inline constexpr Color flame = qRgb(255, 196, 104); ///< text and digits
inline constexpr Color spark = qRgb(255, 232, 190); ///< the hottest points
inline constexpr Color unlit = qRgb(38, 28, 30);    ///< segments and lamps that are off

} // namespace palette
} // namespace vantor::art
