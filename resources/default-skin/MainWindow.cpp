#include "Digits.h"
#include "Font.h"
#include "Sheet.h"
#include "SkinKit/Layout/MainSliders.h"
#include "SkinKit/Layout/MainWindowLayout.h"
#include "Surface.h"

namespace vantor::art {

namespace {

using namespace palette;
namespace layout = MainWindowLayout;

void paintClockDisplay(Canvas &canvas) {
    paintWell(canvas, {21, 23, 82, 42});
    for (const int x : layout::digitXs)
        digits::draw(canvas.part({x, layout::digitY, digits::cellWidth, digits::cellHeight}), digits::dark);
    // Minutes and seconds are parted by two beads that stay as they are, dim enough for a blank clock.
    for (const int y : {layout::digitY + 2, layout::digitY + 7})
        canvas.stencil(72, y, "##/##", mix(glass, amber, 0.5));
    // A scale under the spectrum, long marks at both ends and in the middle.
    const QRect area = layout::visualizer;
    for (int i = 0; i <= 75; i += 5) {
        const bool major = i % 25 == 0;
        canvas.column(area.left() + i, area.bottom() + 2, major ? 3 : 1,
                      mix(glass, amber, major ? 0.4 : 0.26));
    }
}

void paintInformation(Canvas &canvas) {
    paintWell(canvas, layout::marquee.adjusted(-2, -3, 2, 3));
    paintWell(canvas, QRect(layout::kbps, QSize(15, 6)).adjusted(-2, -2, 2, 1));
    font::drawSmall(canvas, layout::kbps.x() + 21, layout::kbps.y(), "kbps", print);
    paintWell(canvas, QRect(layout::khz, QSize(10, 6)).adjusted(-2, -2, 2, 1));
    font::drawSmall(canvas, layout::khz.x() + 16, layout::khz.y(), "kHz", print);
    paintWell(canvas, {layout::mono + QPoint(1, 0), QSize(54, 9)});
}

/// The keys of a group stand side by side in one recess.
void paintRecesses(Canvas &canvas) {
    using MainSliders::frame;
    using enum MainSliders::Toggle;
    using enum layout::Transport;
    paintRecess(canvas, MainSliders::Slider::position.rect().adjusted(0, 2, 0, -2));
    // One column more than the keys need: the last sprite has it, and its sheet gives that column to the next
    // key.
    paintRecess(canvas, (layout::rect(previous) | layout::rect(next)).adjusted(0, 0, 1, 0));
    paintRecess(canvas, layout::rect(eject));
    paintRecess(canvas, frame(shuffle) | frame(repeatAll));
    paintRecess(canvas, frame(equalizer) | frame(playlist));
}

/// The mark of the house: the bars of a spectrum hang down and leave a V.
void paintMark(Canvas &canvas) {
    constexpr int heights[] = {4, 8, 13, 8, 4};
    int x = 243;
    for (const int height : heights) {
        canvas.fill({x, 90, 4, height}, mix(bodyBottom, ink, 0.55));
        canvas.row(x, 90, 4, ink);
        canvas.column(x, 90, height, ink);
        canvas.row(x + 1, 90 + height, 4, mix(bodyBottom, light, 0.45));
        canvas.column(x + 4, 91, height, mix(bodyBottom, light, 0.45));
        x += 5;
    }
}

} // namespace

QImage mainWindow() {
    QImage image(layout::size, QImage::Format_RGB32);
    Canvas canvas(image);
    paintWindow(canvas);
    canvas.row(2, titleHeight, canvas.width() - 4, mix(bodyTop, light, 0.5));
    paintClockDisplay(canvas);
    paintInformation(canvas);
    paintRecesses(canvas);
    paintMark(canvas);
    return image;
}

Sheet mainSheet(const QImage &window) {
    Sheet sheet("MAIN");
    sheet.whole().copy(window, {0, 0});
    return sheet;
}

} // namespace vantor::art
