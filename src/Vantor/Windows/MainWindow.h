#pragma once

#include "SkinKit/Rendering/MainWindowScene.h"
#include "Vantor/Windows/FramePane.h"
#include "Vantor/Windows/SkinnedWindow.h"

namespace vantor {

/// The classic main window: shows the model's scene and turns its controls into commands. Closing it ends the
/// program. Main thread.
class MainWindow : public SkinnedWindow {
    Q_OBJECT

  public:
    MainWindow(PlayerModel &model, Commands &commands);

    [[nodiscard]] std::vector<SkinControl> controls() const override;

  protected:
    [[nodiscard]] QSize skinSize() const override;
    [[nodiscard]] QRegion outline(int zoom) const override;
    [[nodiscard]] QRegion composeScene() override;
    void draw(QPainter &painter, int zoom) const override;
    [[nodiscard]] std::optional<FrameClock::Period> framePeriod() const override;
    void dropFrames() override { m_pane.hide(); }
    [[nodiscard]] Control controlAt(QPoint at) const override;
    [[nodiscard]] QStringList pointerNames(Control control, QPoint at) const override;
    bool grab(Control control, QPoint at, Qt::KeyboardModifiers modifiers) override;
    void drag(Control control, QPoint at) override;
    void letGo(Control control) override;
    void cancel(Control control) override;
    void click(Control control) override;
    void setValue(Control slider, double value) override;

  private:
    void dragSlider(MainWindowControl slider, QPoint at);
    void describe(SkinControl &known, MainWindowControl control) const;

    [[nodiscard]] bool showVisualizerAhead();
    [[nodiscard]] std::vector<QImage> visualizerPictures() const;

    FramePane m_pane;        ///< with the visualizer, while it moves
    MainWindowScene m_scene; ///< as last painted or about to be
    int m_lastMarqueeX = 0;
};

} // namespace vantor
