#pragma once

#include "Vantor/Docking/SkinWindowController.h"
#include "WindowDocking/DragSession.h"
#include "WindowDocking/WindowGraph.h"
#include "WindowDocking/WindowLayout.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <functional>
#include <set>
#include <span>

namespace vantor {

/// Applies the docking rules to the real windows: docks and drags them, keeps groups closed, keeps every
/// window on a screen and saves where they stand.
///
/// The desktop space is that of Qt: device-independent points, the origin at the top left. Main thread. Make
/// it before any skinned window is shown, register every window, then call restoreOrDefaultLayout() once;
/// after the windows are shown, ensureOnScreen(). It borrows the settings, and the controllers for as long as
/// it is used.
class WindowDockingCoordinator : public QObject {
    Q_OBJECT

  public:
    explicit WindowDockingCoordinator(QSettings &defaults);

    /// From now on the window takes part. The equalizer and the playlist become child windows of the main
    /// one: call it before the window is shown for the first time.
    void register_(SkinWindowController &controller);

    /// Puts every window where it was left, or stacks what has no place.
    void restoreOrDefaultLayout();
    /// Brings visible windows back that are not all on a screen. Runs by itself when the screens change.
    void ensureOnScreen();
    /// Saves the layout: after a change of the windows that did not go through here.
    void layoutDidChange();

    /// Brings the window and those docked to it to the front, for a click on it.
    void raiseGroup(SkinWindowController &around);
    /// Makes the equalizer and the playlist child windows of the main one, as far as they are not yet.
    void attachChildWindows(SkinWindowController &around);

    /// One drag by the pointer. `to` is where the window's corner would go without snapping, in global
    /// coordinates. dragBegan() says where the corner is then. A drag() outside of a drag only moves the
    /// window.
    QPoint dragBegan(SkinWindowController &controller);
    void drag(SkinWindowController &controller, QPoint to);
    void dragEnded(SkinWindowController &controller);

    /// The main window is minimised, or back again: the others follow it. Each may come early or late.
    void skinnedWindowWillMinimize();
    void skinnedWindowDidDeminimize();

    /// Runs `change`, which gives windows new sizes with their corners in place, and moves what is docked
    /// under them or on their right along.
    void resize(SkinWindowController &controller, const std::function<void()> &change);

    /// Puts a window that is about to be shown again where it last was or, if it cannot be there, under the
    /// first one with room under it. For use inside of resize(), which then sees to it that it is within
    /// reach.
    void prepareToShow(SkinWindowController &controller);
    /// Where a window that is shown again is to stand, given the window under which it goes if its own place
    /// is taken.
    [[nodiscard]] QPoint showPosition(SkinWindowController &forController, SkinWindowController &below);

  private:
    /// The place last asked for a window. The window system confirms a move a little later, and until then a
    /// confirmation of an older one may set the widget back.
    struct Asked {
        QPoint topLeft;
        QElapsedTimer since;
    };
    struct Drag {
        DragSession session;
        QPoint origin; ///< of the dragged window, when the drag began
    };

    [[nodiscard]] SkinWindowController *controller(WindowKind kind) const;
    [[nodiscard]] QRect frame(SkinWindowController &controller) const;
    [[nodiscard]] std::vector<DockedWindow> dockedWindows() const;
    [[nodiscard]] DragLimits dragLimits() const;

    void move(SkinWindowController &controller, Offset toTopLeft);
    void place(const std::map<WindowKind, Offset> &topLefts);
    void moveAllBy(Offset offset);
    void keepReachable();
    void stack(std::span<const WindowKind> kinds);
    bool seedFromLegacyFrames();
    void watchScreens();

    QSettings &m_defaults;
    WindowLayoutStore m_store;
    std::map<WindowKind, SkinWindowController *> m_controllers;
    std::map<WindowKind, Asked> m_asked;
    std::vector<WindowKind> m_frontToBack; ///< as far as this brought it about
    std::optional<Drag> m_drag;
    std::set<WindowKind> m_minimizedAlong; ///< with the main window, to come back with it
    QTimer m_screensSettle;
    bool m_watchesScreens = false;
};

} // namespace vantor
