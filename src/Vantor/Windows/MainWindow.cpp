#include "Vantor/Windows/MainWindow.h"

#include "MusicBackendKit/MarqueeText.h"
#include "SkinKit/Layout/MainSliders.h"
#include "SkinKit/Layout/MainWindowLayout.h"
#include "SkinKit/Rendering/MainWindowRenderer.h"

#include <QHash>

#include <array>
#include <cmath>
#include <span>

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

std::optional<Commands::Id> commandOf(MainWindowControl control) {
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
    const auto found = ids.constFind(control);
    return found == ids.cend() ? std::nullopt : std::optional(*found);
}

// As Tab goes over them.
constexpr std::array inOrder{MainWindowControl::options,
                             MainWindowControl::minimize,
                             MainWindowControl::shade,
                             MainWindowControl::close,
                             MainWindowControl::clutterMainMenu,
                             MainWindowControl::clutterAlwaysOnTop,
                             MainWindowControl::clutterFileInfo,
                             MainWindowControl::clutterDoubleSize,
                             MainWindowControl::clutterVisualizer,
                             MainWindowControl::time,
                             MainWindowControl::visualizer,
                             MainWindowControl::marquee,
                             MainWindowControl::volume,
                             MainWindowControl::balance,
                             MainWindowControl::equalizer,
                             MainWindowControl::playlist,
                             MainWindowControl::position,
                             MainWindowControl::previous,
                             MainWindowControl::play,
                             MainWindowControl::pause,
                             MainWindowControl::stop,
                             MainWindowControl::next,
                             MainWindowControl::eject,
                             MainWindowControl::shuffle,
                             MainWindowControl::repeat};

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
    QRegion changed = MainWindowRenderer::changed(model().skin(), m_scene, scene);
    m_scene = scene;
    const QRect visualizer = MainWindowRenderer::visualizerArea(scene.shaded);
    const bool wasAhead = m_pane.isShown();
    if (showVisualizerAhead())
        changed -= visualizer;
    else if (wasAhead)
        changed += visualizer; // which has not been painted for a while
    return changed;
}

// Nothing but the mark of the keyboard's focus is ever painted over the visualizer.
bool MainWindow::showVisualizerAhead() {
    const QWindow *const window = windowHandle();
    const bool isWanted = isVisible() && window && window->isExposed() && model().isVisualizerMoving() &&
                          focusedControl() != static_cast<Control>(MainWindowControl::visualizer);
    if (!isWanted || !model().clock().isTicking()) {
        if (!isWanted)
            m_pane.hide();
        return m_pane.isShown();
    }
    const QRect area = MainWindowRenderer::visualizerArea(isShaded());
    const std::vector<QImage> pictures = visualizerPictures();
    if (!pictures.empty())
        return m_pane.show(*windowHandle(), {area.topLeft() * zoom(), area.size() * zoom()}, pictures);
    m_pane.hide();
    return false;
}

std::vector<QImage> MainWindow::visualizerPictures() const {
    std::span<const VisualizerPicture> pictures = model().visualizer().pictures();
    if (model().clock().period() == FrameClock::everyFrame && !pictures.empty())
        pictures = pictures.last(1); // the next ones come before the others' time
    std::vector<QImage> images;
    for (const VisualizerPicture &picture : pictures)
        images.push_back(MainWindowRenderer::visualizer(model().skin(), picture, isShaded()));
    std::erase_if(images, [](const QImage &image) { return image.isNull(); });
    return images;
}

std::optional<FrameClock::Period> MainWindow::framePeriod() const {
    return m_pane.isShown() ? m_pane.period() : FrameClock::everyFrame;
}

void MainWindow::draw(QPainter &painter, int zoom) const {
    MainWindowRenderer::draw(painter, model().skin(), m_scene, zoom);
}

// Controls without a pointer

std::vector<SkinControl> MainWindow::controls() const {
    std::vector<SkinControl> all;
    for (const MainWindowControl control : inOrder) {
        const QRect rect = mainWindowControlRect(control, isShaded());
        if (rect.isNull() || (control == MainWindowControl::position && !m_scene.position))
            continue;
        describe(all.emplace_back(SkinControl::at(control, rect)), control);
    }
    return all;
}

void MainWindow::describe(SkinControl &known, MainWindowControl control) const {
    const auto slide = [&](const QString &name, double value, double from, double to, double step) {
        known = {known.id, SkinControl::Kind::slider, name, known.rect, false, value, from, to, step, {}};
    };
    switch (control) {
    case MainWindowControl::volume:
        slide(tr("Volume"), std::round(m_scene.volume * 100), 0, 100, 2);
        known.text = MarqueeText::volume(m_scene.volume);
        break;
    case MainWindowControl::balance:
        slide(tr("Balance"), std::round(m_scene.balance * 100), -100, 100, 5);
        known.text = MarqueeText::balance(m_scene.balance);
        break;
    case MainWindowControl::position:
        slide(tr("Position"), std::floor(m_scene.status.elapsed), 0, m_scene.status.duration, 5);
        known.text = MarqueeText::time(m_scene.status.elapsed);
        break;
    case MainWindowControl::marquee:
        known.kind = SkinControl::Kind::text;
        known.name = m_scene.marquee;
        break;
    case MainWindowControl::options:
        known.name = tr("Main Menu");
        break;
    case MainWindowControl::clutterMainMenu:
        known.name = tr("Options Menu");
        break;
    case MainWindowControl::clutterVisualizer:
        known.name = tr("Visualiser Menu");
        break;
    case MainWindowControl::visualizer:
        known.name = tr("Next Visualisation");
        break;
    default:
        if (const std::optional<Commands::Id> command = commandOf(control)) {
            const QAction &action = commands().action(*command);
            known.name = action.text();
            known.kind = action.isCheckable() ? SkinControl::Kind::toggle : SkinControl::Kind::button;
            known.checked = action.isChecked();
        }
        break;
    }
}

void MainWindow::setValue(Control slider, double value) {
    switch (mainControl(slider)) {
    case MainWindowControl::volume:
        model().setVolume(value / 100);
        break;
    case MainWindowControl::balance:
        model().setBalance(value / 100);
        break;
    case MainWindowControl::position:
        model().transport(TransportCommand::seek(value));
        break;
    default:
        break;
    }
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
        return isShaded() ? QStringList{QStringLiteral("MMENU"), QStringLiteral("MAINMENU")}
                          : QStringList{QStringLiteral("MAINMENU")};
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
    constexpr int menuX = 6; // under the options button
    const MainWindowControl clicked = mainControl(control);
    if (const std::optional<Commands::Id> command = commandOf(clicked))
        commands().trigger(*command);
    else if (clicked == MainWindowControl::options)
        commands().popUpMainMenu(globalPoint({menuX, MainWindowLayout::titleBar.bottom() + 1}));
    else if (clicked == MainWindowControl::clutterMainMenu)
        commands().popUpMainMenu(globalPoint({menuX, MainWindowLayout::clutterBar.top()}));
    else if (clicked == MainWindowControl::clutterVisualizer)
        commands().popUpVisualizerMenu(globalPoint({menuX, MainWindowLayout::clutterBar.bottom() + 1}));
    else if (clicked == MainWindowControl::visualizer)
        model().visualizer().cycleMode();
}

} // namespace vantor
