#include "SkinKit/Loading/SkinError.h"
#include "SkinKit/Loading/SkinParser.h"
#include "SkinKit/Loading/SkinPreviewPage.h"
#include "SkinKit/Rendering/MainWindowRenderer.h"
#include "skintool/PictureComparison.h"
#include "skintool/SkinReport.h"
#include "skintool/SkinScene.h"
#include "skintool/SkintoolOptions.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QImageReader>
#include <QLoggingCategory>

#include <cstdio>

namespace {

using namespace vantor;

enum ExitCode { succeeded = 0, failed = 1, misused = 2 };

void print(FILE *stream, const QString &line) {
    const QByteArray bytes = line.toUtf8() + '\n';
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
}

ExitCode fail(const QString &message) {
    print(stderr, message);
    return failed;
}

ExitCode showUsage(const QString &message, const char *usage) {
    print(stderr, message);
    print(stderr, QString::fromLatin1(usage));
    return misused;
}

/// "pictures/out.png" becomes "pictures/out-difference.png".
QString differencePath(const QString &png) {
    const QFileInfo info(png);
    return info.dir().filePath(info.completeBaseName() + QStringLiteral("-difference.png"));
}

ExitCode compare(const QImage &picture, const QString &folder, const QString &png) {
    const QString path = QDir(folder).filePath(QStringLiteral("main.png"));
    QImageReader reader(path);
    const QImage reference = reader.read();
    if (reference.isNull())
        return fail(QStringLiteral("Could not read %1: %2").arg(path, reader.errorString()));
    if (reference.size() != picture.size()) {
        return fail(QStringLiteral("%1 is %2x%3, not %4x%5")
                        .arg(path)
                        .arg(reference.width())
                        .arg(reference.height())
                        .arg(picture.width())
                        .arg(picture.height()));
    }
    const PictureComparison result = PictureComparison::compare(picture, reference);
    const double share = 100.0 * result.differingPixels / result.totalPixels;
    QString line = QStringLiteral("compare: %1 of %2 pixels differ (%3 %)")
                       .arg(result.differingPixels)
                       .arg(result.totalPixels)
                       .arg(share, 0, 'f', 2);
    if (result.differingPixels == 0) {
        print(stdout, line);
        return succeeded;
    }
    line += QStringLiteral(", x %1, y %2, %3x%4")
                .arg(result.bounds.x())
                .arg(result.bounds.y())
                .arg(result.bounds.width())
                .arg(result.bounds.height());
    print(stdout, line);
    if (!result.difference.save(differencePath(png), "PNG"))
        return fail(QStringLiteral("Could not write ") + differencePath(png));
    return failed;
}

ExitCode writePicture(const Skin &skin, const SkintoolOptions &options) {
    if (options.scale > maxPictureScale)
        return fail(QStringLiteral("Cannot draw at a scale above %1").arg(maxPictureScale));
    const MainWindowScene scene = skinScene(options.state.value_or(SkintoolOptions::State::idle));
    const auto outside =
        options.noRegion ? MainWindowRenderer::Outside::drawn : MainWindowRenderer::Outside::transparent;
    const QImage picture = MainWindowRenderer::picture(skin, scene, options.scale, outside);
    if (!picture.save(*options.png, "PNG"))
        return fail(QStringLiteral("Could not write ") + *options.png);
    return options.compare ? compare(picture, *options.compare, *options.png) : succeeded;
}

ExitCode run(const SkintoolOptions &options) {
    const SkinArchive archive(QUrl::fromLocalFile(QFileInfo(options.input).absoluteFilePath()));
    const Skin skin = SkinParser::parse(archive);
    for (const QString &line : SkinReport::summary(options.input, skin))
        print(stdout, line);
    if (options.verbose) {
        for (const QString &line : SkinReport::details(skin, SkinPreviewPage::readme(archive)))
            print(stdout, line);
    }
    return options.png ? writePicture(skin, options) : succeeded;
}

ExitCode runArguments(const QStringList &arguments) {
    const QString first = arguments.value(0);
    if (first == QStringLiteral("corpus"))
        return showUsage(QStringLiteral("corpus is not available yet"), SkintoolUsage::corpus);
    if (first == QStringLiteral("corpus-report"))
        return showUsage(QStringLiteral("corpus-report is not available yet"), SkintoolUsage::corpusReport);
    try {
        return run(SkintoolOptions::parse(arguments));
    } catch (const SkintoolOptions::UsageError &error) {
        return showUsage(error.description(), SkintoolUsage::skintool);
    } catch (const SkinError &error) {
        return fail(error.description());
    }
}

} // namespace

int main(int argc, char **argv) {
    // Without a GUI application: pictures are drawn in memory, so no display is needed.
    const QCoreApplication application(argc, argv);
    // What is wrong with a picture is said in the skin's own lines.
    QLoggingCategory::setFilterRules(QStringLiteral("qt.gui.imageio*=false"));
    return runArguments(QCoreApplication::arguments().mid(1));
}
