#pragma once

#include "Vantor/Model/PlayerModel.h"

#include <QAction>
#include <QObject>
#include <QPointer>

#include <map>
#include <vector>

class QMenu;

namespace vantor {

class SkinnedWindow;

/// Every command of the program, once: buttons trigger them, menus list them and their shortcuts work in
/// every skinned window, but in no dialog. Main thread.
class Commands : public QObject {
    Q_OBJECT

  public:
    enum class Id {
        previous,
        play,
        pause,
        stop,
        next,
        openFiles,
        openFolder,
        jumpToFile,
        volumeUp,
        volumeDown,
        seekBack,
        seekForward,
        shuffle,
        repeat,
        loadSkin,
        defaultSkin,
        timeElapsed,
        timeRemaining,
        toggleTime,
        spectrum,
        oscilloscope,
        visualizerOff,
        doubleSize,
        shade,
        alwaysOnTop,
        fileInfo,
        equalizer,
        playlist,
        minimize,
        about,
        quit,
    };

    /// The model is borrowed.
    explicit Commands(PlayerModel &model);

    /// The window's keys trigger the commands from now on; it takes itself off when it dies. The main window
    /// comes first.
    void addTo(SkinnedWindow &window);

    [[nodiscard]] QAction &action(Id id) { return *m_actions.at(id); }
    void trigger(Id id) { action(id).trigger(); }

    /// Opens at a point of the screen and returns at once.
    void popUpMainMenu(QPoint at);
    void popUpVisualizerMenu(QPoint at);

  private:
    void add(Id id, const QString &text, const QList<QKeySequence> &shortcuts,
             const std::function<void()> &run);
    void addPlayback();
    void addOptions();
    void addWindows();
    void fillMainMenu(QMenu &menu);
    void fillVisualizerMenu(QMenu &menu);
    void updateChecks();
    /// The skinned window that the user works in.
    [[nodiscard]] SkinnedWindow *window() const;
    void toggleWindow(WindowKind kind, const QString &missing);
    void openFiles();
    void openFolder();
    void jumpToFile();
    void loadSkin();
    void showFileInfo();
    void showAbout();

    PlayerModel &m_model;
    std::vector<QPointer<SkinnedWindow>> m_windows;
    std::map<Id, QAction *> m_actions; ///< owned by this object
};

} // namespace vantor
