#pragma once

#include "SkinKit/Rendering/EqualizerWindowScene.h"
#include "Vantor/Model/EqualizerModel.h"
#include "Vantor/Windows/SkinnedWindow.h"

namespace vantor {

/// The equalizer window: its sliders, buttons and keys change the model's setting, and its shade form the
/// player's volume and balance. Main thread; borrows the models and the commands.
class EqualizerWindow : public SkinnedWindow {
    Q_OBJECT

  public:
    EqualizerWindow(PlayerModel &model, EqualizerModel &equalizer, Commands &commands);

    [[nodiscard]] std::vector<SkinControl> controls() const override;

  protected:
    [[nodiscard]] QSize skinSize() const override;
    [[nodiscard]] QRegion outline(int zoom) const override;
    [[nodiscard]] QRegion composeScene() override;
    void draw(QPainter &painter, int zoom) const override;
    [[nodiscard]] std::optional<FrameClock::Period> framePeriod() const override { return std::nullopt; }
    [[nodiscard]] Control controlAt(QPoint at) const override;
    [[nodiscard]] QStringList pointerNames(Control control, QPoint at) const override;
    bool grab(Control control, QPoint at, Qt::KeyboardModifiers modifiers) override;
    void drag(Control control, QPoint at) override;
    void letGo(Control control) override;
    void cancel(Control control) override;
    void click(Control control) override;
    void wheel(double notches, QPoint at) override;
    bool rightClick(QPoint at) override;
    void drop(const QList<QUrl> &urls, QPoint at, Qt::KeyboardModifiers modifiers) override;
    [[nodiscard]] bool wantsKey(const QKeyEvent &event) const override;
    void keyPressEvent(QKeyEvent *event) override;
    void setValue(Control slider, double value) override;

  private:
    void fillMenu(QMenu &menu);
    [[nodiscard]] bool exists(EqualizerWindowControl control) const;
    void describe(SkinControl &known) const;
    void dragSlider(EqualizerWindowControl slider, QPoint at);
    [[nodiscard]] float gain(EqualizerWindowControl slider) const;
    void setGain(EqualizerWindowControl slider, double gain);
    /// As setGain(), and says so for a while.
    void stepGain(EqualizerWindowControl slider, double gain);

    EqualizerModel &m_equalizer;
    EqualizerWindowScene m_scene; ///< as last painted or about to be
};

} // namespace vantor
