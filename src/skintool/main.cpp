#include "SkinKit/Loading/SkinError.h"
#include "SkinKit/Loading/SkinParser.h"
#include "SkinKit/Loading/SkinPreviewPage.h"
#include "SkinKit/Rendering/MainWindowRenderer.h"
#include "skintool/CorpusCommand.h"
#include "skintool/CorpusResult.h"
#include "skintool/PictureComparison.h"
#include "skintool/SkinReport.h"
#include "skintool/SkinScene.h"
#include "skintool/SkintoolOptions.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImageReader>
#include <QLoggingCategory>

#include <cstdio>
#include <memory>

namespace {

using namespace vantor;

constexpr auto corpusWord = "corpus";

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

/// `usage`: the line that explains a misuse.
template <typename Command>
int guarded(const char *usage, const Command &command) {
    try {
        return command();
    } catch (const SkintoolOptions::UsageError &error) {
        return showUsage(error.description(), usage);
    } catch (const CorpusError &error) {
        return fail(error.description());
    } catch (const SkinError &error) {
        return fail(error.description());
    }
}

int runArguments(const QStringList &arguments) {
    const QString first = arguments.value(0);
    if (first == QLatin1String(corpusWord))
        return guarded(SkintoolUsage::corpus, [&] { return CorpusCommand::run(arguments.mid(1)); });
    if (first == QStringLiteral("corpus-report"))
        return guarded(SkintoolUsage::corpusReport, [&] { return CorpusCommand::report(arguments.mid(1)); });
    return guarded(SkintoolUsage::skintool, [&] { return run(SkintoolOptions::parse(arguments)); });
}

// Pictures are drawn in memory, so no display is needed; only the text of the playlist needs fonts and with
// them a GUI application.
std::unique_ptr<QCoreApplication> makeApplication(int &argc, char **argv) {
    if (argc < 2 || qstrcmp(argv[1], corpusWord) != 0)
        return std::make_unique<QCoreApplication>(argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    return std::make_unique<QGuiApplication>(argc, argv);
}

} // namespace

int main(int argc, char **argv) {
    const auto application = makeApplication(argc, argv);
    // What is wrong with a picture is said in the skin's own lines.
    QLoggingCategory::setFilterRules(QStringLiteral("qt.gui.imageio*=false"));
    return runArguments(QCoreApplication::arguments().mid(1));
}
