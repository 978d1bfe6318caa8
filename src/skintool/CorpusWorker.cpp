#include "skintool/CorpusWorker.h"

#include "SkinKit/Loading/SkinError.h"
#include "SkinKit/Loading/SkinParser.h"
#include "SkinKit/Loading/SkinPreviewPage.h"
#include "SkinKit/Rendering/EqualizerWindowRenderer.h"
#include "SkinKit/Rendering/MainWindowRenderer.h"
#include "SkinKit/Rendering/PlaylistWindowRenderer.h"
#include "SkinLibrary/Ingest/SkinIngester.h"
#include "skintool/SkinScene.h"

#include <QFile>
#include <QThread>

#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <exception>
#include <system_error>

namespace vantor::CorpusWorker {

namespace {

void writeOut(const QByteArray &bytes) {
    for (qsizetype done = 0; done < bytes.size();) {
        const ssize_t count =
            write(STDOUT_FILENO, bytes.constData() + done, static_cast<std::size_t>(bytes.size() - done));
        if (count < 0 && errno != EINTR)
            _exit(EXIT_FAILURE);
        done += std::max<ssize_t>(count, 0);
    }
}

/// Has Qt start the threads in which it converts large pictures. When one could not be started for want of
/// memory, the conversion would wait for it without end.
void startPictureThreads() {
    mallopt(M_ARENA_MAX, 1);  // arenas of threads reserve addresses that they do not use
    constexpr int edge = 256; // squares of it are what Qt gives to a thread
    QImage picture(edge, edge * QThread::idealThreadCount(), QImage::Format_RGB32);
    picture.fill(Qt::black);
    (void)picture.convertToFormat(QImage::Format_RGBX8888);
}

/// What is mapped already (the libraries, under a sanitizer terabytes) does not count.
void limitMemory(std::int64_t maxMemoryMiB) {
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        _exit(EXIT_FAILURE);
    const rlim_t pages = file.readAll().split(' ').first().toULongLong();
    const rlim_t bytes =
        pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE)) + static_cast<rlim_t>(maxMemoryMiB) * 1024 * 1024;
    const rlimit limit{bytes, bytes};
    if (setrlimit(RLIMIT_AS, &limit) != 0)
        _exit(EXIT_FAILURE);
    const rlimit noCores{0, 0};
    setrlimit(RLIMIT_CORE, &noCores);
}

// An exception that leaves a function of Qt's which must not throw would otherwise pass for a crash.
void onTerminate() {
    try {
        if (const std::exception_ptr error = std::current_exception())
            std::rethrow_exception(error);
    } catch (const std::bad_alloc &) {
        _exit(outOfMemoryExit);
    } catch (...) {
    }
    std::abort();
}

[[noreturn]] void hog() {
    constexpr qsizetype step = 16 << 20;
    for (QByteArrayList blocks;;)
        blocks.append(QByteArray(step, 'x')); // throws std::bad_alloc in the end
}

/// VANTOR_CORPUS_PLANT="hang:a.wsz,crash:b.wsz,hog:c.wsz" plants these faults in the skins of these names.
void plant(const QString &path) {
    const QString name = path.section(QLatin1Char('/'), -1);
    for (const QString &entry : qEnvironmentVariable("VANTOR_CORPUS_PLANT").split(QLatin1Char(','))) {
        const QString fault = entry.section(QLatin1Char(':'), 0, 0);
        if (entry.section(QLatin1Char(':'), 1) != name)
            continue;
        if (fault == QStringLiteral("crash"))
            std::abort();
        if (fault == QStringLiteral("hog"))
            hog();
        while (fault == QStringLiteral("hang"))
            pause();
    }
}

PlaylistWindowScene playlistScene(const MainWindowScene &main) {
    PlaylistWindowScene scene;
    scene.rows = {{QStringLiteral("1. First"), QStringLiteral("4:05"), true, false},
                  {QStringLiteral("2. Second"), QString(), false, true}};
    scene.runningTime = QStringLiteral("4:05/8:10");
    scene.status = main.status;
    scene.visualizer = main.visualizer;
    scene.shadeTitle = QStringLiteral("1. First");
    scene.shadeLength = QStringLiteral("4:05");
    return scene;
}

template <typename Renderer>
void drawOn(QSize size, const Renderer &draw) {
    QImage picture(size, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    draw(painter);
}

/// The three windows in both their forms.
void drawWindows(const Skin &skin, MainWindowScene main, int scale) {
    EqualizerWindowScene equalizer;
    PlaylistWindowScene playlist = playlistScene(main);
    for (const bool shaded : {false, true}) {
        main.shaded = equalizer.shaded = playlist.shaded = shaded;
        (void)MainWindowRenderer::picture(skin, main, scale);
        (void)EqualizerWindowRenderer::mask(skin, shaded, scale);
        drawOn(EqualizerWindowRenderer::size(shaded, scale),
               [&](QPainter &painter) { EqualizerWindowRenderer::draw(painter, skin, equalizer, scale); });
        drawOn(PlaylistWindowLayout::windowSize(playlist.size, shaded) * scale,
               [&](QPainter &painter) { PlaylistWindowRenderer::draw(painter, skin, playlist, scale); });
    }
}

/// All that the player does with a skin that it is given to wear.
void wear(const SkinArchive &archive, CorpusResult &result) {
    const Skin skin = SkinParser::parse(archive);
    result.warnings = skin.warnings;
    result.fallbacks = skin.fallbacks;
    result.status = skin.warnings.isEmpty() ? CorpusStatus::ok : CorpusStatus::partial;
    (void)SkinPreviewPage::readme(archive);
    for (const int scale : {1, 2})
        drawWindows(skin, skinScene(SkintoolOptions::State::webamp), scale);
}

QString hashOf(const QString &path) {
    try {
        return SkinIngester().digests(path).sha256;
    } catch (const std::system_error &) {
        return {}; // the loader will say why
    }
}

CorpusResult inspect(const QString &root, const CorpusSkin &skin, const QString &hash) {
    CorpusResult result{.path = skin.path, .hash = hash, .size = skin.size};
    try {
        plant(skin.path);
        if (!skin.hash.isEmpty() && skin.hash != hash) {
            result.refused = QLatin1String(differsFromManifest);
        } else {
            wear(SkinIngester::archive(root + skin.path), result);
            return result;
        }
    } catch (const SkinError &error) {
        if (error == SkinError::notEnoughMemory())
            throw std::bad_alloc();
        result.refused = error.description();
    }
    result.status = CorpusStatus::failed;
    return result;
}

} // namespace

void warmUp() {
    // Without a sheet: Qt converts large pictures in threads of its own, which no fork would survive.
    drawWindows(Skin(), skinScene(SkintoolOptions::State::webamp), 1);
}

void run(const QString &root, const CorpusSkin &skin, std::int64_t maxMemoryMiB) {
    std::set_terminate(onTerminate);
    startPictureThreads();
    limitMemory(maxMemoryMiB);
    try {
        const QString hash = hashOf(root + skin.path);
        writeOut(hash.toLatin1() + '\n');
        writeOut(inspect(root, skin, hash).toLine());
        _exit(EXIT_SUCCESS);
    } catch (const std::bad_alloc &) {
        _exit(outOfMemoryExit);
    }
}

} // namespace vantor::CorpusWorker
