#include "Vantor/Windows/MainWindow.h"

#include "SkinKit/Layout/MainSliders.h"
#include "SkinKit/Layout/MainWindowLayout.h"
#include "SkinKit/Rendering/MainWindowRenderer.h"

#include <QHash>

namespace vantor {

namespace {

MainWindowControl mainControl(SkinnedWindow::Control control) {
    return static_cast<MainWindowControl>(control);
}

bool isSlider(MainWindowControl control) {
    return control == MainWindowControl::volume || control == MainWindowControl::balance ||
           control == MainWindowControl::position;
}

const MainSliders::Slider &sliderOf(MainWindowControl control, bool shaded) {
    if (control == MainWindowControl::position)
        return shaded ? MainSliders::Slider::shadePosition : MainSliders::Slider::position;
    return control == MainWindowControl::volume ? MainSliders::Slider::volume : MainSliders::Slider::balance;
}

} // namespace

MainWindow::MainWindow(PlayerModel &model, Commands &commands)
    : SkinnedWindow(WindowKind::main, model, commands) {
    setWindowTitle(QStringLiteral("Vantor"));
    connect(&model, &PlayerModel::sliderCancelled, this, [this] {
        if (isSlider(mainControl(grabbed())))
            forgetGrab();
    });
    takeShape();
}

// The picture

QSize MainWindow::skinSize() const {
    return MainWindowRenderer::size(isShaded(), 1);
}

QRegion MainWindow::outline(int zoom) const {
    return MainWindowRenderer::mask(model().skin(), isShaded(), zoom);
}

QRegion MainWindow::composeScene() {
    MainWindowScene scene = model().scene();
    const MainWindowControl held = mainControl(grabbed());
    scene.focused = isActiveWindow();
    scene.pressed = isSlider(held) || isPointerOnGrabbed() ? held : MainWindowControl::none;
    const QRegion changed = MainWindowRenderer::changed(model().skin(), m_scene, scene);
    m_scene = scene;
    return changed;
}

void MainWindow::draw(QPainter &painter, int zoom) const {
    MainWindowRenderer::draw(painter, model().skin(), m_scene, zoom);
}

// The pointer

SkinnedWindow::Control MainWindow::controlAt(QPoint at) const {
    return static_cast<Control>(mainWindowControlAt(at, isShaded()));
}

QStringList MainWindow::pointerNames(Control control, QPoint at) const {
    switch (mainControl(control)) {
    case MainWindowControl::close:
        return {QStringLiteral("CLOSE")};
    case MainWindowControl::minimize:
        return {QStringLiteral("MIN")};
    case MainWindowControl::shade:
        return {QStringLiteral("WINBUT")};
    case MainWindowControl::options:
        return {QStringLiteral("MAINMENU")};
    case MainWindowControl::volume:
    case MainWindowControl::balance:
        return {QStringLiteral("VOLBAL")};
    case MainWindowControl::position:
        return {isShaded() ? QStringLiteral("WSPOSBAR") : QStringLiteral("POSBAR")};
    case MainWindowControl::marquee:
        return {QStringLiteral("SONGNAME")};
    default:
        break;
    }
    if (isShaded())
        return {QStringLiteral("WSNORMAL")};
    return titleBar().contains(at) ? QStringList{QStringLiteral("TITLEBAR")} : QStringList();
}

bool MainWindow::grab(Control control, QPoint at, Qt::KeyboardModifiers) {
    const MainWindowControl held = mainControl(control);
    if (held == MainWindowControl::position && !m_scene.position)
        return false;
    if (isSlider(held)) {
        dragSlider(held, at);
    } else if (held == MainWindowControl::marquee) {
        model().marquee().grab();
        m_lastMarqueeX = at.x();
    }
    return true;
}

void MainWindow::drag(Control control, QPoint at) {
    const MainWindowControl held = mainControl(control);
    if (isSlider(held)) {
        dragSlider(held, at);
    } else if (held == MainWindowControl::marquee) {
        model().marquee().dragBy(at.x() - m_lastMarqueeX);
        m_lastMarqueeX = at.x();
    }
}

void MainWindow::dragSlider(MainWindowControl slider, QPoint at) {
    model().dragSlider(slider, sliderOf(slider, isShaded()).fraction(at.x()));
}

void MainWindow::letGo(Control control) {
    const MainWindowControl held = mainControl(control);
    if (isSlider(held))
        model().releaseSlider();
    else if (held == MainWindowControl::marquee)
        model().marquee().release();
}

void MainWindow::cancel(Control control) {
    if (isSlider(mainControl(control)))
        model().cancelSlider();
    else
        letGo(control);
}

void MainWindow::click(Control control) {
    using Id = Commands::Id;
    static const QHash<MainWindowControl, Id> ids{
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
    constexpr int menuX = 6; // under the options button
    const MainWindowControl clicked = mainControl(control);
    if (const auto command = ids.constFind(clicked); command != ids.cend())
        commands().trigger(*command);
    else if (clicked == MainWindowControl::options)
        commands().popUpMainMenu(globalPoint({menuX, MainWindowLayout::titleBar.bottom() + 1}));
    else if (clicked == MainWindowControl::clutterMainMenu)
        commands().popUpMainMenu(globalPoint({menuX, MainWindowLayout::clutterBar.top()}));
    else if (clicked == MainWindowControl::clutterVisualizer)
        commands().popUpVisualizerMenu(globalPoint({menuX, MainWindowLayout::clutterBar.bottom() + 1}));
    else if (clicked == MainWindowControl::visualizer)
        model().cycleVisualizer();
}

} // namespace vantor
