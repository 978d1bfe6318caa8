#include "Sheet.h"
#include "Surface.h"

namespace vantor::art {

namespace {

using namespace palette;

constexpr double sideTone = 0.45;
constexpr int leftBorder = 11;
constexpr int rightBorder = 8;

void paintTop(Canvas canvas, bool focused, const Sides &sides, bool perforated) {
    paintBar(canvas, focused);
    const int rest = canvas.height() - titleHeight;
    paintBody(canvas, {0, titleHeight, canvas.width(), rest}, sideTone, sideTone);
    canvas.row(0, titleHeight, canvas.width(), mix(bodyTop, light, 0.5));
    canvas.row(0, canvas.height() - 2, canvas.width(), mix(bodyTop, shade, 0.6));
    canvas.row(0, canvas.height() - 1, canvas.width(), ink);
    if (perforated)
        paintGrille(canvas, {.from = sides.left ? 10 : 0, .to = canvas.width() - 1}, focused);
    paintFrame(canvas, sides);
}

/// A side of the window with the rim of its content.
void paintSide(Canvas canvas, bool left, bool closed) {
    paintBody(canvas, canvas.bounds(), sideTone, sideTone);
    paintFrame(canvas, {.left = left, .top = false, .right = !left, .bottom = false});
    if (left) {
        canvas.column(leftBorder - 2, 0, canvas.height(), mix(bodyTop, shade, 0.6));
        canvas.column(leftBorder - 1, 0, canvas.height(), ink);
    } else {
        canvas.column(0, 0, canvas.height(), ink);
        canvas.column(1, 0, canvas.height(), mix(bodyTop, light, 0.5));
    }
    if (closed)
        canvas.row(left ? leftBorder - 1 : 0, canvas.height() - 1, 1, ink);
}

void paintBottom(Canvas canvas, const Sides &sides) {
    paintBody(canvas, canvas.bounds(), sideTone, 0.7);
    const int from = sides.left ? leftBorder - 1 : 0;
    const int to = canvas.width() - (sides.right ? rightBorder - 1 : 0);
    canvas.row(from, 0, to - from, ink);
    canvas.row(from, 1, to - from, mix(bodyTop, light, 0.5));
    paintFrame(canvas, sides);
}

} // namespace

Sheet generalSheet() {
    Sheet sheet("GEN");
    const Sides middle{.left = false, .right = false, .bottom = false};
    for (const bool focused : {false, true}) {
        const QString ending = focused ? QStringLiteral("_SELECTED") : QString();
        const auto piece = [&](const char *stem) { return sheet.sprite(QString::fromLatin1(stem) + ending); };
        paintTop(piece("GEN_TOP_LEFT"), focused, {.right = false, .bottom = false}, true);
        paintTop(piece("GEN_TOP_LEFT_END"), focused, middle, false);
        paintTop(piece("GEN_TOP_CENTER_FILL"), focused, middle, false);
        paintTop(piece("GEN_TOP_RIGHT_END"), focused, middle, false);
        paintTop(piece("GEN_TOP_LEFT_RIGHT_FILL"), focused, middle, true);
        Canvas right = piece("GEN_TOP_RIGHT");
        paintTop(right, focused, {.left = false, .bottom = false}, false);
        paintTitleKey(right, {14, 3}, glyphs::close, Key::up, focused);
    }
    paintSide(sheet.sprite("GEN_MIDDLE_LEFT"), true, false);
    paintSide(sheet.sprite("GEN_MIDDLE_LEFT_BOTTOM"), true, true);
    paintSide(sheet.sprite("GEN_MIDDLE_RIGHT"), false, false);
    paintSide(sheet.sprite("GEN_MIDDLE_RIGHT_BOTTOM"), false, true);
    paintBottom(sheet.sprite("GEN_BOTTOM_LEFT"), {.top = false, .right = false});
    paintBottom(sheet.sprite("GEN_BOTTOM_FILL"), {.left = false, .top = false, .right = false});
    paintBottom(sheet.sprite("GEN_BOTTOM_RIGHT"), {.left = false, .top = false});
    Canvas close = sheet.sprite("GEN_CLOSE_SELECTED");
    paintTitleKey(close, {0, 0}, glyphs::close, Key::down);
    return sheet;
}

} // namespace vantor::art
