#include "Digits.h"
#include "Font.h"
#include "Places.h"
#include "Sheet.h"
#include "Surface.h"

namespace vantor::art {

namespace {

using namespace palette;

void paintClockDisplay(Canvas &canvas) {
    paintWell(canvas, {21, 23, 82, 42});
    for (const int x : places::digitX)
        digits::draw(canvas.part({x, places::digitRow, digits::cellWidth, digits::cellHeight}), digits::dark);
    // Minutes and seconds are parted by two beads that stay as they are, dim enough for a blank clock.
    for (const int y : {places::digitRow + 2, places::digitRow + 7})
        canvas.stencil(72, y, "##/##", mix(glass, amber, 0.5));
    // A scale under the spectrum, long marks at both ends and in the middle.
    const QRect area = places::visualizer;
    for (int i = 0; i <= 75; i += 5) {
        const bool major = i % 25 == 0;
        canvas.column(area.left() + i, area.bottom() + 2, major ? 3 : 1,
                      mix(glass, amber, major ? 0.4 : 0.26));
    }
}

void paintInformation(Canvas &canvas) {
    paintWell(canvas, {109, 24, 158, 12});
    paintWell(canvas, {109, 41, 19, 9});
    font::drawSmall(canvas, 132, 43, "kbps", print);
    paintWell(canvas, {154, 41, 14, 9});
    font::drawSmall(canvas, 172, 43, "kHz", print);
    paintWell(canvas, {213, 41, 54, 9});
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
    QImage image(places::windowWidth, places::windowHeight, QImage::Format_RGB32);
    Canvas canvas(image);
    paintWindow(canvas);
    canvas.row(2, titleHeight, places::windowWidth - 4, mix(bodyTop, light, 0.5));
    paintClockDisplay(canvas);
    paintInformation(canvas);
    paintRecess(canvas, places::position.adjusted(0, 2, 0, -2));
    paintRecess(canvas, {16, 88, 114, 18});
    paintRecess(canvas, {136, 89, 22, 16});
    paintRecess(canvas, {164, 89, 74, 15});
    paintRecess(canvas, {219, 58, 46, 12});
    paintMark(canvas);
    return image;
}

Sheet mainSheet(const QImage &window) {
    Sheet sheet("MAIN");
    sheet.whole().copy(window, {0, 0});
    return sheet;
}

} // namespace vantor::art
