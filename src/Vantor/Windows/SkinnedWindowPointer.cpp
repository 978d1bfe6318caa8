// What the skinned windows do with the mouse.

#include "MusicBackendKit/MediaIDTransfer.h"
#include "Vantor/Docking/WindowDockingCoordinator.h"
#include "Vantor/Windows/SkinnedWindow.h"

#include <QDragEnterEvent>
#include <QMimeData>
#include <QMouseEvent>

#include <cmath>

namespace vantor {

namespace {

constexpr double wheelStep = 0.04; // of the volume, per notch

} // namespace

QPoint SkinnedWindow::skinPoint(QPointF at) const {
    return {static_cast<int>(std::floor(at.x() / zoom())), static_cast<int>(std::floor(at.y() / zoom()))};
}

bool SkinnedWindow::grab(Control, QPoint, Qt::KeyboardModifiers) {
    return true;
}

void SkinnedWindow::drag(Control, QPoint) {}

void SkinnedWindow::letGo(Control) {}

void SkinnedWindow::setValue(Control, double) {}

void SkinnedWindow::mousePressEvent(QMouseEvent *event) {
    if (isMinimized()) // only as asked for: there is no window manager to do it
        setWindowState(windowState() & ~Qt::WindowMinimized);
    if (!isActiveWindow())
        activateWindow(); // where there is no window manager to do it
    if (m_docking)
        m_docking->raiseGroup(*this);
    focusControl(std::nullopt); // the hand has gone back to the mouse
    if (event->button() != Qt::LeftButton)
        return;
    const QPoint at = skinPoint(event->position());
    const Control control = controlAt(at);
    if (!grab(control, at, event->modifiers()))
        return;
    m_grabbed = control;
    m_pointerOnGrabbed = true;
    if (control == background)
        beginDrag(event->globalPosition().toPoint());
    refresh();
}

void SkinnedWindow::cancelGrab() {
    const Control held = std::exchange(m_grabbed, background);
    m_pointerOnGrabbed = false;
    endDrag();
    if (held != background)
        cancel(held);
    refresh();
}

void SkinnedWindow::mouseMoveEvent(QMouseEvent *event) {
    // A menu, a dialog or a window made anew may have taken the release.
    if (!event->buttons().testFlag(Qt::LeftButton) && (m_dragStart || m_grabbed != background))
        cancelGrab();
    if (m_dragStart) {
        dragTo(event->globalPosition().toPoint());
        return;
    }
    const QPoint at = skinPoint(event->position());
    const Control under = controlAt(at);
    if (m_grabbed == background) {
        m_pointers.show(pointerNames(under, at));
        return;
    }
    m_pointerOnGrabbed = under == m_grabbed;
    drag(m_grabbed, at);
    refresh();
}

void SkinnedWindow::mouseReleaseEvent(QMouseEvent *event) {
    if (event->button() != Qt::LeftButton)
        return;
    const Control released = std::exchange(m_grabbed, background);
    const bool clicked = std::exchange(m_pointerOnGrabbed, false);
    endDrag();
    if (released != background) {
        letGo(released);
        if (clicked)
            click(released);
    }
    refresh();
}

bool SkinnedWindow::doubleClick(Control control, QPoint at) {
    if (control != background || !titleBar().contains(at))
        return false;
    m_model.windows().setShaded(m_kind, !isShaded());
    return true;
}

void SkinnedWindow::mouseDoubleClickEvent(QMouseEvent *event) {
    const QPoint at = skinPoint(event->position());
    if (event->button() != Qt::LeftButton || !doubleClick(controlAt(at), at))
        mousePressEvent(event); // the second click of a fast pair counts like any other
}

void SkinnedWindow::wheel(double notches, QPoint) {
    m_model.changeVolume(notches * wheelStep);
}

void SkinnedWindow::wheelEvent(QWheelEvent *event) {
    const double notches = event->angleDelta().y() / 120.0; // Qt counts eighths of a degree, 15° a notch
    if (notches != 0)
        wheel(notches, skinPoint(event->position()));
}

bool SkinnedWindow::rightClick(QPoint) {
    return false;
}

void SkinnedWindow::popUpMenu(QPoint, QPoint global) {
    m_commands.popUpMainMenu(global);
}

void SkinnedWindow::contextMenuEvent(QContextMenuEvent *event) {
    cancelGrab();
    if (event->reason() == QContextMenuEvent::Keyboard) // comes with the middle of the window
        popUpMenu(menuPlace(), globalPoint(menuPlace()));
    else if (!rightClick(skinPoint(event->pos())))
        popUpMenu(skinPoint(event->pos()), event->globalPos());
}

void SkinnedWindow::dragEnterEvent(QDragEnterEvent *event) {
    const bool isOfLibrary = m_model.imports().hasLibrary() &&
                             event->mimeData()->hasFormat(QLatin1String(MediaIDTransfer::contentType));
    if (!isOfLibrary && !event->mimeData()->hasUrls())
        return;
    event->setDropAction(Qt::CopyAction); // whatever the keys propose: nothing is moved away from its owner
    event->accept();
}

void SkinnedWindow::dropEvent(QDropEvent *event) {
    event->setDropAction(Qt::CopyAction);
    event->accept();
    if (const auto transfer = MediaIDTransfer::read(*event->mimeData()))
        drop(transfer->ids, skinPoint(event->position()), event->modifiers());
    else
        drop(event->mimeData()->urls(), skinPoint(event->position()), event->modifiers());
}

void SkinnedWindow::drop(const QList<MediaID> &ids, QPoint, Qt::KeyboardModifiers modifiers) {
    if (modifiers.testFlag(Qt::ShiftModifier))
        m_model.imports().enqueueItems(ids);
    else
        m_model.imports().openItems(ids);
}

void SkinnedWindow::drop(const QList<QUrl> &urls, QPoint, Qt::KeyboardModifiers modifiers) {
    if (modifiers.testFlag(Qt::ShiftModifier))
        m_model.enqueue(urls);
    else
        m_model.open(urls);
}

} // namespace vantor
