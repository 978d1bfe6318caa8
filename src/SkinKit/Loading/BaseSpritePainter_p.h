#pragma once

#include "SkinKit/Loading/PixelCanvas_p.h"
#include "SkinKit/Sprites/SkinSprites.h"

namespace vantor {

/// Paints the sprites of the generated sheets in one quiet grey design: raised blocks for what can be
/// pressed, sunken dark fields for what shows something, the light from the top left.
class BaseSpritePainter {
  public:
    explicit BaseSpritePainter(PixelCanvas &canvas) : m_canvas(canvas) {}

    void paint(const Sprite &sprite);

  private:
    bool paintFont(const Sprite &sprite);
    bool paintWindow(const Sprite &sprite);
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
    void volumeStrip(const QRect &rect);
    void bandStrip(const QRect &rect);

    PixelCanvas &m_canvas;
};

} // namespace vantor
