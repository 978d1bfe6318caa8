#include "SkinKit/Layout/MainShadeLayout.h"
#include "SkinKit/Layout/MainSliders.h"
#include "SkinKit/Rendering/MainWindowPainter_p.h"
#include "SkinKit/Rendering/SkinTextFont.h"
#include "SkinKit/Rendering/VisualizerPainter_p.h"

namespace vantor {

namespace {

QRect rectOf(const MainSliders::Slider &slider) {
    return {slider.origin, slider.size};
}

QString digitSprite(int digit) {
    static const QStringList names = [] {
        QStringList list;
        for (int i = 0; i < 10; ++i)
            list.append(QStringLiteral("DIGIT_%1").arg(i));
        return list;
    }();
    return names.at(digit);
}

std::array<std::optional<int>, 4> cells(const TimeDigits &digits) {
    return {digits.minutesTens, digits.minutesOnes, digits.secondsTens, digits.secondsOnes};
}

} // namespace

MainWindowPainter::MainWindowPainter(const Skin &skin, const MainWindowScene &scene, const QRect &dirty)
    : m_skin(skin), m_scene(scene), m_dirty(dirty),
      m_image(scene.shaded ? MainWindowLayout::shadeSize : MainWindowLayout::size, QImage::Format_RGBX8888),
      m_drawer(skin, m_painter) {}

QImage MainWindowPainter::paint() {
    m_painter.begin(&m_image);
    m_painter.setClipRect(m_dirty);
    m_painter.fillRect(m_dirty, Qt::black); // for sheets that are smaller than the window
    if (m_scene.shaded)
        paintShade();
    else
        paintFull();
    m_painter.end();
    // Written directly, and last: nothing overlaps it.
    const QRect frame = m_scene.shaded ? MainShadeLayout::visualizerFrame : MainWindowLayout::visualizer;
    if (touches(frame))
        paintVisualizer(m_image, frame, m_skin.visColors, m_scene.visualizer);
    return m_image;
}

void MainWindowPainter::paintFull() {
    m_drawer.draw(QStringLiteral("MAIN_WINDOW_BACKGROUND"), {0, 0});
    if (touches(MainWindowLayout::titleBar)) {
        m_drawer.draw(m_scene.focused ? QStringLiteral("MAIN_TITLE_BAR_SELECTED")
                                      : QStringLiteral("MAIN_TITLE_BAR"),
                      {0, 0});
        paintTitleButtons();
    }
    paintClutterBar();
    paintIndicators();
    paintClock();
    paintMediaInfo();
    paintMarquee();
    paintVolume();
    paintBalance();
    paintPosition();
    paintTransport();
    paintToggles();
}

void MainWindowPainter::paintShade() {
    m_drawer.draw(m_scene.focused ? QStringLiteral("MAIN_SHADE_BACKGROUND_SELECTED")
                                  : QStringLiteral("MAIN_SHADE_BACKGROUND"),
                  {0, 0});
    paintTitleButtons();
    paintMiniClock();
    paintShadePosition();
}

void MainWindowPainter::paintTitleButtons() {
    using Button = MainWindowLayout::TitleButton;
    const QString shadeName =
        m_scene.shaded ? QStringLiteral("MAIN_SHADE_BUTTON_SELECTED") : QStringLiteral("MAIN_SHADE_BUTTON");
    const struct {
        Button button;
        MainWindowControl control;
        QString name;
    } buttons[] = {
        {Button::options, MainWindowControl::options, QStringLiteral("MAIN_OPTIONS_BUTTON")},
        {Button::minimize, MainWindowControl::minimize, QStringLiteral("MAIN_MINIMIZE_BUTTON")},
        {Button::shade, MainWindowControl::shade, shadeName},
        {Button::close, MainWindowControl::close, QStringLiteral("MAIN_CLOSE_BUTTON")},
    };
    for (const auto &[button, control, name] : buttons)
        m_drawer.draw(isPressed(control) ? name + QStringLiteral("_DEPRESSED") : name,
                      MainWindowLayout::rect(button).topLeft());
}

void MainWindowPainter::paintClutterBar() {
    using Button = MainWindowLayout::ClutterButton;
    if (!touches(MainWindowLayout::clutterBar))
        return;
    m_drawer.draw(QStringLiteral("MAIN_CLUTTER_BAR_BACKGROUND"), MainWindowLayout::clutterBar.topLeft());
    const struct {
        Button button;
        bool lit;
    } letters[] = {
        {Button::mainMenu, isPressed(MainWindowControl::clutterMainMenu)},
        {Button::alwaysOnTop, m_scene.alwaysOnTop || isPressed(MainWindowControl::clutterAlwaysOnTop)},
        {Button::fileInfo, isPressed(MainWindowControl::clutterFileInfo)},
        {Button::doubleSize, m_scene.doubleSize || isPressed(MainWindowControl::clutterDoubleSize)},
        {Button::visualizer, isPressed(MainWindowControl::clutterVisualizer)},
    };
    for (const auto &[button, lit] : letters) {
        if (lit)
            m_drawer.draw(MainWindowLayout::spriteName(button), MainWindowLayout::rect(button).topLeft());
    }
}

// The catalogue's work indicators are as wide as the play indicator, but only their first three columns are
// lights.
void MainWindowPainter::paintIndicators() {
    const QRect work = MainWindowLayout::workIndicator;
    if (const auto sprite = m_scene.status.workIndicator())
        m_drawer.drawPart(*sprite, QRect(QPoint(), work.size()), work.topLeft());
    if (const auto sprite = m_scene.status.indicator())
        m_drawer.draw(*sprite, MainWindowLayout::playIndicator);
}

void MainWindowPainter::paintClock() {
    const MainWindowStatus &status = m_scene.status;
    if (!status.showsTime() || !m_scene.timeLit)
        return;
    // The sign has a cell of its own, as far from the minutes as digits are from each other. Extended digits
    // fill it; plain ones have only the stroke, cut from the third digit's middle.
    constexpr int cellX = 36;
    constexpr QPoint strokeInCell{2, 6};
    const QString sign = status.showsMinus() ? QStringLiteral("MINUS_SIGN") : QStringLiteral("NO_MINUS_SIGN");
    const auto location = m_skin.resolve(sign);
    const bool isStroke = location && location->rect.height() == 1;
    m_drawer.draw(sign, QPoint(cellX, MainWindowLayout::digitY) + (isStroke ? strokeInCell : QPoint()));

    const auto digits = cells(status.digits());
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (digits[i])
            m_drawer.draw(digitSprite(*digits[i]),
                          QPoint(MainWindowLayout::digitXs[i], MainWindowLayout::digitY));
    }
}

void MainWindowPainter::paintMediaInfo() {
    const MainWindowStatus &status = m_scene.status;
    const auto drawText = [this](const std::optional<QString> &text, QPoint at) {
        if (text)
            SkinTextFont::draw(m_drawer, *text, at, at.x(), at.x() + SkinTextFont::width(*text));
    };
    drawText(status.kbps(), MainWindowLayout::kbps);
    drawText(status.khz(), MainWindowLayout::khz);
    m_drawer.draw(status.monoSelected() ? QStringLiteral("MAIN_MONO_SELECTED") : QStringLiteral("MAIN_MONO"),
                  MainWindowLayout::mono);
    m_drawer.draw(status.stereoSelected() ? QStringLiteral("MAIN_STEREO_SELECTED")
                                          : QStringLiteral("MAIN_STEREO"),
                  MainWindowLayout::stereo);
}

void MainWindowPainter::paintMarquee() {
    const QRect box = MainWindowLayout::marquee;
    if (!touches(box))
        return;
    m_painter.save();
    m_painter.setClipRect(box, Qt::IntersectClip);
    const int period = Marquee::period(m_scene.marquee);
    if (period == 0) {
        SkinTextFont::draw(m_drawer, m_scene.marquee, box.topLeft(), box.left(), box.right() + 1);
    } else {
        const QString repeated = m_scene.marquee + Marquee::separator();
        const int start = box.left() - (m_scene.marqueeOffset % period + period) % period;
        for (int x = start; x <= box.right(); x += period)
            SkinTextFont::draw(m_drawer, repeated, QPoint(x, box.top()), box.left(), box.right() + 1);
    }
    m_painter.restore();
}

void MainWindowPainter::paintVolume() {
    const MainSliders::Slider &slider = MainSliders::volume;
    if (!touches(rectOf(slider)))
        return;
    m_drawer.drawFrame(QStringLiteral("MAIN_VOLUME_BACKGROUND"),
                       MainSliders::volumeFrame(static_cast<float>(m_scene.volume)), slider.origin);
    m_drawer.draw(isPressed(MainWindowControl::volume) ? QStringLiteral("MAIN_VOLUME_THUMB_SELECTED")
                                                       : QStringLiteral("MAIN_VOLUME_THUMB"),
                  QPoint(slider.thumbX(m_scene.volume), slider.origin.y() + slider.thumbInsetY));
}

void MainWindowPainter::paintBalance() {
    const MainSliders::Slider &slider = MainSliders::balance;
    if (!touches(rectOf(slider)))
        return;
    const QString strip = QStringLiteral("MAIN_BALANCE_BACKGROUND");
    const int frame = MainSliders::balanceFrame(static_cast<float>(m_scene.balance));
    // The volume strip that stands in is wider: its middle part fits the place.
    const auto location = m_skin.resolve(strip);
    const int surplus = location ? location->rect.width() - slider.size.width() : 0;
    const QRect wanted(surplus / 2, 0, slider.size.width(), 0);
    m_drawer.drawPart(strip, MainSliders::frameRect(wanted, frame), slider.origin);
    m_drawer.draw(isPressed(MainWindowControl::balance) ? QStringLiteral("MAIN_BALANCE_THUMB_ACTIVE")
                                                        : QStringLiteral("MAIN_BALANCE_THUMB"),
                  QPoint(slider.thumbX(MainSliders::fractionForBalance(m_scene.balance)),
                         slider.origin.y() + slider.thumbInsetY));
}

void MainWindowPainter::paintPosition() {
    const MainSliders::Slider &slider = MainSliders::position;
    if (!m_scene.position || !touches(rectOf(slider)))
        return;
    m_drawer.draw(QStringLiteral("MAIN_POSITION_SLIDER_BACKGROUND"), slider.origin);
    m_drawer.draw(isPressed(MainWindowControl::position)
                      ? QStringLiteral("MAIN_POSITION_SLIDER_THUMB_SELECTED")
                      : QStringLiteral("MAIN_POSITION_SLIDER_THUMB"),
                  QPoint(slider.thumbX(*m_scene.position), slider.origin.y()));
}

void MainWindowPainter::paintTransport() {
    using Button = MainWindowLayout::Transport;
    const struct {
        Button button;
        MainWindowControl control;
    } buttons[] = {
        {Button::previous, MainWindowControl::previous}, {Button::play, MainWindowControl::play},
        {Button::pause, MainWindowControl::pause},       {Button::stop, MainWindowControl::stop},
        {Button::next, MainWindowControl::next},         {Button::eject, MainWindowControl::eject},
    };
    for (const auto &[button, control] : buttons) {
        const QRect rect = MainWindowLayout::rect(button);
        if (touches(rect))
            m_drawer.draw(MainWindowLayout::spriteName(button, isPressed(control)), rect.topLeft());
    }
}

void MainWindowPainter::paintToggles() {
    using Toggle = MainSliders::Toggle;
    const struct {
        Toggle toggle;
        MainWindowControl control;
        bool selected;
    } toggles[] = {
        {Toggle::shuffle, MainWindowControl::shuffle, m_scene.shuffle},
        {Toggle::repeatAll, MainWindowControl::repeat, m_scene.repeat},
        {Toggle::equalizer, MainWindowControl::equalizer, m_scene.equalizerOpen},
        {Toggle::playlist, MainWindowControl::playlist, m_scene.playlistOpen},
    };
    for (const auto &[toggle, control, selected] : toggles) {
        const QRect rect = MainSliders::frame(toggle);
        if (touches(rect))
            m_drawer.draw(MainSliders::spriteName(toggle, selected, isPressed(control)), rect.topLeft());
    }
}

void MainWindowPainter::paintMiniClock() {
    const MainWindowStatus &status = m_scene.status;
    if (!status.showsTime() || !m_scene.timeLit)
        return;
    const QPoint origin = MainShadeLayout::miniTimeHitArea.topLeft();
    const auto drawCell = [&](std::size_t cell, char32_t character) {
        m_drawer.draw(SkinTextFont::spriteName(character),
                      origin + QPoint(MainShadeLayout::miniTimeCellX[cell], 0));
    };
    if (status.showsMinus())
        drawCell(0, U'-');
    const auto digits = cells(status.digits());
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (digits[i])
            drawCell(i + 1, U'0' + static_cast<char32_t>(*digits[i]));
    }
}

void MainWindowPainter::paintShadePosition() {
    const MainSliders::Slider &slider = MainSliders::shadePosition;
    if (!m_scene.position)
        return;
    m_drawer.draw(QStringLiteral("MAIN_SHADE_POSITION_BACKGROUND"), slider.origin);
    m_drawer.draw(MainSliders::shadePositionThumbName(*m_scene.position),
                  QPoint(slider.thumbX(*m_scene.position), slider.origin.y()));
}

} // namespace vantor
