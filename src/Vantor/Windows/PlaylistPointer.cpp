// What the pointer does in the playlist window.

#include "Vantor/Windows/PlaylistWindow.h"

#include <QDragMoveEvent>
#include <QMouseEvent>

#include <cmath>

namespace vantor {

namespace {

using List = PlaylistWindowControl;
using Selecting = PlaylistModel::Selecting;
namespace Layout = PlaylistWindowLayout;

constexpr SkinnedWindow::Control popUp = 1000; ///< the whole window while a pop-up is open
constexpr double rowsPerNotch = 3;
constexpr std::chrono::milliseconds firstRepeat{300};
constexpr std::chrono::milliseconds nextRepeat{50};

List listControl(SkinnedWindow::Control control) {
    return static_cast<List>(control);
}

/// Small sheets end above the pop-ups; a click then opens the menu of text.
bool hasSprites(const Skin &skin, PlaylistMenu menu) {
    return std::ranges::none_of(PlaylistMenus::entries(menu), [&](PlaylistMenuEntry entry) {
        return skin.image(PlaylistMenus::entrySprite(entry, false)).isNull();
    });
}

} // namespace

SkinnedWindow::Control PlaylistWindow::controlAt(QPoint at) const {
    if (m_menu)
        return popUp;
    return static_cast<Control>(playlistWindowControlAt(at, m_playlist.size(), isShaded()));
}

QStringList PlaylistWindow::pointerNames(Control control, QPoint at) const {
    switch (listControl(control)) {
    case List::close:
        return {QStringLiteral("PCLOSE")};
    case List::shade:
        return {QStringLiteral("PWINBUT")};
    case List::scrollBar:
        return {QStringLiteral("PVSCROLL")};
    case List::resize:
        return {isShaded() ? QStringLiteral("PWSSIZE") : QStringLiteral("PSIZE")};
    default:
        break;
    }
    if (isShaded())
        return {QStringLiteral("PWSNORM")};
    return {titleBar().contains(at) ? QStringLiteral("PTBAR") : QStringLiteral("PNORMAL")};
}

int PlaylistWindow::rowAt(QPoint at) const {
    return m_playlist.firstRow() + Layout::lineAt(at.y(), m_playlist.size());
}

// Press, drag, release

bool PlaylistWindow::grab(Control control, QPoint at, Qt::KeyboardModifiers modifiers) {
    m_held = {.at = at, .pointer = at, .size = m_playlist.size()};
    if (control == popUp) {
        m_menuEntry = PlaylistMenus::entryAt(*m_menu, at, m_playlist.size());
        m_held.moved = true;
        if (!m_menuEntry)
            closeMenu();
        return m_menu.has_value();
    }
    const List held = listControl(control);
    if (held == List::rows) {
        grabRows(at, modifiers);
    } else if (held == List::scrollBar) {
        const QRect handle = Layout::scrollHandle(m_scene.scroll, m_playlist.size());
        m_held.handleGrip = handle.contains(at) ? at.y() - handle.top() : handle.height() / 2;
        drag(control, at);
    } else if (held == List::scrollUp || held == List::scrollDown) {
        m_playlist.scrollTo(m_playlist.firstRow() + (held == List::scrollUp ? -1 : 1));
        m_repeat.start(firstRepeat);
    } else if (const auto menu = PlaylistMenus::of(held); menu && hasSprites(model().skin(), *menu)) {
        m_menu = menu;
        m_menuEntry = PlaylistMenus::entryAt(*menu, at, m_playlist.size());
    }
    return true;
}

void PlaylistWindow::drag(Control control, QPoint at) {
    m_held.pointer = at;
    if (m_menu) {
        m_held.moved = m_held.moved ||
                       !Layout::rect(PlaylistMenus::button(*m_menu), m_playlist.size(), false).contains(at);
        m_menuEntry = PlaylistMenus::entryAt(*m_menu, at, m_playlist.size());
        return;
    }
    switch (listControl(control)) {
    case List::rows:
        dragRows(at);
        break;
    case List::scrollBar:
        m_playlist.scrollToFraction(Layout::scrollFraction(at.y() - m_held.handleGrip, m_playlist.size()));
        break;
    case List::resize:
        resizeTo(at);
        break;
    default:
        break;
    }
}

void PlaylistWindow::letGo(Control) {
    m_repeat.stop();
    if (m_held.selectsOnLetGo)
        m_playlist.select(*m_held.selectsOnLetGo, Selecting::only);
    // Let go where it was opened, a pop-up stays for a second click.
    if (m_menu && m_held.moved)
        runMenuEntry();
    m_held.selectsOnLetGo.reset();
}

void PlaylistWindow::cancel(Control) {
    m_repeat.stop();
    m_held.selectsOnLetGo.reset();
    closeMenu();
}

void PlaylistWindow::resizeTo(QPoint at) {
    const QPoint way = at - m_held.at;
    m_playlist.setSize(m_held.size + QSize(way.x(), isShaded() ? 0 : way.y()));
}

// Rows

void PlaylistWindow::grabRows(QPoint at, Qt::KeyboardModifiers modifiers) {
    const int row = rowAt(at);
    const bool shift = modifiers.testFlag(Qt::ShiftModifier);
    const bool control = modifiers.testFlag(Qt::ControlModifier);
    if (!m_playlist.track(row)) {
        if (!shift && !control)
            m_playlist.selectNone();
        return;
    }
    m_held.row = row;
    if (shift)
        m_playlist.select(row, Selecting::extending);
    else if (control)
        m_playlist.select(row, Selecting::toggling);
    else if (m_playlist.isSelected(row))
        m_held.selectsOnLetGo = row; // unless all that is selected is dragged
    else
        m_playlist.select(row, Selecting::only);
}

void PlaylistWindow::dragRows(QPoint at) {
    if (!m_held.row || !m_playlist.isSelected(*m_held.row))
        return;
    const int last = Layout::visibleRows(m_playlist.size()) - 1;
    const int line = Layout::lineAt(at.y(), m_playlist.size());
    if (line < 0 || line > last) {
        if (!m_repeat.isActive())
            m_repeat.start(nextRepeat);
    } else {
        m_repeat.stop();
    }
    const int row = m_playlist.firstRow() + std::clamp(line, 0, last);
    if (row == *m_held.row)
        return;
    m_held.selectsOnLetGo.reset();
    *m_held.row += m_playlist.moveSelected(row - *m_held.row);
}

void PlaylistWindow::repeat() {
    int by = 0;
    const List held = listControl(grabbed());
    if (held == List::scrollUp || held == List::scrollDown)
        by = !isPointerOnGrabbed() ? 0 : held == List::scrollUp ? -1 : 1;
    else if (held == List::rows)
        by = Layout::lineAt(m_held.pointer.y(), m_playlist.size()) < 0 ? -1 : 1;
    m_playlist.scrollTo(m_playlist.firstRow() + by);
    if (held == List::rows)
        dragRows(m_held.pointer);
    m_repeat.setInterval(nextRepeat);
}

bool PlaylistWindow::doubleClick(Control control, QPoint at) {
    if (listControl(control) != List::rows)
        return SkinnedWindow::doubleClick(control, at);
    m_playlist.play(rowAt(at));
    return true;
}

void PlaylistWindow::wheel(double notches, QPoint at) {
    const List under = listControl(controlAt(at));
    if (under != List::rows && under != List::scrollBar) {
        SkinnedWindow::wheel(notches, at);
        return;
    }
    m_wheel += notches * rowsPerNotch;
    const double rows = std::trunc(m_wheel);
    m_wheel -= rows;
    m_playlist.scrollTo(m_playlist.firstRow() - static_cast<int>(rows));
}

void PlaylistWindow::popUpMenu(QPoint at, QPoint global) {
    if (listControl(controlAt(at)) != List::rows) {
        SkinnedWindow::popUpMenu(at, global);
        return;
    }
    const int row = rowAt(at);
    if (m_playlist.isSelected(row))
        m_playlist.setCursor(row); // what the menu does to one row, it does to this one
    else
        m_playlist.select(row, Selecting::only);
    m_entries->popUpRowMenu(global);
}

/// The row of the cursor, as long as no control has been reached by Tab.
QPoint PlaylistWindow::menuPlace() const {
    const int line = m_playlist.cursor().value_or(-1) - m_playlist.firstRow();
    const bool isShown = line >= 0 && line < Layout::visibleRows(m_playlist.size());
    if (focusedControl() || isShaded() || !isShown)
        return SkinnedWindow::menuPlace();
    return Layout::row(line, m_playlist.size()).center();
}

// Pop-ups

void PlaylistWindow::closeMenu() {
    m_menu.reset();
    m_menuEntry.reset();
    refresh();
}

void PlaylistWindow::runMenuEntry() {
    const PlaylistMenu menu = *m_menu;
    const std::optional<int> entry = m_menuEntry;
    closeMenu();
    if (!entry)
        return;
    const QRect place = PlaylistMenus::entryRect(menu, *entry, m_playlist.size());
    m_entries->run(PlaylistMenus::entries(menu)[static_cast<std::size_t>(*entry)],
                   globalPoint({place.right() + 1, place.top()}));
}

void PlaylistWindow::mouseMoveEvent(QMouseEvent *event) {
    SkinnedWindow::mouseMoveEvent(event);
    if (!m_menu || grabbed() != background)
        return;
    m_menuEntry = PlaylistMenus::entryAt(*m_menu, skinPoint(event->position()), m_playlist.size());
    refresh();
}

void PlaylistWindow::changeEvent(QEvent *event) {
    if (event->type() == QEvent::ActivationChange && m_menu && !isActiveWindow())
        closeMenu();
    SkinnedWindow::changeEvent(event);
}

// Drops

void PlaylistWindow::dragMoveEvent(QDragMoveEvent *event) {
    const QPoint at = skinPoint(event->position());
    const QRect rows = Layout::rect(List::rows, m_playlist.size(), isShaded());
    if (rows.contains(at)) {
        constexpr int edge = 6; // here the list scrolls under what is dragged
        if (at.y() < rows.top() + edge)
            m_playlist.scrollTo(m_playlist.firstRow() - 1);
        else if (at.y() > rows.bottom() - edge)
            m_playlist.scrollTo(m_playlist.firstRow() + 1);
        m_insertion =
            std::min(Layout::gapAt(at.y(), m_playlist.size()), m_playlist.count() - m_playlist.firstRow());
    } else {
        m_insertion.reset();
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
    refresh();
}

void PlaylistWindow::dragLeaveEvent(QDragLeaveEvent *event) {
    SkinnedWindow::dragLeaveEvent(event);
    m_insertion.reset();
    refresh();
}

void PlaylistWindow::drop(const QList<QUrl> &urls, QPoint, Qt::KeyboardModifiers) {
    model().insert(urls, takeInsertion());
}

void PlaylistWindow::drop(const QList<MediaID> &ids, QPoint, Qt::KeyboardModifiers) {
    model().imports().insertItems(ids, takeInsertion());
}

int PlaylistWindow::takeInsertion() {
    const std::optional<int> gap = std::exchange(m_insertion, std::nullopt);
    refresh();
    return gap ? m_playlist.firstRow() + *gap : m_playlist.count();
}

} // namespace vantor
