#pragma once

#include "SkinKit/Layout/MainWindowLayout.h"
#include "SkinKit/Loading/Skin.h"
#include "SkinKit/Rendering/MainWindowScene.h"
#include "SkinKit/Sprites/SpriteDrawer.h"

#include <QImage>
#include <QPainter>
#include <QRect>

namespace vantor {

/// Composes the main window in skin pixels, leaving out what lies wholly outside `dirty`.
class MainWindowPainter {
  public:
    MainWindowPainter(const Skin &skin, const MainWindowScene &scene, const QRect &dirty);

    /// The whole window's size, of which only `dirty` is painted; Format_RGBX8888.
    [[nodiscard]] QImage paint();

  private:
    [[nodiscard]] bool touches(const QRect &rect) const { return m_dirty.intersects(rect); }
    [[nodiscard]] bool isPressed(MainWindowControl control) const { return m_scene.pressed == control; }

    void paintFull();
    void paintShade();
    void paintTitleButtons();
    void paintClutterBar();
    void paintIndicators();
    void paintClock();
    void paintMediaInfo();
    void paintMarquee();
    void paintVolume();
    void paintBalance();
    void paintPosition();
    void paintTransport();
    void paintToggles();
    void paintMiniClock();
    void paintShadePosition();

    const Skin &m_skin;
    const MainWindowScene &m_scene;
    QRect m_dirty;
    QImage m_image;
    QPainter m_painter;
    SpriteDrawer m_drawer;
};

} // namespace vantor
