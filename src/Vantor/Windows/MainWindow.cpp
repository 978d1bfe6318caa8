#include "Vantor/Windows/MainWindow.h"

#include "SkinKit/Layout/MainSliders.h"
#include "SkinKit/Layout/MainWindowLayout.h"
#include "SkinKit/Rendering/MainWindowRenderer.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QImageWriter>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QWindow>

#include <cmath>

namespace vantor {

namespace {

constexpr double wheelStep = 0.04;    // of the volume, per notch
constexpr double longestFrame = 0.25; // seconds; after a longer gap things do not jump
constexpr Qt::WindowFlags baseFlags = Qt::Window | Qt::FramelessWindowHint | Qt::WindowMinimizeButtonHint;

bool isSlider(MainWindowControl control) {
    return control == MainWindowControl::volume || control == MainWindowControl::balance ||
           control == MainWindowControl::position;
}

const MainSliders::Slider &sliderOf(MainWindowControl control, bool shaded) {
    if (control == MainWindowControl::position)
        return shaded ? MainSliders::Slider::shadePosition : MainSliders::Slider::position;
    return control == MainWindowControl::volume ? MainSliders::Slider::volume : MainSliders::Slider::balance;
}

QRegion scaled(const QRegion &region, int factor) {
    QRegion result;
    for (const QRect &rect : region)
        result += QRect(rect.topLeft() * factor, rect.size() * factor);
    return result;
}

} // namespace

MainWindow::MainWindow(PlayerModel &model)
    : QWidget(nullptr, baseFlags), m_model(model), m_commands(model, *this), m_pointers(*this) {
    setWindowTitle(QStringLiteral("Vantor"));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoSystemBackground);
    setMouseTracking(true);
    setAcceptDrops(true);
    setFocusPolicy(Qt::StrongFocus);
    if (model.isAlwaysOnTop())
        setWindowFlag(Qt::WindowStaysOnTopHint);

    m_frameTimer.setSingleShot(true);
    m_frameTimer.setTimerType(Qt::PreciseTimer);
    connect(&m_frameTimer, &QTimer::timeout, this, &MainWindow::tick);
    connect(&model, &PlayerModel::sceneChanged, this, &MainWindow::refresh);
    connect(&model, &PlayerModel::skinChanged, this, &MainWindow::takeSkin);
    connect(&model, &PlayerModel::windowStateChanged, this, &MainWindow::applyWindowState);
    connect(&model, &PlayerModel::sliderCancelled, this, [this] {
        if (isSlider(m_grabbed))
            m_grabbed = MainWindowControl::none;
    });
    takeSkin();
}

// Painting

MainWindowScene MainWindow::composeScene() const {
    MainWindowScene scene = m_model.scene();
    scene.focused = isActiveWindow();
    scene.pressed = isSlider(m_grabbed) || m_pointerOnGrabbed ? m_grabbed : MainWindowControl::none;
    return scene;
}

void MainWindow::refresh() {
    const MainWindowScene scene = composeScene();
    const QRegion changed = MainWindowRenderer::changed(m_model.skin(), m_scene, scene);
    m_scene = scene;
    if (!changed.isEmpty())
        update(scaled(changed, zoom()));
    scheduleTick();
}

void MainWindow::paintEvent(QPaintEvent *event) {
    QPainter painter(this);
    painter.setClipRegion(event->region());
    MainWindowRenderer::draw(painter, m_model.skin(), m_scene, zoom());
}

QImage MainWindow::picture() const {
    const QSize size = MainWindowRenderer::size(m_scene.shaded, zoom());
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setClipRegion(MainWindowRenderer::mask(m_model.skin(), m_scene.shaded, zoom()));
    MainWindowRenderer::draw(painter, m_model.skin(), composeScene(), zoom());
    return image;
}

bool MainWindow::savePicture(const QString &path) const {
    const QByteArray format = QFileInfo(path).suffix().toLower().toLatin1();
    const bool known = QImageWriter::supportedImageFormats().contains(format);
    return picture().save(path, known ? nullptr : "PNG");
}

void MainWindow::takeSkin() {
    m_pointers.setCursors(m_model.skin().cursors, zoom());
    applyShape();
}

void MainWindow::applyShape() {
    m_scene = composeScene();
    const QSize size = MainWindowRenderer::size(m_scene.shaded, zoom());
    setFixedSize(size);
    const QRegion outline = MainWindowRenderer::mask(m_model.skin(), m_scene.shaded, zoom());
    static const bool hasShapes = QGuiApplication::platformName() != QLatin1String("offscreen");
    if (!hasShapes || outline == QRegion(QRect(QPoint(), size)))
        clearMask();
    else
        setMask(outline);
    update();
}

void MainWindow::applyWindowState() {
    if (m_model.isAlwaysOnTop() != windowFlags().testFlag(Qt::WindowStaysOnTopHint)) {
        // Through the window's handle: the widget's own way makes the window anew, which loses the focus.
        overrideWindowFlags(windowFlags() ^ Qt::WindowStaysOnTopHint);
        if (QWindow *const handle = windowHandle())
            handle->setFlags(windowFlags());
    }
    takeSkin();
}

// Movement

void MainWindow::scheduleTick() {
    const std::optional<std::chrono::milliseconds> interval = m_model.frameInterval();
    if (!interval || !isVisible() || isMinimized()) {
        m_frameTimer.stop();
        m_sinceFrame.invalidate();
        return;
    }
    if (!m_sinceFrame.isValid())
        m_sinceFrame.start();
    if (!m_frameTimer.isActive()) {
        const std::chrono::milliseconds spent(m_sinceFrame.elapsed());
        m_frameTimer.start(std::max(std::chrono::milliseconds(0), *interval - spent));
    }
}

void MainWindow::tick() {
    const double elapsed =
        m_sinceFrame.isValid() ? static_cast<double>(m_sinceFrame.nsecsElapsed()) / 1e9 : 0;
    m_sinceFrame.start();
    m_model.advance(std::min(elapsed, longestFrame)); // ends in refresh(), which schedules the next frame
}

// Mouse

QPoint MainWindow::skinPoint(QPointF at) const {
    return {static_cast<int>(std::floor(at.x() / zoom())), static_cast<int>(std::floor(at.y() / zoom()))};
}

void MainWindow::mousePressEvent(QMouseEvent *event) {
    if (!isActiveWindow())
        activateWindow(); // where there is no window manager to do it
    if (event->button() != Qt::LeftButton)
        return;
    const QPoint at = skinPoint(event->position());
    grab(mainWindowControlAt(at, m_model.isShaded()), at, event->globalPosition().toPoint());
    refresh();
}

void MainWindow::grab(MainWindowControl control, QPoint at, QPoint global) {
    m_grabbed = control;
    m_pointerOnGrabbed = true;
    if (isSlider(control)) {
        if (control == MainWindowControl::position && !m_scene.position)
            m_grabbed = MainWindowControl::none;
        else
            dragSliderTo(at);
    } else if (control == MainWindowControl::marquee) {
        m_model.marquee().grab();
        m_lastMarqueeX = at.x();
    } else if (control == MainWindowControl::none) {
        m_dragStart = global - pos();
    }
}

void MainWindow::dragSliderTo(QPoint at) {
    m_model.dragSlider(m_grabbed, sliderOf(m_grabbed, m_model.isShaded()).fraction(at.x()));
}

void MainWindow::cancelGrab() {
    const MainWindowControl held = std::exchange(m_grabbed, MainWindowControl::none);
    m_pointerOnGrabbed = false;
    m_dragStart.reset();
    if (isSlider(held))
        m_model.cancelSlider();
    else if (held == MainWindowControl::marquee)
        m_model.marquee().release();
    refresh();
}

void MainWindow::mouseMoveEvent(QMouseEvent *event) {
    // A menu, a dialog or a window made anew may have taken the release.
    if (!event->buttons().testFlag(Qt::LeftButton) && (m_dragStart || m_grabbed != MainWindowControl::none))
        cancelGrab();
    const QPoint at = skinPoint(event->position());
    const MainWindowControl under = mainWindowControlAt(at, m_model.isShaded());
    if (m_dragStart) {
        move(event->globalPosition().toPoint() - *m_dragStart);
        return;
    }
    if (m_grabbed == MainWindowControl::none) {
        m_pointers.showFor(under, MainWindowLayout::titleBar.contains(at), m_model.isShaded());
        return;
    }
    if (isSlider(m_grabbed)) {
        dragSliderTo(at);
    } else if (m_grabbed == MainWindowControl::marquee) {
        m_model.marquee().dragBy(at.x() - m_lastMarqueeX);
        m_lastMarqueeX = at.x();
    }
    m_pointerOnGrabbed = under == m_grabbed;
    refresh();
}

void MainWindow::mouseReleaseEvent(QMouseEvent *event) {
    if (event->button() != Qt::LeftButton)
        return;
    const MainWindowControl released = std::exchange(m_grabbed, MainWindowControl::none);
    const bool clicked = std::exchange(m_pointerOnGrabbed, false);
    m_dragStart.reset();
    if (isSlider(released))
        m_model.releaseSlider();
    else if (released == MainWindowControl::marquee)
        m_model.marquee().release();
    else if (clicked)
        click(released);
    refresh();
}

void MainWindow::click(MainWindowControl control) {
    using Id = Commands::Id;
    static const QHash<MainWindowControl, Id> commands{
        {MainWindowControl::minimize, Id::minimize},
        {MainWindowControl::shade, Id::shade},
        {MainWindowControl::close, Id::quit},
        {MainWindowControl::clutterAlwaysOnTop, Id::alwaysOnTop},
        {MainWindowControl::clutterFileInfo, Id::fileInfo},
        {MainWindowControl::clutterDoubleSize, Id::doubleSize},
        {MainWindowControl::previous, Id::previous},
        {MainWindowControl::play, Id::play},
        {MainWindowControl::pause, Id::pause},
        {MainWindowControl::stop, Id::stop},
        {MainWindowControl::next, Id::next},
        {MainWindowControl::eject, Id::openFiles},
        {MainWindowControl::shuffle, Id::shuffle},
        {MainWindowControl::repeat, Id::repeat},
        {MainWindowControl::equalizer, Id::equalizer},
        {MainWindowControl::playlist, Id::playlist},
        {MainWindowControl::time, Id::toggleTime},
    };
    const auto menuPoint = [this](int skinY) { return mapToGlobal(QPoint(6, skinY) * zoom()); };
    if (const auto command = commands.constFind(control); command != commands.cend())
        m_commands.trigger(*command);
    else if (control == MainWindowControl::options)
        m_commands.popUpMainMenu(menuPoint(MainWindowLayout::titleBar.bottom() + 1));
    else if (control == MainWindowControl::clutterMainMenu)
        m_commands.popUpMainMenu(menuPoint(MainWindowLayout::clutterBar.top()));
    else if (control == MainWindowControl::clutterVisualizer)
        m_commands.popUpVisualizerMenu(menuPoint(MainWindowLayout::clutterBar.bottom() + 1));
    else if (control == MainWindowControl::visualizer)
        m_model.cycleVisualizer();
}

void MainWindow::mouseDoubleClickEvent(QMouseEvent *event) {
    const QPoint at = skinPoint(event->position());
    const bool onTitle = MainWindowLayout::titleBar.contains(at) &&
                         mainWindowControlAt(at, m_model.isShaded()) == MainWindowControl::none;
    if (event->button() == Qt::LeftButton && onTitle)
        m_commands.trigger(Commands::Id::shade);
    else
        mousePressEvent(event); // the second click of a fast pair counts like any other
}

void MainWindow::wheelEvent(QWheelEvent *event) {
    const double notches = event->angleDelta().y() / 120.0; // Qt counts eighths of a degree, 15° a notch
    if (notches != 0)
        m_model.changeVolume(notches * wheelStep);
}

void MainWindow::contextMenuEvent(QContextMenuEvent *event) {
    cancelGrab();
    m_commands.popUpMainMenu(event->globalPos());
}

void MainWindow::dragEnterEvent(QDragEnterEvent *event) {
    if (!event->mimeData()->hasUrls())
        return;
    event->setDropAction(Qt::CopyAction); // whatever the keys propose: nothing is moved away from its owner
    event->accept();
}

void MainWindow::dropEvent(QDropEvent *event) {
    event->setDropAction(Qt::CopyAction);
    event->accept();
    if (event->modifiers().testFlag(Qt::ShiftModifier))
        m_model.enqueue(event->mimeData()->urls());
    else
        m_model.open(event->mimeData()->urls());
}

// Life

void MainWindow::changeEvent(QEvent *event) {
    if (event->type() == QEvent::ActivationChange || event->type() == QEvent::WindowStateChange)
        refresh();
    QWidget::changeEvent(event);
}

void MainWindow::showEvent(QShowEvent *event) {
    QWidget::showEvent(event);
    refresh();
}

void MainWindow::hideEvent(QHideEvent *event) {
    QWidget::hideEvent(event);
    cancelGrab();
}

void MainWindow::leaveEvent(QEvent *event) {
    QWidget::leaveEvent(event);
    m_pointers.rest();
}

bool MainWindow::event(QEvent *event) {
    if (event->type() == QEvent::WindowBlocked)
        cancelGrab();
    return QWidget::event(event);
}

void MainWindow::closeEvent(QCloseEvent *event) {
    QWidget::closeEvent(event);
    QApplication::quit();
}

} // namespace vantor
