#include "Vantor/Windows/SkinnedWindow.h"

#include "Vantor/Docking/WindowDockingCoordinator.h"
#include "Vantor/Windows/IconicHint.h"

#include <QAccessible>
#include <QApplication>
#include <QBackingStore>
#include <QFileInfo>
#include <QImageWriter>
#include <QKeyEvent>
#include <QPainter>
#include <QWindow>

#include <algorithm>

namespace vantor {

namespace {

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
    m_model.clock().setWatched(this, std::nullopt);
}

QRect SkinnedWindow::titleBar() const {
    return {0, 0, skinSize().width(), titleHeight};
}

// Painting

void SkinnedWindow::refresh() {
    if (!isVisible())
        return; // showing it comes here again
    watchClock();
    const QRegion changed = composeScene();
    if (!changed.isEmpty())
        showChange(scaled(changed, zoom()));
    if (QAccessible::isActive())
        tellAssistiveTools();
}

// Frames go straight to the window: there is nothing above or below this one widget, and what the toolkit
// does for a widget's update costs more than the frame.
void SkinnedWindow::showChange(const QRegion &region) {
    QBackingStore *const store = backingStore();
    if (!m_model.clock().isTicking() || !store || store->size() != size() || !windowHandle()->isExposed()) {
        update(region);
        return;
    }
    store->beginPaint(region);
    QPainter painter(store->paintDevice());
    paint(painter, region);
    painter.end();
    store->endPaint();
    store->flush(region);
}

void SkinnedWindow::paint(QPainter &painter, const QRegion &region) const {
    painter.setClipRegion(region);
    draw(painter, zoom());
    drawFocus(painter);
}

void SkinnedWindow::paintEvent(QPaintEvent *event) {
    QPainter painter(this);
    paint(painter, event->region());
}

QImage SkinnedWindow::picture() {
    if (isVisible())
        refresh();
    else
        static_cast<void>(composeScene());
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
    dropFrames();
    static_cast<void>(composeScene()); // all of it is painted below
    const QSize size = skinSize() * zoom();
    setFixedSize(size);
    watchClock();
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

void SkinnedWindow::showIfOpen() {
    const bool isOpen = m_model.windows().isOpen(m_kind);
    if (isOpen && !isVisible() && windowHandle())
        forgetIconicHint(*windowHandle());
    setVisible(isOpen);
}

void SkinnedWindow::stayOnTopIfAsked() {
    if (m_model.windows().isAlwaysOnTop() == windowFlags().testFlag(Qt::WindowStaysOnTopHint))
        return;
    // Through the window's handle: the widget's own way makes the window anew, which loses the focus.
    overrideWindowFlags(windowFlags() ^ Qt::WindowStaysOnTopHint);
    if (QWindow *const handle = windowHandle())
        handle->setFlags(windowFlags());
}

// The window's own place

void SkinnedWindow::dock(WindowDockingCoordinator &docking) {
    m_docking = &docking;
    docking.register_(*this);
}

void SkinnedWindow::beginDrag(QPoint global) {
    m_dragStart = global - (m_docking ? m_docking->dragBegan(*this) : pos());
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
        watchClock();
        refresh();
    }
    return QWidget::eventFilter(watched, event);
}

void SkinnedWindow::watchClock() {
    const bool isSeen = isVisible() && windowHandle() && windowHandle()->isExposed();
    m_model.clock().setWatched(this, isSeen ? framePeriod() : std::nullopt);
}

void SkinnedWindow::hideEvent(QHideEvent *event) {
    QWidget::hideEvent(event);
    m_model.clock().setWatched(this, std::nullopt);
    dropFrames();
    cancelGrab();
}

void SkinnedWindow::leaveEvent(QEvent *event) {
    QWidget::leaveEvent(event);
    m_pointers.rest();
}

// QApplication::quit() would close every window first, and each would be remembered as closed by the user.
void SkinnedWindow::quitProgram() {
    QCoreApplication::exit();
}

void SkinnedWindow::closeEvent(QCloseEvent *event) {
    QWidget::closeEvent(event);
    if (m_kind == WindowKind::main)
        quitProgram();
    else
        m_model.windows().setOpen(m_kind, false);
}

} // namespace vantor
