#include "Vantor/Windows/SkinnedWindow.h"

#include "Vantor/Docking/WindowDockingCoordinator.h"

#include <QAccessible>
#include <QApplication>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QImageWriter>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QWindow>

#include <algorithm>
#include <cmath>

namespace vantor {

namespace {

constexpr double wheelStep = 0.04; // of the volume, per notch
constexpr int titleHeight = 14;
constexpr Qt::WindowFlags baseFlags = Qt::Window | Qt::FramelessWindowHint | Qt::WindowMinimizeButtonHint;

QRegion scaled(const QRegion &region, int factor) {
    QRegion result;
    for (const QRect &rect : region)
        result += QRect(rect.topLeft() * factor, rect.size() * factor);
    return result;
}

} // namespace

SkinnedWindow::SkinnedWindow(WindowKind kind, PlayerModel &model, Commands &commands)
    : QWidget(nullptr, baseFlags), m_kind(kind), m_model(model), m_commands(commands), m_pointers(*this) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoSystemBackground);
    setMouseTracking(true);
    setAcceptDrops(true);
    setFocusPolicy(Qt::StrongFocus);
    if (model.windows().isAlwaysOnTop())
        setWindowFlag(Qt::WindowStaysOnTopHint);
    commands.addTo(*this);
    connect(&model, &PlayerModel::sceneChanged, this, &SkinnedWindow::refresh);
    connect(&model, &PlayerModel::skinChanged, this, &SkinnedWindow::takeShape);
    connect(&model.windows(), &WindowState::changed, this, &SkinnedWindow::takeWindowState);
}

SkinnedWindow::~SkinnedWindow() {
    m_model.clock().setWatched(this, false);
}

QRect SkinnedWindow::titleBar() const {
    return {0, 0, skinSize().width(), titleHeight};
}

// Painting

void SkinnedWindow::refresh() {
    const QRegion changed = composeScene();
    if (!changed.isEmpty())
        update(scaled(changed, zoom()));
    if (QAccessible::isActive())
        tellAssistiveTools();
}

void SkinnedWindow::paintEvent(QPaintEvent *event) {
    QPainter painter(this);
    painter.setClipRegion(event->region());
    draw(painter, zoom());
    drawFocus(painter);
}

QImage SkinnedWindow::picture() {
    refresh();
    QImage image(skinSize() * zoom(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setClipRegion(outline(zoom()));
    draw(painter, zoom());
    return image;
}

bool SkinnedWindow::savePicture(const QString &path) {
    const QByteArray format = QFileInfo(path).suffix().toLower().toLatin1();
    const bool known = QImageWriter::supportedImageFormats().contains(format);
    return picture().save(path, known ? nullptr : "PNG");
}

void SkinnedWindow::takeShape() {
    m_pointers.setCursors(m_model.skin().cursors, zoom());
    static_cast<void>(composeScene()); // all of it is painted below
    const QSize size = skinSize() * zoom();
    setFixedSize(size);
    const QRegion shape = outline(zoom());
    static const bool hasShapes = QGuiApplication::platformName() != QLatin1String("offscreen");
    if (!hasShapes || shape == QRegion(QRect(QPoint(), size)))
        clearMask();
    else
        setMask(shape);
    update();
}

void SkinnedWindow::takeWindowState() {
    stayOnTopIfAsked();
    takeShape();
    if (m_docking && m_model.windows().isOpen(m_kind) && !isVisible())
        m_docking->prepareToShow(*this);
    showIfOpen();
}

void SkinnedWindow::stayOnTopIfAsked() {
    if (m_model.windows().isAlwaysOnTop() == windowFlags().testFlag(Qt::WindowStaysOnTopHint))
        return;
    // Through the window's handle: the widget's own way makes the window anew, which loses the focus.
    overrideWindowFlags(windowFlags() ^ Qt::WindowStaysOnTopHint);
    if (QWindow *const handle = windowHandle())
        handle->setFlags(windowFlags());
}

// Mouse

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

void SkinnedWindow::popUpMenu(QPoint, QPoint global) {
    m_commands.popUpMainMenu(global);
}

void SkinnedWindow::contextMenuEvent(QContextMenuEvent *event) {
    cancelGrab();
    popUpMenu(skinPoint(event->pos()), event->globalPos());
}

void SkinnedWindow::dragEnterEvent(QDragEnterEvent *event) {
    if (!event->mimeData()->hasUrls())
        return;
    event->setDropAction(Qt::CopyAction); // whatever the keys propose: nothing is moved away from its owner
    event->accept();
}

void SkinnedWindow::dropEvent(QDropEvent *event) {
    event->setDropAction(Qt::CopyAction);
    event->accept();
    drop(event->mimeData()->urls(), skinPoint(event->position()), event->modifiers());
}

void SkinnedWindow::drop(const QList<QUrl> &urls, QPoint, Qt::KeyboardModifiers modifiers) {
    if (modifiers.testFlag(Qt::ShiftModifier))
        m_model.enqueue(urls);
    else
        m_model.open(urls);
}

// The window's own place

void SkinnedWindow::dock(WindowDockingCoordinator &docking) {
    m_docking = &docking;
    docking.register_(*this);
}

void SkinnedWindow::beginDrag(QPoint global) {
    m_dragStart = global - pos();
    if (m_docking)
        m_docking->dragBegan(*this);
}

void SkinnedWindow::dragTo(QPoint global) {
    const QPoint to = global - *m_dragStart;
    if (m_docking)
        m_docking->drag(*this, to);
    else
        move(to);
}

void SkinnedWindow::endDrag() {
    if (std::exchange(m_dragStart, std::nullopt) && m_docking)
        m_docking->dragEnded(*this);
}

void SkinnedWindow::resizeDocked(const std::function<void()> &change) {
    if (m_docking)
        m_docking->resize(*this, change);
    else
        change();
}

// Controls without a pointer

std::optional<SkinControl> SkinnedWindow::control(Control id) const {
    const std::vector<SkinControl> all = controls();
    const auto found = std::ranges::find(all, id, &SkinControl::id);
    return found == all.end() ? std::nullopt : std::optional(*found);
}

void SkinnedWindow::pressControl(Control id) {
    if (!control(id))
        return;
    click(id);
    refresh();
}

void SkinnedWindow::setControlValue(Control slider, double value) {
    const std::optional<SkinControl> known = control(slider);
    if (!known || known->kind != SkinControl::Kind::slider || !std::isfinite(value))
        return;
    setValue(slider, std::clamp(value, known->minimum, known->maximum));
    refresh();
}

void SkinnedWindow::focusControl(std::optional<Control> id) {
    if (id == m_focused)
        return;
    m_focused = id;
    update();
    if (!id || !QAccessible::isActive())
        return;
    if (QAccessibleInterface *const self = QAccessible::queryAccessibleInterface(this)) {
        QAccessibleEvent event(self->focusChild(), QAccessible::Focus);
        QAccessible::updateAccessibility(&event);
    }
}

bool SkinnedWindow::focusNextPrevChild(bool next) {
    std::vector<SkinControl> stops = controls();
    std::erase_if(stops, [](const SkinControl &control) { return control.kind == SkinControl::Kind::text; });
    if (stops.empty())
        return false;
    const auto count = static_cast<std::ptrdiff_t>(stops.size());
    const auto present = m_focused ? std::ranges::find(stops, *m_focused, &SkinControl::id) : stops.end();
    std::ptrdiff_t to = next ? 0 : count - 1;
    if (present != stops.end())
        to = (present - stops.begin() + (next ? 1 : count - 1)) % count;
    focusControl(stops[static_cast<std::size_t>(to)].id);
    return true;
}

bool SkinnedWindow::isForFocus(const QKeyEvent &event) const {
    const std::optional<SkinControl> focused = m_focused ? control(*m_focused) : std::nullopt;
    if (!focused || (event.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier)
        return false;
    switch (event.key()) {
    case Qt::Key_Escape:
        return true;
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return focused->kind != SkinControl::Kind::slider;
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Home:
    case Qt::Key_End:
        return focused->kind == SkinControl::Kind::slider;
    default:
        return false;
    }
}

void SkinnedWindow::keyPressEvent(QKeyEvent *event) {
    if (!isForFocus(*event)) {
        QWidget::keyPressEvent(event);
        return;
    }
    const SkinControl focused = *control(*m_focused);
    switch (event->key()) {
    case Qt::Key_Escape:
        focusControl(std::nullopt);
        break;
    case Qt::Key_Left:
    case Qt::Key_Down:
        setControlValue(focused.id, focused.value - focused.step);
        break;
    case Qt::Key_Right:
    case Qt::Key_Up:
        setControlValue(focused.id, focused.value + focused.step);
        break;
    case Qt::Key_Home:
        setControlValue(focused.id, focused.minimum);
        break;
    case Qt::Key_End:
        setControlValue(focused.id, focused.maximum);
        break;
    default:
        if (!event->isAutoRepeat())
            pressControl(focused.id);
        break;
    }
}

// Black and white by turns shows on every skin.
void SkinnedWindow::drawFocus(QPainter &painter) const {
    const std::optional<SkinControl> focused = m_focused ? control(*m_focused) : std::nullopt;
    if (!focused || !isActiveWindow())
        return;
    const QRect frame(focused->rect.topLeft() * zoom(), focused->rect.size() * zoom());
    painter.setPen(Qt::black);
    painter.drawRect(frame.adjusted(0, 0, -1, -1));
    painter.setPen(QPen(Qt::white, 1, Qt::DotLine));
    painter.drawRect(frame.adjusted(0, 0, -1, -1));
}

void SkinnedWindow::tellAssistiveTools() {
    std::vector<SkinControl> now = controls();
    QAccessibleInterface *const self = QAccessible::queryAccessibleInterface(this);
    for (std::size_t i = 0; self && i < now.size(); ++i) {
        const auto before = std::ranges::find(m_told, now[i].id, &SkinControl::id);
        if (before == m_told.end() || *before == now[i])
            continue;
        QAccessibleInterface *const child = self->child(static_cast<int>(i));
        if (before->checked != now[i].checked) {
            QAccessible::State changed;
            changed.checked = true;
            QAccessibleStateChangeEvent event(child, changed);
            QAccessible::updateAccessibility(&event);
        } else if (before->value != now[i].value) {
            QAccessibleValueChangeEvent event(child, now[i].value);
            QAccessible::updateAccessibility(&event);
        } else if (before->name != now[i].name) {
            QAccessibleEvent event(child, QAccessible::NameChanged);
            QAccessible::updateAccessibility(&event);
        }
    }
    m_told = std::move(now);
}

// Keys and life

bool SkinnedWindow::wantsKey(const QKeyEvent &) const {
    return false;
}

bool SkinnedWindow::event(QEvent *event) {
    if (event->type() == QEvent::WindowBlocked)
        cancelGrab();
    if (event->type() == QEvent::ShortcutOverride) {
        const auto &key = *static_cast<QKeyEvent *>(event);
        if (isForFocus(key) || wantsKey(key)) {
            event->accept();
            return true;
        }
    }
    return QWidget::event(event);
}

void SkinnedWindow::changeEvent(QEvent *event) {
    if (event->type() == QEvent::ActivationChange)
        refresh();
    if (event->type() == QEvent::WindowStateChange && m_docking && m_kind == WindowKind::main) {
        if (isMinimized())
            m_docking->skinnedWindowWillMinimize();
        else
            m_docking->skinnedWindowDidDeminimize();
    }
    QWidget::changeEvent(event);
}

void SkinnedWindow::showEvent(QShowEvent *event) {
    QWidget::showEvent(event);
    windowHandle()->installEventFilter(this);
    refresh();
}

// Only the system's window knows that it has gone to another desktop.
bool SkinnedWindow::eventFilter(QObject *watched, QEvent *event) {
    if (watched == windowHandle() && event->type() == QEvent::Expose) {
        m_model.clock().setWatched(this, windowHandle()->isExposed());
        refresh();
    }
    return QWidget::eventFilter(watched, event);
}

void SkinnedWindow::hideEvent(QHideEvent *event) {
    QWidget::hideEvent(event);
    m_model.clock().setWatched(this, false);
    cancelGrab();
}

void SkinnedWindow::leaveEvent(QEvent *event) {
    QWidget::leaveEvent(event);
    m_pointers.rest();
}

void SkinnedWindow::closeEvent(QCloseEvent *event) {
    QWidget::closeEvent(event);
    if (m_kind == WindowKind::main)
        QApplication::quit();
    else
        m_model.windows().setOpen(m_kind, false);
}

} // namespace vantor
