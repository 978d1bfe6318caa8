#include "AudioCore/Output/SystemOutputDeviceProvider.h"
#include "FirstPaint.h"
#include "Vantor/Model/PlayerModel.h"
#include "Vantor/Windows/MainWindow.h"

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
    Commands commands(model);
    MainWindow window(model, commands);
    const QuitAfterFirstPaint quit(window);
    window.show();
    return QApplication::exec();
}
