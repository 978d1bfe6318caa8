// make-default-skin OUTPUT-DIRECTORY
//
// Draws the skin "Meridian" and the application's icon, and writes default.wsz and icons/vantor-SIDE.png. The
// same program writes the same bytes each time; it needs no display.

#include "Archive.h"
#include "Icon.h"
#include "Sheet.h"

#include <QBuffer>
#include <QDir>

#include <cstdio>

namespace {

using namespace vantor::art;

void fail(const QString &reason) {
    std::fprintf(stderr, "make-default-skin: %s\n", qPrintable(reason));
    std::exit(1);
}

std::vector<SkinFile> skinFiles() {
    const QImage window = mainWindow();
    std::vector<Sheet> sheets{mainSheet(window), titleBarSheet(window), playlistSheet(), generalSheet()};
    for (const std::vector<Sheet> &group :
         {buttonSheets(window), sliderSheets(window), textSheets(), equalizerSheets()})
        sheets.insert(sheets.end(), group.begin(), group.end());

    std::vector<SkinFile> files;
    for (const Sheet &sheet : sheets) {
        SkinFile file{sheet.name().toLower().toLatin1() + ".bmp", {}};
        QBuffer buffer(&file.bytes);
        if (!sheet.image().save(&buffer, "BMP"))
            fail(QStringLiteral("cannot encode %1").arg(sheet.name()));
        files.push_back(std::move(file));
    }
    for (const std::vector<SkinFile> &group : {cursorFiles(), textFiles()})
        files.insert(files.end(), group.begin(), group.end());
    return files;
}

} // namespace

int main(int argc, char *argv[]) {
    if (argc != 2)
        fail(QStringLiteral("usage: make-default-skin <output directory>"));
    const QDir output(QString::fromLocal8Bit(argv[1]));
    if (!output.mkpath(QStringLiteral("icons")))
        fail(QStringLiteral("cannot create %1").arg(output.path()));
    if (const QString reason = writeArchive(output.filePath(QStringLiteral("default.wsz")), skinFiles());
        !reason.isEmpty())
        fail(reason);
    for (const int side : {16, 24, 32, 48, 64, 128, 256, 512})
        if (!icon(side).save(output.filePath(QStringLiteral("icons/vantor-%1.png").arg(side))))
            fail(QStringLiteral("cannot write the icon of %1 pixels").arg(side));
    return 0;
}
