#include "Font.h"
#include "Sheet.h"
#include "Surface.h"

#include <string_view>

namespace vantor::art {

namespace {

using namespace palette;

constexpr double sideTone = 0.45; ///< of the metal beside the list, whose height varies
constexpr int topHeight = 20;

/// A piece of the top edge: title bar, metal and the upper rim of the list.
void paintTop(Canvas &canvas, bool focused, const Sides &sides) {
    paintBar(canvas, focused);
    paintBody(canvas, {0, titleHeight, canvas.width(), topHeight - titleHeight}, sideTone, sideTone);
    canvas.row(0, titleHeight, canvas.width(), mix(bodyTop, light, 0.5));
    canvas.row(0, topHeight - 2, canvas.width(), mix(bodyTop, shade, 0.6));
    canvas.row(0, topHeight - 1, canvas.width(), ink);
    paintFrame(canvas, sides);
}

void paintTopPieces(Sheet &sheet, bool focused) {
    const QString ending = focused ? QStringLiteral("_SELECTED") : QString();
    Canvas left = sheet.sprite(focused ? "PLAYLIST_TOP_LEFT_SELECTED" : "PLAYLIST_TOP_LEFT_CORNER");
    paintTop(left, focused, {.right = false, .bottom = false});
    paintGrille(left, {.from = 10, .to = 24}, focused);
    Canvas tile = sheet.sprite(QStringLiteral("PLAYLIST_TOP_TILE") + ending);
    paintTop(tile, focused, {.left = false, .right = false, .bottom = false});
    paintGrille(tile, {.from = 0, .to = 24}, focused);
    Canvas title = sheet.sprite(QStringLiteral("PLAYLIST_TITLE_BAR") + ending);
    paintTop(title, focused, {.left = false, .right = false, .bottom = false});
    paintTitle(title, (title.width() - titleWidth("PLAYLIST")) / 2 - 1, "PLAYLIST", focused);
    Canvas right = sheet.sprite(QStringLiteral("PLAYLIST_TOP_RIGHT_CORNER") + ending);
    paintTop(right, focused, {.left = false, .bottom = false});
    paintTitleKey(right, {4, 3}, glyphs::shade, Key::up, focused);
    paintTitleKey(right, {14, 3}, glyphs::close, Key::up, focused);
}

void paintSides(Sheet &sheet) {
    Canvas left = sheet.sprite("PLAYLIST_LEFT_TILE");
    paintBody(left, left.bounds(), sideTone, sideTone);
    paintFrame(left, {.top = false, .right = false, .bottom = false});
    left.column(10, 0, left.height(), mix(bodyTop, shade, 0.6));
    left.column(11, 0, left.height(), ink);

    Canvas right = sheet.sprite("PLAYLIST_RIGHT_TILE");
    paintBody(right, right.bounds(), sideTone, sideTone);
    paintFrame(right, {.left = false, .top = false, .bottom = false});
    right.column(0, 0, right.height(), ink);
    right.column(1, 0, right.height(), mix(bodyTop, light, 0.5));
    right.column(4, 0, right.height(), mix(bodyTop, shade, 0.75));
    right.fill({5, 0, 8, right.height()}, mix(ink, bodyBottom, 0.25));
    right.column(5, 0, right.height(), ink);
    right.column(13, 0, right.height(), mix(bodyTop, light, 0.35));

    for (const bool held : {false, true}) {
        Canvas handle = sheet.sprite(held ? "PLAYLIST_SCROLL_HANDLE_SELECTED" : "PLAYLIST_SCROLL_HANDLE");
        paintKey(handle, handle.bounds(), Key::up);
        for (const int y : {5, 11})
            for (int i = 0; i < 2; ++i)
                handle.row(2, y + i, 4, i == 0 ? mix(keyTop, glyph, 0.25) : mix(keyBottom, ink, 0.5));
        if (held)
            paintLamp(handle, {2, 8, 4, 2}, true);
        else
            handle.row(2, 8, 4, mix(keyBottom, ink, 0.75));
    }
}

/// A piece of the bottom edge: the lower rim of the list and metal.
void paintBottom(Canvas &canvas, const Sides &sides) {
    paintBody(canvas, canvas.bounds(), sideTone, 1);
    paintFrame(canvas, sides);
    const int from = sides.left ? 11 : 0;
    const int to = canvas.width() - (sides.right ? 20 : 0);
    canvas.row(from, 0, to - from + (sides.right ? 1 : 0), ink);
    canvas.row(from + (sides.left ? 1 : 0), 1, to - from, mix(bodyTop, light, 0.5));
}

/// A key that opens a menu upwards.
void paintMenuKey(Canvas canvas, std::string_view label) {
    paintTextKey(canvas, label, " ", Key::up);
    const int middle = canvas.width() / 2;
    canvas.stencil(middle - 3, 12, "######", mix(keyBottom, ink, 0.5));
    canvas.stencil(middle - 3, 11, "..##/.####/######", mix(keyBottom, ink, 0.5));
    canvas.stencil(middle - 3, 10, "..##/.####/######", print);
}

void paintBottomPieces(Sheet &sheet) {
    Canvas tile = sheet.sprite("PLAYLIST_BOTTOM_TILE");
    paintBottom(tile, {.left = false, .top = false, .right = false});
    Canvas left = sheet.sprite("PLAYLIST_BOTTOM_LEFT_CORNER");
    paintBottom(left, {.top = false, .right = false});
    int x = 14;
    for (const std::string_view label : {"ADD", "REM", "SEL", "MISC"}) {
        paintRecess(left, {x, 8, 22, 18});
        paintMenuKey(left.part({x, 8, 22, 18}), label);
        x += 29;
    }
    Canvas right = sheet.sprite("PLAYLIST_BOTTOM_RIGHT_CORNER");
    paintBottom(right, {.left = false, .top = false});
    // The groove of the scroll bar ends here, above the keys that scroll by a row.
    right.row(134, 0, 9, ink);
    right.row(135, 1, 9, mix(bodyTop, light, 0.35));
    for (const auto &[y, arrow] :
         {std::pair(3, Stencil("..##../.####./######")), {8, Stencil("######/.####./..##..")}}) {
        right.stencil(136, y + 1, arrow, ink);
        right.stencil(136, y, arrow, print);
    }
    paintWell(right, {5, 8, 93, 10});
    paintWell(right, {64, 22, 34, 9});
    for (const int y : {24, 27}) // the colon of the small clock
        right.set(84, y, mix(glass, amber, 0.6));
    paintRecess(right, {106, 8, 22, 18});
    paintMenuKey(right.part({106, 8, 22, 18}), "LIST");
    constexpr Stencil symbols[] = {"#..#/#.##/####/#.##/#..#",      "#.../###./####/###./#...",
                                   "##.##/##.##/##.##/##.##/##.##", "####/####/####/####",
                                   "#..#/##.#/####/##.#/#..#",      ".##./####/..../####"};
    x = 6;
    for (const Stencil symbol : symbols) {
        const int y = 27 - stencilSize(symbol).height() / 2;
        right.stencil(x, y + 1, symbol, ink);
        right.stencil(x, y, symbol, print);
        x += 9;
    }
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j <= i; ++j) {
            const QPoint at(right.width() - 6 - j * 4, right.height() - 14 + i * 4);
            right.fill({at.x(), at.y(), 2, 2}, ink);
            right.set(at.x() + 1, at.y() + 1, light);
        }
    Canvas visualizer = sheet.sprite("PLAYLIST_VISUALIZER_BACKGROUND");
    paintBottom(visualizer, {.left = false, .top = false, .right = false});
    paintWell(visualizer, {2, 11, 72, 18});
}

void paintMenus(Sheet &sheet) {
    struct Row {
        const char *sprite;
        std::string_view first;
        std::string_view second;
    };
    constexpr Row rows[] = {
        {"PLAYLIST_ADD_URL", "ADD", "URL"},
        {"PLAYLIST_ADD_DIR", "ADD", "DIR"},
        {"PLAYLIST_ADD_FILE", "ADD", "FILE"},
        {"PLAYLIST_REMOVE_ALL", "REM", "ALL"},
        {"PLAYLIST_CROP", "CROP", ""},
        {"PLAYLIST_REMOVE_SELECTED", "REM", "SEL"},
        {"PLAYLIST_REMOVE_MISC", "REM", "MISC"},
        {"PLAYLIST_INVERT_SELECTION", "INV", "SEL"},
        {"PLAYLIST_SELECT_ZERO", "SEL", "ZERO"},
        {"PLAYLIST_SELECT_ALL", "SEL", "ALL"},
        {"PLAYLIST_SORT_LIST", "SORT", "LIST"},
        {"PLAYLIST_FILE_INFO", "FILE", "INFO"},
        {"PLAYLIST_MISC_OPTIONS", "MISC", "OPTS"},
        {"PLAYLIST_NEW_LIST", "NEW", "LIST"},
        {"PLAYLIST_SAVE_LIST", "SAVE", "LIST"},
        {"PLAYLIST_LOAD_LIST", "LOAD", "LIST"},
    };
    for (const Row &row : rows) {
        const QString name = QString::fromLatin1(row.sprite);
        paintTextKey(sheet.sprite(name), row.first, row.second, Key::up);
        paintTextKey(sheet.sprite(name + QStringLiteral("_SELECTED")), row.first, row.second, Key::down);
    }
    for (const char *name : {"PLAYLIST_ADD_MENU_BAR", "PLAYLIST_REMOVE_MENU_BAR", "PLAYLIST_SELECT_MENU_BAR",
                             "PLAYLIST_MISC_MENU_BAR", "PLAYLIST_LIST_BAR"}) {
        Canvas bar = sheet.sprite(name);
        bar.fill(bar.bounds(), ink);
        bar.gradient({1, 1, 1, bar.height() - 2}, flame, ember);
    }
}

void paintShade(Sheet &sheet) {
    Canvas left = sheet.sprite("PLAYLIST_SHADE_BACKGROUND_LEFT");
    paintBar(left, true);
    paintFrame(left, {.right = false});
    Canvas tile = sheet.sprite("PLAYLIST_SHADE_BACKGROUND");
    paintBar(tile, true);
    paintFrame(tile, {.left = false, .right = false});
    for (const bool focused : {false, true}) {
        Canvas right = sheet.sprite(focused ? "PLAYLIST_SHADE_BACKGROUND_RIGHT_SELECTED"
                                            : "PLAYLIST_SHADE_BACKGROUND_RIGHT");
        paintBar(right, true);
        paintFrame(right, {.left = false});
        paintLamp(right, {22, 5, 3, 4}, focused);
        paintTitleKey(right, {29, 3}, glyphs::unshade, Key::up, focused);
        paintTitleKey(right, {39, 3}, glyphs::close, Key::up, focused);
    }
    // The texts of the one-line form stand on glass that runs through all pieces.
    const auto paintGlass = [](Canvas canvas, int from, int to) {
        const int length = to - from;
        canvas.fill({from, 3, length, 8}, glass);
        canvas.row(from, 2, length, ink);
        canvas.row(from, 11, length, mix(barBottom, light, 0.6));
    };
    paintGlass(tile, 0, tile.width());
    paintGlass(left, 5, left.width());
    left.column(4, 2, 9, ink);
    for (const char *name : {"PLAYLIST_SHADE_BACKGROUND_RIGHT_SELECTED", "PLAYLIST_SHADE_BACKGROUND_RIGHT"}) {
        Canvas right = sheet.sprite(name);
        paintGlass(right, 0, 18);
        right.column(18, 3, 9, mix(barBottom, light, 0.6));
    }
}

} // namespace

Sheet playlistSheet() {
    Sheet sheet("PLEDIT");
    paintTopPieces(sheet, false);
    paintTopPieces(sheet, true);
    paintSides(sheet);
    paintBottomPieces(sheet);
    paintMenus(sheet);
    paintShade(sheet);
    struct Row {
        const char *sprite;
        Stencil glyph;
    };
    for (const Row &row :
         {Row{"PLAYLIST_CLOSE_SELECTED", glyphs::close}, Row{"PLAYLIST_COLLAPSE_SELECTED", glyphs::shade},
          Row{"PLAYLIST_EXPAND_SELECTED", glyphs::unshade}}) {
        Canvas key = sheet.sprite(row.sprite);
        paintTitleKey(key, {0, 0}, row.glyph, Key::down);
    }
    return sheet;
}

} // namespace vantor::art
