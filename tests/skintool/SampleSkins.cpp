#include "tests/skintool/SampleSkins.h"

#include "SkinKit/Sprites/SkinSprites.h"
#include "tests/Support/BitmapBuilder.h"
#include "tests/Support/ZipBuilder.h"

namespace vantor::test {

namespace {

using Files = QMap<QByteArray, QByteArray>;

constexpr QRgb pictureColor = qRgba(90, 120, 160, 200);

QSize sheetSize(const QString &sheet) {
    QRect bounds;
    for (const Sprite &sprite : SkinSprites::sheets().value(sheet))
        bounds |= QRect(QPoint(), sprite.rect().bottomRight());
    return bounds.size();
}

BitmapBuilder gradient(QSize size, int depth) {
    BitmapBuilder bitmap{.width = size.width(), .height = size.height(), .depth = depth};
    for (int i = 0; depth <= 8 && i < 1 << depth; ++i)
        bitmap.palette.push_back({static_cast<std::uint8_t>(i * 255 / ((1 << depth) - 1)), 60, 90});
    const qsizetype stride = (qsizetype{size.width()} * depth + 31) / 32 * 4;
    for (qsizetype i = 0; i < stride * size.height(); ++i)
        bitmap.pixels += static_cast<char>(i % stride * 200 / stride + i / stride / 4);
    return bitmap;
}

/// 116 rows of a run of 255 pixels and one of 20.
BitmapBuilder runs(QSize size, int depth) {
    BitmapBuilder bitmap = gradient(size, depth);
    bitmap.compression = depth == 8 ? 1 : 2;
    bitmap.pixels = QByteArray::fromHex("ff0714120000").repeated(size.height()) + QByteArray::fromHex("0001");
    return bitmap;
}

Files complete(int depth = 24) {
    Files files;
    for (const QString &sheet : SkinSprites::sheets().keys())
        files.insert(sheet.toLatin1() + ".BMP", gradient(sheetSize(sheet), depth).bmp());
    files.insert("VISCOLOR.TXT", QByteArray("24,33,41, // dots\r\n").repeated(24));
    files.insert("PLEDIT.TXT", "[Text]\r\nNormal=#00FF00\r\nFont=Arial\r\n");
    return files;
}

QByteArray packed(const Files &files, const QByteArray &folder = {}) {
    std::vector<ZipEntry> entries;
    for (auto it = files.cbegin(); it != files.cend(); ++it)
        entries.push_back({folder + it.key(), *it});
    return zipFile(entries);
}

class Collection {
  public:
    void add(const char *name, const QByteArray &bytes, int warnings, int fallbacks, int exitCode = 0) {
        const QString file = QStringLiteral("%1-%2.wsz").arg(m_skins.size() + 1).arg(QLatin1String(name));
        m_skins.push_back({file, bytes, exitCode, warnings, fallbacks});
    }
    void addChanged(const char *name, const Files &changes, int fallbacks, int warnings = 0) {
        Files files = complete();
        files.insert(changes);
        add(name, packed(files), warnings, fallbacks);
    }
    void addWithout(std::initializer_list<const char *> removed, int warnings, int fallbacks) {
        Files files = complete();
        for (const char *file : removed)
            files.remove(file);
        add(*removed.begin(), packed(files), warnings, fallbacks);
    }
    /// A skin that has this main window and nothing else.
    void addMain(const char *name, const BitmapBuilder &main) {
        addBare(name, packed({{"main.bmp", main.bmp()}}));
    }
    void addBare(const char *name, const QByteArray &bytes) { add(name, bytes, 11, 16); }
    void addRefused(const char *name, const QByteArray &bytes) { add(name, bytes, 0, 0, 1); }

    [[nodiscard]] std::vector<SampleSkin> take() { return std::move(m_skins); }

  private:
    std::vector<SampleSkin> m_skins;
};

void addBitmaps(Collection &skins) {
    const QSize size(275, 116);
    for (const int depth : {1, 4, 8, 16, 24, 32}) {
        const QByteArray name = "depth-" + QByteArray::number(depth);
        skins.add(name.constData(), packed(complete(depth)), 0, 0);
        BitmapBuilder upsideDown = gradient(size, depth);
        upsideDown.height = -size.height();
        skins.addMain((name + "-top-down").constData(), upsideDown);
        if (depth < 16)
            continue;
        BitmapBuilder fields = gradient(size, depth);
        fields.compression = depth == 24 ? 0 : 3;
        fields.masks = depth == 24 ? QByteArray() : le32(0xF800) + le32(0x07E0) + le32(0x001F);
        fields.headerSize = depth == 24 ? 124 : 40;
        skins.addMain((name + "-fields").constData(), fields);
    }
    skins.addMain("runs-8", runs(size, 8));
    skins.addMain("runs-4", runs(size, 4));
    BitmapBuilder core = gradient(size, 24);
    core.headerSize = 12;
    skins.addMain("core-header", core);
    skins.addMain("tiny-main", gradient({1, 1}, 24));
    skins.addMain("large-main", gradient({1200, 900}, 24));
    skins.addBare("png-named-bmp", packed({{"main.bmp", solidPNG(size, pictureColor)}}));
}

void addGaps(Collection &skins) {
    skins.addWithout({"MAIN.BMP"}, 1, 1);
    skins.addWithout({"BALANCE.BMP"}, 0, 1);
    skins.addWithout({"VOLUME.BMP", "BALANCE.BMP"}, 1, 2);
    skins.addWithout({"NUMBERS.BMP"}, 0, 1);
    skins.addWithout({"NUMS_EX.BMP"}, 0, 1);
    skins.addWithout({"NUMBERS.BMP", "NUMS_EX.BMP"}, 1, 1);
    skins.addWithout({"EQ_EX.BMP", "GEN.BMP"}, 0, 2);
    skins.addWithout({"VISCOLOR.TXT", "PLEDIT.TXT"}, 0, 2);
    skins.addChanged("broken-text-sheet", {{"TEXT.BMP", "BM broken"}}, 1, 1);
    skins.addChanged("short-viscolor", {{"VISCOLOR.TXT", "1,2,3\n4,5,6\n"}}, 1);
    skins.addChanged("bad-pledit", {{"PLEDIT.TXT", "[Text]\nNormal=green\nCurrent=\x1B[31mred\n"}}, 2);
    Files png{{"PLEDIT.TXT", "[Text]"}, {"VISCOLOR.TXT", QByteArray("1 2 3\r").repeated(30)}};
    for (const QString &sheet : SkinSprites::sheets().keys())
        png.insert(sheet.toLower().toLatin1() + ".png", solidPNG(sheetSize(sheet), pictureColor));
    skins.add("png-sheets", packed(png), 0, 0);
}

void addExtras(Collection &skins) {
    skins.addChanged(
        "region",
        {{"region.txt", "[Normal]\nNumPoints=4,3\nPointList=10,0,265,0,275,116,0,116 0,0,9,0,0,9\n"
                        "[WindowShade]\nNumPoints=4\nPointList=0,0,275,0,275,14,0,14"}},
        0);
    skins.addChanged("empty-region", {{"region.txt", "[Normal]\nNumPoints=0\nPointList="}}, 0);
    const QByteArray frame = riffChunk("icon", solidCursor({255, 0, 0}));
    skins.addChanged("cursors",
                     {{"normal.cur", solidCursor({250, 250, 250}, {1, 1})},
                      {"titlebar.cur", aniFile(aniHeader(10) + riffList("fram", frame + frame))},
                      {"close.cur", "broken"}},
                     0);
    skins.addChanged("read-me", {{"readme.txt", "Gr\xFC\xDF \x1B]0;title\x07\r\nsecond line"}}, 0);
    skins.add("nested", packed(complete(), "Some Skin/deep/"), 0, 0);
    skins.add("backslashes", packed(complete(), "Some Skin\\"), 0, 0);
    Files tagged = complete();
    for (QByteArray &file : tagged)
        file += "trailing bytes";
    skins.add("trailing-bytes", packed(tagged), 0, 0);
    const QByteArray main = solidBMP(275, 116, {90, 90, 90});
    skins.addBare("duplicates", zipFile({{"a/main.bmp", main}, {"main.bmp", "BM"}, {"MAIN.BMP", "BM"}}));
    skins.addBare("wrong-checksum", zipFile({{.name = "main.bmp", .data = main, .crc = 1}}));
    skins.addBare("lying-size",
                  zipFile({{.name = "main.bmp", .data = main, .declaredSize = 5},
                           {.name = "text.bmp", .data = QByteArray(9 << 20, '\0'), .declaredSize = 9}}));
}

void addRefused(Collection &skins) {
    Files modern = complete();
    modern.insert("skin.xml", "<skin/>");
    skins.addRefused("modern", packed(modern));
    skins.addRefused("no-bitmaps", packed({{"readme.txt", "nothing here"}}));
    skins.addRefused("encrypted", zipFile({{.name = "main.bmp", .data = "BM", .encryptedFlag = true}}));
    skins.addRefused("huge-claims", packed({{"main.bmp", BitmapBuilder{4096, 4096, 24, {}}.bmp()}}));
    skins.addRefused("cut-short", packed(complete()).chopped(100));
    skins.addRefused("no-archive", "This is not a skin.");
    skins.addRefused("empty-file", {});
}

} // namespace

std::vector<SampleSkin> sampleSkins() {
    Collection skins;
    addBitmaps(skins);
    addGaps(skins);
    addExtras(skins);
    addRefused(skins);
    return skins.take();
}

} // namespace vantor::test
