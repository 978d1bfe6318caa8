#pragma once

#include "SkinKit/Rendering/MainWindowScene.h"
#include "Vantor/Model/PlayerModel.h"
#include "Vantor/Windows/Commands.h"
#include "Vantor/Windows/SkinPointers.h"

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>

namespace vantor {

/// The classic main window: paints the model's scene in the model's skin and turns mouse, wheel, keys and
/// drops into commands. Only what changed between two scenes is painted again. Main thread; borrows the
/// model.
class MainWindow : public QWidget {
    Q_OBJECT

  public:
    explicit MainWindow(PlayerModel &model);

    /// The window as it looks now, at one image pixel per window pixel; outside its outline transparent.
    [[nodiscard]] QImage picture() const;
    /// Writes picture() in the format that the name's ending says, else as PNG.
    [[nodiscard]] bool savePicture(const QString &path) const;

  protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void changeEvent(QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void leaveEvent(QEvent *event) override;
    bool event(QEvent *event) override;

  private:
    [[nodiscard]] int zoom() const { return m_model.isDoubleSize() ? 2 : 1; }
    [[nodiscard]] QPoint skinPoint(QPointF at) const;
    [[nodiscard]] MainWindowScene composeScene() const;
    void refresh();
    void takeSkin();
    void applyWindowState();
    void applyShape();
    void tick();
    void scheduleTick();
    void grab(MainWindowControl control, QPoint at, QPoint global);
    /// Lets go of whatever the pointer held without acting on it.
    void cancelGrab();
    void click(MainWindowControl control);
    void dragSliderTo(QPoint at);

    PlayerModel &m_model;
    Commands m_commands;
    SkinPointers m_pointers;
    MainWindowScene m_scene; ///< as last painted or about to be

    MainWindowControl m_grabbed = MainWindowControl::none;
    bool m_pointerOnGrabbed = false; ///< a button acts only if it is let go there
    std::optional<QPoint>
        m_dragStart; ///< from the window's corner to the pointer, while the window is dragged
    int m_lastMarqueeX = 0;

    QTimer m_frameTimer;
    QElapsedTimer m_sinceFrame;
};

} // namespace vantor
