#include "AudioCore/Output/SystemOutputDeviceProvider.h"
#include "MeasuredApplication.h"
#include "SkinBrowser/SkinLibraryModel.h"
#include "SkinMuseum/Wire/MuseumPage.h"
#include "Vantor/Model/PlayerModel.h"
#include "Vantor/Model/SkinSwitcher.h"
#include "Vantor/Museum/MuseumGridView.h"
#include "Vantor/Museum/MuseumSetup.h"
#include "Vantor/Museum/MuseumTab.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QScrollBar>
#include <QSettings>
#include <QTemporaryDir>

using namespace vantor;
using namespace std::chrono_literals;

namespace {

double megabytes() {
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toDouble() * static_cast<double>(sysconf(_SC_PAGESIZE)) /
           (1 << 20);
}

void decodePages() {
    QJsonArray rows;
    for (int i = 0; i < MuseumQuery::pageSize; ++i) {
        const QString name = QStringLiteral("%1").arg(i, 32, 16, QLatin1Char('0'));
        QJsonObject row{{QStringLiteral("md5"), name},
                        {QStringLiteral("filename"), QStringLiteral("A skin of some name %1.wsz").arg(i)},
                        {QStringLiteral("nsfw"), false}};
        for (const char *key : {"screenshot_url", "download_url", "museum_url"})
            row.insert(QLatin1String(key), QStringLiteral("https://museum.example/some/folder/%1").arg(name));
        rows.append(row);
    }
    const QJsonObject skins{{QStringLiteral("count"), 20'000}, {QStringLiteral("nodes"), rows}};
    const QByteArray body =
        QJsonDocument(QJsonObject{{QStringLiteral("data"), QJsonObject{{QStringLiteral("skins"), skins}}}})
            .toJson();
    constexpr int times = 500;
    const double before = threadMilliseconds();
    qsizetype kept = 0;
    for (int i = 0; i < times; ++i)
        kept += decodePage(body, MuseumQuery::browse(true)).skins.size();
    std::printf("a page of %lld skins is decoded in %.3f ms\n", static_cast<long long>(kept / times),
                (threadMilliseconds() - before) / times);
}

} // namespace

// bench-museum-tab <endpoint> <certificate>: how long the events of the museum's tab take and how much memory
// it has, at a fake-museum of another process with many skins.
int main(int argc, char **argv) {
    MeasuredApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3)
        return 2;
    decodePages();
    const QTemporaryDir folder;
    QSettings settings(folder.filePath(QStringLiteral("settings.ini")), QSettings::IniFormat);
    Player player(std::make_unique<FileTrackResolver>(), std::make_unique<SystemOutputDeviceProvider>());
    PlayerModel model(player, settings);
    SkinLibraryModel library(QUrl::fromLocalFile(folder.filePath(QStringLiteral("index/index.sqlite"))));
    SkinSwitcher switcher(model, library);
    const MuseumSetup setup{.endpoint = QUrl(arguments[1]),
                            .authorities = QSslCertificate::fromPath(arguments[2]),
                            .cacheFolder = folder.filePath(QStringLiteral("museum")),
                            .version = QStringLiteral("bench")};
    const auto open = [&] {
        auto tab = std::make_unique<MuseumTab>(model, library, switcher, setup);
        tab->resize(1280, 760);
        tab->show();
        return tab;
    };
    runSteps(1s, 100ms, [](int) {});
    const double before = megabytes();
    std::unique_ptr<MuseumTab> tab = open();
    runSteps(3s, 100ms, [](int) {});
    application.report("begin");
    auto *grid = tab->findChild<MuseumGridView *>();
    const auto isThere = [&] { return !grid->model()->index(0, 0).data().toString().isEmpty(); };
    if (!isThere()) {
        std::fputs("the museum does not answer\n", stderr);
        return 1;
    }
    QScrollBar *bar = grid->verticalScrollBar();
    runSteps(15s, 16ms, [&](int i) { bar->setValue(i * 7); });
    application.report("scroll, 8 screenshots/s");
    runSteps(10s, 16ms, [&](int i) { bar->setValue(20'000 + i * 40); });
    application.report("scroll fast");
    runSteps(5s, 60ms,
             [&](int i) { bar->setValue(static_cast<int>(i * 7919LL * 977 % std::max(1, bar->maximum()))); });
    application.report("jump about");
    runSteps(5s, 60ms, [&](int i) { grid->setCurrentIndex(grid->model()->index(i, 0)); });
    application.report("select");
    const int height = grid->viewport()->height();
    runSteps(180s, 250ms, [&](int i) { bar->setValue(i * height); });
    application.report("scroll through 10,000");
    std::printf("memory: %.0f MB before the tab, %.0f MB more now\n", before, megabytes() - before);

    tab.reset();
    QElapsedTimer clock;
    clock.start();
    tab = open();
    const qint64 made = clock.restart();
    grid = tab->findChild<MuseumGridView *>();
    while (!isThere() && !clock.hasExpired(10'000))
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 5);
    std::printf("a page that was seen before is there after %lld ms, when the tab was made in %lld ms\n",
                clock.elapsed(), made);
    return 0;
}
