#include "Font.h"
#include "Sheet.h"
#include "SkinKit/Layout/MainShadeLayout.h"
#include "SkinKit/Layout/MainSliders.h"
#include "Surface.h"

#include <string_view>

namespace vantor::art {

namespace {

using namespace palette;
namespace layout = MainWindowLayout;
using MainSliders::Slider;

void paintKeys(Canvas &canvas, bool focused, Stencil shadeGlyph) {
    using enum layout::TitleButton;
    const auto key = [&](layout::TitleButton button, Stencil symbol) {
        paintTitleKey(canvas, layout::rect(button).topLeft(), symbol, Key::up, focused);
    };
    key(options, glyphs::menu);
    key(minimize, glyphs::minimize);
    key(shade, shadeGlyph);
    key(close, glyphs::close);
}

void paintMainTitle(Canvas canvas, std::string_view text, bool focused) {
    paintBar(canvas, focused);
    paintFrame(canvas, {.bottom = false});
    const int x = (canvas.width() - titleWidth(text)) / 2 - 1;
    paintGrille(canvas, {.from = 20, .to = x - 8, .fadeRight = true}, focused);
    paintGrille(canvas, {.from = x + titleWidth(text) + 6, .to = 238, .fadeLeft = true}, focused);
    paintTitle(canvas, x, text, focused);
    paintKeys(canvas, focused, glyphs::shade);
}

/// The one-line form has no sprites for its transport keys: they are part of the bar.
void paintShadeTransport(Canvas &canvas, bool focused) {
    constexpr Stencil symbols[] = {"#..#/#.##/####/#.##/#..#",      "#.../###./####/###./#...",
                                   "##.##/##.##/##.##/##.##/##.##", "####/####/####/####",
                                   "#..#/##.#/####/##.#/#..#",      ".##./####/..../####"};
    std::size_t i = 0;
    for (const auto button : layout::transports) {
        const QRect place = MainShadeLayout::frame(button);
        const QSize size = stencilSize(symbols[i]);
        const int x = place.x() + (place.width() - size.width() + 1) / 2;
        const int y = place.center().y() + 1 - size.height() / 2;
        canvas.stencil(x, y + 1, symbols[i], ink);
        canvas.stencil(x, y, symbols[i], focused ? glyph : printDim);
        ++i;
    }
}

void paintShade(Canvas canvas, bool focused) {
    paintBar(canvas, focused);
    paintFrame(canvas, {});
    paintTitle(canvas, 22, "VANTOR", focused);
    // One display for the spectrum and the time; the renderer leaves out the colon.
    const QRect display = MainShadeLayout::visualizerFrame | MainShadeLayout::miniTimeHitArea;
    paintWell(canvas, display.adjusted(-2, -1, 2, 1));
    const int colon = display.right() + 1 - MainShadeLayout::miniTimeImageWidth + 18;
    for (const int y : {display.top() + 1, display.top() + 3})
        canvas.set(colon, y, mix(glass, amber, 0.6));
    paintRecess(canvas, Slider::shadePosition.rect().adjusted(0, 1, 0, -1));
    paintShadeTransport(canvas, focused);
    paintKeys(canvas, focused, glyphs::unshade);
}

void paintShadePosition(Sheet &sheet) {
    Canvas back = sheet.sprite("MAIN_SHADE_POSITION_BACKGROUND");
    Canvas bar = sheet.sprite("MAIN_SHADE_BACKGROUND_SELECTED");
    const QPoint origin = Slider::shadePosition.origin;
    for (int y = 0; y < back.height(); ++y)
        for (int x = 0; x < back.width(); ++x)
            back.set(x, y, bar.at(origin.x() + x, origin.y() + y));
    for (const char *name :
         {"MAIN_SHADE_POSITION_THUMB", "MAIN_SHADE_POSITION_THUMB_LEFT", "MAIN_SHADE_POSITION_THUMB_RIGHT"}) {
        Canvas thumb = sheet.sprite(name);
        thumb.gradient(thumb.bounds(), spark, amber);
        thumb.row(0, 6, 3, ember);
    }
}

void paintTitleKeys(Sheet &sheet) {
    struct Row {
        const char *sprite;
        Stencil glyph;
        Key state;
    };
    for (const Row &row : {Row{"MAIN_OPTIONS_BUTTON", glyphs::menu, Key::up},
                           Row{"MAIN_OPTIONS_BUTTON_DEPRESSED", glyphs::menu, Key::down},
                           Row{"MAIN_MINIMIZE_BUTTON", glyphs::minimize, Key::up},
                           Row{"MAIN_MINIMIZE_BUTTON_DEPRESSED", glyphs::minimize, Key::down},
                           Row{"MAIN_SHADE_BUTTON", glyphs::shade, Key::up},
                           Row{"MAIN_SHADE_BUTTON_DEPRESSED", glyphs::shade, Key::down},
                           Row{"MAIN_SHADE_BUTTON_SELECTED", glyphs::unshade, Key::up},
                           Row{"MAIN_SHADE_BUTTON_SELECTED_DEPRESSED", glyphs::unshade, Key::down},
                           Row{"MAIN_CLOSE_BUTTON", glyphs::close, Key::up},
                           Row{"MAIN_CLOSE_BUTTON_DEPRESSED", glyphs::close, Key::down}}) {
        Canvas canvas = sheet.sprite(row.sprite);
        paintTitleKey(canvas, {0, 0}, row.glyph, row.state);
    }
}

// In the order of the bar's buttons.
constexpr Stencil clutterLetters[] = {".##./#..#/#..#/#..#/.##.", ".##./#..#/####/#..#/#..#",
                                      "###/.#./.#./.#./###", "###./#..#/#..#/#..#/###.",
                                      "#...#/#...#/.#.#./.#.#./..#.."};

int letterX(Stencil letter) {
    return (layout::clutterBar.width() - stencilSize(letter).width()) / 2;
}

void paintClutterBar(Canvas canvas, Color color) {
    canvas.fill(canvas.bounds(), mix(bodyTop, shade, 0.55));
    canvas.edges(canvas.bounds(), shade, mix(bodyTop, light, 0.25));
    std::size_t i = 0;
    for (const auto button : layout::clutterButtons) {
        const Stencil letter = clutterLetters[i++];
        const int row = layout::rect(button).y() - layout::clutterBar.y();
        canvas.stencil(letterX(letter), row + 1, letter, color);
    }
}

/// The lit letters are cut from the bar, each with its surroundings.
void paintLitLetters(Sheet &sheet) {
    Canvas bar = sheet.sprite("MAIN_CLUTTER_BAR_BACKGROUND");
    std::size_t i = 0;
    for (const auto button : layout::clutterButtons) {
        const int row = layout::rect(button).y() - layout::clutterBar.y();
        Canvas lit = sheet.sprite(layout::spriteName(button));
        for (int y = 0; y < lit.height(); ++y)
            for (int x = 0; x < lit.width(); ++x)
                lit.set(x, y, bar.at(x, row + y));
        const Stencil letter = clutterLetters[i++];
        lit.glowing(letterX(letter), 1, letter, flame, 0.12);
    }
}

} // namespace

Sheet titleBarSheet(const QImage &window) {
    Sheet sheet("TITLEBAR");
    for (const bool focused : {false, true}) {
        const char *const ending = focused ? "_SELECTED" : "";
        const auto sprite = [&](const char *stem) {
            return sheet.sprite(QString::fromLatin1(stem) + QString::fromLatin1(ending));
        };
        paintMainTitle(sprite("MAIN_TITLE_BAR"), "VANTOR", focused);
        paintMainTitle(sprite("MAIN_EASTER_EGG_TITLE_BAR"), "HIGH NOON", focused);
        paintShade(sprite("MAIN_SHADE_BACKGROUND"), focused);
    }
    paintShadePosition(sheet);
    paintTitleKeys(sheet);
    paintClutterBar(sheet.sprite("MAIN_CLUTTER_BAR_BACKGROUND", window, layout::clutterBar.topLeft()), print);
    paintClutterBar(
        sheet.sprite("MAIN_CLUTTER_BAR_BACKGROUND_DISABLED", window, layout::clutterBar.topLeft()),
        mix(bodyTop, print, 0.25));
    paintLitLetters(sheet);
    return sheet;
}

} // namespace vantor::art
