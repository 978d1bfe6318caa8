#include "AudioCore/Output/SystemOutputDeviceProvider.h"
#include "FirstPaint.h"
#include "Vantor/Model/PlayerModel.h"
#include "Vantor/Windows/SkinnedWindows.h"

#include <QSettings>
#include <QTemporaryDir>

using namespace vantor;

// The player up to its first painted window, wired as the program does it.
int main(int argc, char **argv) {
    QApplication application(argc, argv);
    const QTemporaryDir folder;
    QSettings settings(folder.filePath(QStringLiteral("settings.ini")), QSettings::IniFormat);
    Player player(std::make_unique<FileTrackResolver>(), std::make_unique<SystemOutputDeviceProvider>());
    PlayerModel model(player, settings);
    SkinnedWindows windows(model, settings);
    const QuitAfterFirstPaint quit(windows.mainWindow());
    windows.show();
    return QApplication::exec();
}
