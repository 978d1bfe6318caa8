#pragma once

#include "Vantor/Model/PlayerModel.h"

#include <QAction>
#include <QObject>

#include <map>

class QMenu;
class QWidget;

namespace vantor {

/// Every command of the program, once: the window's buttons trigger them, the menu lists them and their
/// shortcuts work in the window that they were added to. Main thread.
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

    /// `window`: receives the shortcuts and is the parent of dialogs. Both are borrowed and outlive this
    /// object.
    Commands(PlayerModel &model, QWidget &window);

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
    void openFiles();
    void openFolder();
    void loadSkin();
    void showFileInfo();
    void showAbout();

    PlayerModel &m_model;
    QWidget &m_window;
    std::map<Id, QAction *> m_actions; ///< owned by this object
};

} // namespace vantor
