#include "SkinBrowser/SkinLibraryModel.h"
#include "SkinBrowser/ThumbnailCache.h"
#include "SkinLibrary/Index/SkinIndexStore.h"
#include "tests/Support/SkinCollection.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>

#include <cstdio>

using namespace vantor;

// bench-skin-browser <folder> <skins>: fills the folder with made skins if it is empty and says how long the
// main thread is held up by the library's model during a first pass, and how many thumbnails a second are
// made and read back from disk; how long the model
// takes to end during a pass.
namespace {

/// Measures every event that the main thread handles.
class MeasuredApplication : public QGuiApplication {
  public:
    using QGuiApplication::QGuiApplication;

    bool notify(QObject *receiver, QEvent *event) override {
        QElapsedTimer time;
        time.start();
        const bool result = QGuiApplication::notify(receiver, event);
        longest = std::max(longest, time.nsecsElapsed());
        total += time.nsecsElapsed();
        ++events;
        return result;
    }

    qint64 longest = 0;
    qint64 total = 0;
    int events = 0;
};

double milliseconds(qint64 nanoseconds) {
    return static_cast<double>(nanoseconds) / 1e6;
}

void measurePass(MeasuredApplication &application, const QUrl &index, const QString &folder) {
    QElapsedTimer time;
    time.start();
    auto owner = std::make_unique<SkinLibraryModel>(index);
    SkinLibraryModel &model = *owner;
    model.setFolder(folder);
    application.longest = std::max(application.longest, time.nsecsElapsed());
    while (!model.summary())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    std::printf("pass over %lld skins: %.2f s; main thread: %d events, longest %.2f ms, together %.2f ms\n",
                static_cast<long long>(model.counts().skins), milliseconds(time.nsecsElapsed()) / 1000,
                application.events, milliseconds(application.longest), milliseconds(application.total));
    model.reindex(true);
    while (model.progress().processed == 0)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    time.restart();
    owner.reset();
    std::printf("ending during a pass: %.1f ms\n", milliseconds(time.nsecsElapsed()));
}

void measureThumbnails(const char *title, const QString &folder, const std::vector<SkinRecord> &skins) {
    QElapsedTimer time;
    time.start();
    ThumbnailCache cache(folder);
    std::size_t done = 0;
    QObject::connect(&cache, &ThumbnailCache::ready, [&] { ++done; });
    QObject::connect(&cache, &ThumbnailCache::failed, [&] { ++done; });
    for (const SkinRecord &skin : skins)
        (void)cache.picture(skin.hash, skin.primaryPath);
    while (done < skins.size())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    std::printf("thumbnails %s: %.0f a second\n", title,
                static_cast<double>(done) / milliseconds(time.nsecsElapsed()) * 1000);
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 3) {
        std::fputs("usage: bench-skin-browser <folder> <skins>\n", stderr);
        return 2;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    MeasuredApplication application(argc, argv);
    const QString folder = QDir(QFile::decodeName(argv[1])).absolutePath();
    if (!QDir(folder).exists())
        test::SkinCollection().write(folder, 0, QByteArray(argv[2]).toInt());
    const QTemporaryDir made;
    const QUrl index = QUrl::fromLocalFile(made.filePath(QStringLiteral("index.sqlite")));
    measurePass(application, index, folder);
    const std::vector<SkinRecord> skins =
        SkinIndexStore::open(index)->skins({.statuses = {SkinStatus::ok}, .limit = 1000});
    measureThumbnails("made", made.filePath(QStringLiteral("cache")), skins);
    measureThumbnails("read", made.filePath(QStringLiteral("cache")), skins);
    return 0;
}
