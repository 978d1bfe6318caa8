#include "AudioCore/Output/SystemOutputDeviceProvider.h"
#include "MeasuredApplication.h"
#include "SkinBrowser/SkinLibraryModel.h"
#include "SkinLibrary/Ingest/FolderScanner.h"
#include "Vantor/Model/PlayerModel.h"
#include "Vantor/Model/SkinSwitcher.h"
#include "Vantor/Windows/SkinBrowserWindow.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QLineEdit>
#include <QScrollBar>
#include <QSettings>
#include <QTemporaryDir>
#include <QToolButton>

#include <unistd.h>

#include <cstdio>

using namespace vantor;

namespace {

QStringList madeSkins(const QString &folder) {
    QStringList files;
    for (QDirIterator it(folder, {QStringLiteral("*.wsz")}, QDir::Files, QDirIterator::Subdirectories);
         it.hasNext();)
        files.append(it.next());
    return files;
}

void link(const QStringList &files, const QString &links, int count) {
    for (int i = 0; i < count; ++i) {
        const QString &file = files[i % files.size()];
        const QString folder = links + u'/' + QString::number(i / 500);
        QDir().mkpath(folder);
        const QString path = folder + QStringLiteral("/%1 %2.wsz").arg(QFileInfo(file).baseName()).arg(i);
        if (::link(QFile::encodeName(file).constData(), QFile::encodeName(path).constData()) != 0)
            std::exit(2);
    }
}

/// As many rows as asked for, each of them a file that is there, so that a pass leaves them alone.
void fill(const QUrl &index, const QString &skins, const QString &links, int rows) {
    link(madeSkins(skins), links, rows);
    const auto store = SkinIndexStore::open(index);
    std::vector<IngestOutcome> batch;
    for (const FileStamp &stamp : FolderScanner::list(QUrl::fromLocalFile(links), {QStringLiteral("wsz")})) {
        ParsedSkin skin;
        skin.stamp = stamp;
        skin.digests = SkinContentHash::digests(stamp.path.toUtf8());
        skin.inspection.readme = QStringLiteral("Made in code, ") + stamp.path;
        batch.push_back(skin);
        if (batch.size() == 1000) {
            store->apply(batch, SkinIngester::parserVersion);
            batch.clear();
        }
    }
    store->apply(batch, SkinIngester::parserVersion);
}

} // namespace

// bench-browser-window <made skins> <rows>: how long the browser's events take while one scrolls, searches
// and filters, first at rest, then while a pass reads 30,000 new files. Makes links beside the skins.
int main(int argc, char **argv) {
    using namespace std::chrono_literals;
    MeasuredApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3)
        return 2;
    const QString skins = QFileInfo(arguments[1]).canonicalFilePath();
    const QTemporaryDir folder(skins + QStringLiteral("-links-XXXXXX"));
    const QUrl index = QUrl::fromLocalFile(folder.filePath(QStringLiteral("index/index.sqlite")));
    const QString links = folder.filePath(QStringLiteral("skins"));
    fill(index, skins, links, arguments[2].toInt());

    QSettings settings(folder.filePath(QStringLiteral("settings.ini")), QSettings::IniFormat);
    Player player(std::make_unique<FileTrackResolver>(), std::make_unique<SystemOutputDeviceProvider>());
    PlayerModel model(player, settings);
    SkinLibraryModel library(index);
    SkinSwitcher switcher(model, library);
    ThumbnailCache thumbnails(folder.filePath(QStringLiteral("thumbnails")));
    SkinBrowserWindow window(model, library, switcher, thumbnails, settings);
    window.resize(1280, 760);
    window.show();
    auto *const grid = window.findChild<SkinGridView *>();
    auto *const search = window.findChild<QLineEdit *>();
    const auto filters = window.findChildren<QToolButton *>();
    QScrollBar *const bar = grid->verticalScrollBar();
    library.setFolder(links);
    runSteps(1s, 100ms, [](int) {});
    while (library.isIndexing())
        runSteps(100ms, 100ms, [](int) {});
    application.report("begin");

    const auto everything = [&](const char *when) {
        const auto report = [&](const char *what) {
            application.report((QByteArray(when) + ": " + what).constData());
        };
        bar->setValue(0);
        runSteps(5s, 16ms, [&](int i) { bar->setValue(i * 40); });
        report("scroll smoothly");
        runSteps(5s, 60ms,
                 [&](int i) { bar->setValue(static_cast<int>(i * 7919LL * 977 % bar->maximum())); });
        report("jump about");
        runSteps(5s, 60ms, [&](int i) {
            const int row = static_cast<int>(i * 7919LL % std::max(1, grid->model()->rowCount()));
            grid->setCurrentIndex(grid->model()->index(row, 0));
        });
        report("select");
        runSteps(3s, 400ms, [&](int) {
            const int row = bar->value() % std::max(1, grid->model()->rowCount());
            grid->setCurrentIndex(grid->model()->index(row, 0));
            bar->setValue(bar->value() + 777);
        });
        report("select and look");
        const QString text = QStringLiteral("harbour velvet 12");
        runSteps(5s, 60ms, [&](int i) { search->setText(text.left(i % (text.size() + 1))); });
        search->clear();
        report("search");
        runSteps(3s, 150ms, [&](int i) { filters[i % filters.size()]->click(); });
        for (QToolButton *const filter : filters)
            filter->setChecked(true);
        report("filter");
        runSteps(3s, 30ms, [&](int i) { window.resize(700 + i * 37 % 580, 450 + i * 53 % 310); });
        window.resize(1280, 760);
        report("resize");
    };
    everything("at rest");
    link(madeSkins(skins), links + QStringLiteral("/new"), 30'000);
    library.reindex();
    everything("in a pass");
    std::printf("%s, %lld of %lld files\n", library.isIndexing() ? "the pass still ran" : "the pass was over",
                static_cast<long long>(library.progress().processed),
                static_cast<long long>(library.progress().changed));
    return 0;
}
