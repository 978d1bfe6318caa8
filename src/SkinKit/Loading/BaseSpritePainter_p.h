#pragma once

#include "SkinKit/Loading/PixelCanvas_p.h"
#include "SkinKit/Sprites/SkinSprites.h"

namespace vantor {

namespace BaseColors {

inline constexpr QRgb faceColor = qRgb(92, 96, 102);
inline constexpr QRgb faceLight = qRgb(146, 150, 156);
inline constexpr QRgb faceDark = qRgb(46, 49, 54);
inline constexpr QRgb pressedFace = qRgb(74, 78, 84);
inline constexpr QRgb ink = qRgb(232, 235, 238);
inline constexpr QRgb fieldColor = qRgb(20, 22, 26);
inline constexpr QRgb fieldDim = qRgb(84, 90, 98);
inline constexpr QRgb fieldLit = qRgb(206, 214, 222);
inline constexpr QRgb lamp = qRgb(122, 214, 152);
inline constexpr QRgb busyLamp = qRgb(226, 160, 84);

} // namespace BaseColors

/// Paints the sprites of the generated sheets in one quiet grey design: raised blocks for what can be
/// pressed, sunken dark fields for what shows something, the light from the top left.
class BaseSpritePainter {
  public:
    explicit BaseSpritePainter(PixelCanvas &canvas) : m_canvas(canvas) {}

    void paint(const Sprite &sprite);

  private:
    bool paintFont(const Sprite &sprite);
    bool paintWindow(const Sprite &sprite);
    bool paintPlaylistPiece(const Sprite &sprite);
    bool paintTitleBar(const Sprite &sprite);
    bool paintSlider(const Sprite &sprite);
    bool paintDisplay(const Sprite &sprite);
    void paintButton(const Sprite &sprite);

    void raised(const QRect &rect);
    void pressedDown(const QRect &rect);
    void field(const QRect &rect);
    void face(const QRect &rect);
    void mainWindow(const QRect &rect);
    void equalizerWindow(const QRect &rect);
    void titleButtons(const QRect &bar, bool withOptions);
    void playlistTop(const QRect &rect, bool selected, bool withButtons);
    void playlistSide(const QRect &rect, bool withGroove);
    void playlistBottomLeft(const QRect &rect);
    void playlistBottomRight(const QRect &rect);
    void playlistShade(const QRect &rect, bool selected, bool first, bool last);
    void menuButton(const QRect &rect, const char *label);
    /// The picture that a button of this name carries, without the button.
    void symbol(const QRect &place, const char *button);
    void volumeStrip(const QRect &rect);
    void bandStrip(const QRect &rect);

    PixelCanvas &m_canvas;
};

} // namespace vantor
