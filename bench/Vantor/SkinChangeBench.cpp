#include "AudioCore/Output/SystemOutputDeviceProvider.h"
#include "Vantor/Model/PlayerModel.h"
#include "Vantor/Windows/SkinnedWindows.h"

#include <QApplication>
#include <QFile>
#include <QSet>
#include <QSettings>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

using namespace vantor;

namespace {

/// Notes which windows have painted themselves.
class PaintWatch : public QObject {
  public:
    bool eventFilter(QObject *watched, QEvent *event) override {
        if (event->type() == QEvent::Paint && qobject_cast<SkinnedWindow *>(watched))
            painted.insert(watched);
        return false;
    }
    QSet<QObject *> painted;
};

} // namespace

// From the command that wears a skin archive until all three windows have painted in it, the archive being
// read anew each time. Needs a display (xvfb-run will do).
static void wearASkin(benchmark::State &state) {
    int argc = 0;
    QApplication application(argc, nullptr);
    const QTemporaryDir folder;
    const QString skin = folder.filePath(QStringLiteral("skin.wsz"));
    QFile::copy(QStringLiteral(":/skins/default.wsz"), skin);
    QSettings settings(folder.filePath(QStringLiteral("settings.ini")), QSettings::IniFormat);
    Player player(std::make_unique<FileTrackResolver>(), std::make_unique<SystemOutputDeviceProvider>());
    PlayerModel model(player, settings);
    model.windows().setDoubleSize(state.range(0) == 2);
    for (const WindowKind kind : {WindowKind::equalizer, WindowKind::playlist})
        model.windows().setOpen(kind, true);
    SkinnedWindows windows(model, settings);
    windows.show();
    PaintWatch watch;
    application.installEventFilter(&watch);
    while (watch.painted.size() < 3)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    bool changed = false;
    QObject::connect(&model, &PlayerModel::skinChanged, &watch, [&] {
        changed = true;
        watch.painted.clear();
    });
    for (auto _ : state) {
        changed = false;
        model.wear(QUrl::fromLocalFile(skin));
        while (!changed || watch.painted.size() < 3)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}
BENCHMARK(wearASkin)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime();
