#pragma once

#include "Vantor/Docking/SkinWindowController.h"
#include "Vantor/Model/PlayerModel.h"
#include "Vantor/Windows/Commands.h"
#include "Vantor/Windows/SkinControl.h"
#include "Vantor/Windows/SkinPointers.h"

#include <QWidget>

#include <optional>
#include <vector>

namespace vantor {

class WindowDockingCoordinator;

/// What the three classic windows have in common: a frameless window at a whole zoom that paints a scene in
/// the model's skin and only where it changed, has the skin's outline and pointers, is dragged by its
/// background, rolls up to its title, takes drops, and shares the program's commands and their keys.
///
/// A subclass knows its controls by numbers of its own, 0 being the background, and answers the virtual
/// functions below. All places are in skin pixels from the window's corner. A subclass calls takeShape() at
/// the end of its constructor and whenever skinSize() or outline() may have changed for reasons of its own,
/// and refresh() whenever its scene may have. Main thread; borrows the model and the commands.
class SkinnedWindow : public QWidget, public SkinWindowController {
    Q_OBJECT

  public:
    /// The window's own number for one of its controls.
    using Control = int;
    static constexpr Control background = 0;

    SkinnedWindow(WindowKind kind, PlayerModel &model, Commands &commands);
    ~SkinnedWindow() override;

    [[nodiscard]] WindowKind windowKind() const override { return m_kind; }
    [[nodiscard]] QWidget &widget() override { return *this; }
    [[nodiscard]] double titleBarHeight() const override { return titleBar().height() * zoom(); }
    [[nodiscard]] int zoom() const { return m_model.windows().isDoubleSize() ? 2 : 1; }
    [[nodiscard]] bool isShaded() const { return m_model.windows().isShaded(m_kind); }
    /// By which the window is taken and on which a double click rolls it up, in skin pixels.
    [[nodiscard]] virtual QRect titleBar() const;

    /// From now on the window's moves go through the docking, which is borrowed. Before it is first shown.
    void dock(WindowDockingCoordinator &docking);
    /// Shows the window, or hides it, as the user last had it. To be called once at the start; from then on
    /// the window follows by itself.
    void showIfOpen();

    // The controls as keyboards and assistive tools meet them.

    /// Every control that can be reached now, in the order in which Tab goes over them.
    [[nodiscard]] virtual std::vector<SkinControl> controls() const = 0;
    [[nodiscard]] std::optional<SkinControl> control(Control id) const;
    /// Does what a click on it does.
    void pressControl(Control id);
    /// Gives a slider a value, brought into its range.
    void setControlValue(Control slider, double value);
    /// The control that Tab has reached; keys go to it first.
    [[nodiscard]] std::optional<Control> focusedControl() const { return m_focused; }
    void focusControl(std::optional<Control> id);

    /// Ends the program and leaves the windows open for its next start.
    static void quitProgram();

    [[nodiscard]] QPoint globalPoint(QPoint at) const { return mapToGlobal(at * zoom()); }

    /// The window as it looks now, at one image pixel per window pixel; outside its outline transparent.
    [[nodiscard]] QImage picture();
    /// Writes picture() in the format that the name's ending says, else as PNG.
    [[nodiscard]] bool savePicture(const QString &path);

  protected:
    // The picture

    /// The window's present size.
    [[nodiscard]] virtual QSize skinSize() const = 0;
    /// The shape of the window, in pixels at `zoom`.
    [[nodiscard]] virtual QRegion outline(int zoom) const = 0;
    /// Gathers the scene afresh from the model, keeps it and says what differs from the one before.
    [[nodiscard]] virtual QRegion composeScene() = 0;
    /// Draws the scene that is kept, one skin pixel being `zoom` painter units. What lies outside the
    /// painter's clip need not be drawn.
    virtual void draw(QPainter &painter, int zoom) const = 0;

    /// How often it wants frames of what moves by itself; none if nothing does, so that nothing is reckoned
    /// for its sake.
    [[nodiscard]] virtual std::optional<FrameClock::Period> framePeriod() const {
        return FrameClock::everyFrame;
    }
    /// Pictures that were made ahead are not to be seen any more: they have another shape or place.
    virtual void dropFrames() {}

    // The pointer. A press on a control grabs it: until it is let go, all movements are the control's. A grab
    // on the background drags the window and reaches the subclass only through grab().

    [[nodiscard]] virtual Control controlAt(QPoint at) const = 0;
    /// The names of the skin's pointers for this place, best first; NORMAL need not be named.
    [[nodiscard]] virtual QStringList pointerNames(Control control, QPoint at) const = 0;
    /// A press. False: nothing is there to be grabbed now.
    virtual bool grab(Control control, QPoint at, Qt::KeyboardModifiers modifiers);
    virtual void drag(Control control, QPoint at);
    /// The end of a grab, whether or not anything came of it; before click().
    virtual void letGo(Control control);
    /// The end of a grab that the user did not end: a menu or dialog took the pointer.
    virtual void cancel(Control control) { letGo(control); }
    /// The control was pressed and let go, or pressed by a key or an assistive tool.
    virtual void click(Control control) = 0;
    /// A double click; false: it counts as two clicks.
    virtual bool doubleClick(Control control, QPoint at);
    virtual void wheel(double notches, QPoint at);
    /// What the right button does where it opens no menu; false: it opens one.
    virtual bool rightClick(QPoint at);
    /// The main menu opens everywhere unless a subclass has a better idea.
    virtual void popUpMenu(QPoint at, QPoint global);
    /// What the menu key means, which has no place of its own: the control that Tab has reached, or none.
    [[nodiscard]] virtual QPoint menuPlace() const;
    virtual void drop(const QList<QUrl> &urls, QPoint at, Qt::KeyboardModifiers modifiers);
    /// The same with items of the library.
    virtual void drop(const QList<MediaID> &ids, QPoint at, Qt::KeyboardModifiers modifiers);

    /// True: the key goes to keyPressEvent() even if a command has it as its shortcut.
    [[nodiscard]] virtual bool wantsKey(const QKeyEvent &event) const;

    /// A slider is given a value within its range by other means than the pointer.
    virtual void setValue(Control slider, double value);

    // For subclasses

    [[nodiscard]] PlayerModel &model() const { return m_model; }
    [[nodiscard]] Commands &commands() const { return m_commands; }
    /// The control that the pointer holds; background also when it holds none.
    [[nodiscard]] Control grabbed() const { return m_grabbed; }
    /// Whether the pointer is still on what it grabbed: a button acts only if it is let go there.
    [[nodiscard]] bool isPointerOnGrabbed() const { return m_pointerOnGrabbed; }
    [[nodiscard]] QPoint skinPoint(QPointF at) const;
    /// Whether a key is for the control that Tab has reached; keyPressEvent() runs it.
    [[nodiscard]] bool isForFocus(const QKeyEvent &event) const;
    /// Lets go of whatever the pointer holds without acting on it.
    void cancelGrab();
    /// The control that the pointer holds does not follow it any more, and no function is called for that.
    void forgetGrab() { m_grabbed = background; }
    /// Takes over a changed scene and repaints what differs.
    void refresh();
    /// Runs what gives the window another size for reasons of its own, and moves what is docked to it along.
    void resizeDocked(const std::function<void()> &change);
    /// Takes over skin, size and outline and repaints everything.
    void takeShape();

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
    /// Serves the control that Tab has reached; call it for keys that mean nothing to the subclass.
    void keyPressEvent(QKeyEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    bool event(QEvent *event) override;

  private:
    void takeWindowState();
    void stayOnTopIfAsked();
    void watchClock();
    void showChange(const QRegion &region);
    void paint(QPainter &painter, const QRegion &region) const;
    void drawFocus(QPainter &painter) const;
    void tellAssistiveTools();

    // What drags the window itself.
    void beginDrag(QPoint global);
    void dragTo(QPoint global);
    void endDrag();

    const WindowKind m_kind;
    PlayerModel &m_model;
    Commands &m_commands;
    SkinPointers m_pointers;
    WindowDockingCoordinator *m_docking = nullptr; ///< none: the window moves alone
    Control m_grabbed = background;
    bool m_pointerOnGrabbed = false;
    std::optional<Control> m_focused;
    std::vector<SkinControl> m_told;   ///< what assistive tools know
    std::optional<QPoint> m_dragStart; ///< from the window's corner to the pointer, while it is dragged
};

} // namespace vantor
