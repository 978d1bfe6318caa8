#pragma once

#include "SkinKit/Rendering/PlaylistWindowScene.h"
#include "Vantor/Model/PlaylistModel.h"
#include "Vantor/Windows/PlaylistCommands.h"
#include "Vantor/Windows/SkinnedWindow.h"

#include <QTimer>

namespace vantor {

/// The playlist window: the queue as a list that is scrolled, selected in, reordered by dragging and filled
/// by dropping. Main thread; borrows its models and the commands.
class PlaylistWindow : public SkinnedWindow {
    Q_OBJECT

  public:
    PlaylistWindow(PlaylistModel &playlist, PlayerModel &model, Commands &commands);

    [[nodiscard]] std::vector<SkinControl> controls() const override;

  protected:
    [[nodiscard]] QSize skinSize() const override;
    [[nodiscard]] QRegion outline(int zoom) const override;
    [[nodiscard]] QRegion composeScene() override;
    void draw(QPainter &painter, int zoom) const override;
    [[nodiscard]] std::optional<FrameClock::Period> framePeriod() const override;
    [[nodiscard]] Control controlAt(QPoint at) const override;
    [[nodiscard]] QStringList pointerNames(Control control, QPoint at) const override;
    bool grab(Control control, QPoint at, Qt::KeyboardModifiers modifiers) override;
    void drag(Control control, QPoint at) override;
    void letGo(Control control) override;
    void cancel(Control control) override;
    void click(Control control) override;
    bool doubleClick(Control control, QPoint at) override;
    void wheel(double notches, QPoint at) override;
    void popUpMenu(QPoint at, QPoint global) override;
    [[nodiscard]] QPoint menuPlace() const override;
    void drop(const QList<QUrl> &urls, QPoint at, Qt::KeyboardModifiers modifiers) override;
    void drop(const QList<MediaID> &ids, QPoint at, Qt::KeyboardModifiers modifiers) override;
    [[nodiscard]] bool wantsKey(const QKeyEvent &event) const override;
    void setValue(Control slider, double value) override;

    void keyPressEvent(QKeyEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void changeEvent(QEvent *event) override;

  private:
    /// What the pointer holds, as far as it goes beyond a button.
    struct Held {
        QPoint at;                           ///< where the press was
        QPoint pointer;                      ///< where the pointer was last
        QSize size;                          ///< of the window then
        int handleGrip = 0;                  ///< from the scroll handle's upper edge to the pointer
        std::optional<int> row{};            ///< the one that is dragged
        bool moved = false;                  ///< the pointer has left the button that opened a pop-up
        std::optional<int> selectsOnLetGo{}; ///< the row that a press on a selected one selects alone
    };

    /// What a key does here; nothing for a key that means nothing.
    [[nodiscard]] std::function<void()> keyAction(const QKeyEvent &event) const;
    void grabRows(QPoint at, Qt::KeyboardModifiers modifiers);
    void dragRows(QPoint at);
    void resizeTo(QPoint at);
    void repeat();
    void closeMenu();
    void runMenuEntry();
    [[nodiscard]] int rowAt(QPoint at) const;
    /// The row in front of which a drop goes; from now on none is.
    [[nodiscard]] int takeInsertion();
    void describe(SkinControl &known, PlaylistWindowControl control) const;

    PlaylistModel &m_playlist;
    PlaylistCommands *m_entries; ///< owned by this window
    PlaylistWindowScene m_scene; ///< as last painted or about to be
    Held m_held;
    std::optional<PlaylistMenu> m_menu;
    std::optional<int> m_menuEntry;
    std::optional<int> m_insertion; ///< the gap between the rows shown into which a drop would go
    double m_wheel = 0;             ///< parts of a row that a fine wheel has turned
    QTimer m_repeat;                ///< scrolls on while a scroll key is held or rows are dragged outside
};

} // namespace vantor
