#pragma once

#include "AudioCore/NowPlaying/NowPlayingCommandTarget.h"
#include "Vantor/Model/PlayerModel.h"
#include "Vantor/Preferences/PreferencesPage.h"

#include <QAction>
#include <QObject>
#include <QPointer>

#include <map>
#include <optional>
#include <vector>

class QMenu;

namespace vantor {

class MusicLibrary;
class NetworkSpeaker;
class PreferencesDialog;
class SkinSwitcher;
class SkinnedWindow;
class SpeakersDialog;
struct SkinRecord;

/// Every command of the program, once: buttons trigger them, menus list them and their shortcuts work in
/// every skinned window, but in no dialog. What the desktop commands triggers them too, but for the desktop
/// no dialog opens and what plays is not begun again; a pause of what is still loading and a place in the
/// track go past them, because no command means them. What plays is commanded where the user has selected it
/// to play. Main thread.
class Commands : public QObject, public NowPlayingCommandTarget {
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
        openAddress,
        jumpToFile,
        volumeUp,
        volumeDown,
        seekBack,
        seekForward,
        shuffle,
        repeat,
        speakers,
        mute,
        favoriteTrack,
        loadSkin,
        defaultSkin,
        skinBrowser,
        nextSkin,
        previousSkin,
        randomSkin,
        timeElapsed,
        timeRemaining,
        toggleTime,
        spectrum,
        oscilloscope,
        visualizerOff,
        wideBars,
        thinBars,
        peaks,
        scopeDots,
        scopeLines,
        scopeSolid,
        doubleSize,
        shade,
        alwaysOnTop,
        fileInfo,
        skippedFiles,
        mainWindow,
        equalizer,
        playlist,
        minimize,
        library,
        preferences,
        about,
        quit,
    };

    /// The model is borrowed.
    explicit Commands(PlayerModel &model);

    /// The window's keys trigger the commands from now on; it takes itself off when it dies. The main window
    /// comes first.
    void addTo(SkinnedWindow &window);

    /// What works through the index of the skins folder, from when there is one until nullptr is set: the
    /// steps, and what opens the browser.
    void setSkins(SkinSwitcher *skins, const std::function<void()> &browse);
    [[nodiscard]] const SkinSwitcher *skins() const { return m_skins; }
    void wearSkin(const SkinRecord &skin);

    /// Whose window the library command opens; borrowed, none for no such command.
    void setLibrary(MusicLibrary *library);
    /// This computer as a speaker, which the preferences show.
    void setSpeaker(NetworkSpeaker *speaker) { m_speaker = speaker; }

    /// Ticked and enabled as it is now.
    [[nodiscard]] QAction &action(Id id);
    void trigger(Id id) { action(id).trigger(); }

    // What the desktop commands.
    void play() override;
    void pause() override;
    void togglePlayPause() override;
    void stop() override { trigger(Id::stop); }
    void next() override { trigger(Id::next); }
    void previous() override { trigger(Id::previous); }
    void seek(double seconds) override;

    /// The skinned window that the user works in, else the main one; over it dialogs open.
    [[nodiscard]] SkinnedWindow *activeWindow() const;

    /// Of the skinned windows, on the screen.
    [[nodiscard]] QList<QRect> shownFrames() const;

    /// Gives the main menu a submenu of what belongs to one window: `fill` is called each time the menu
    /// opens, as long as the window lives.
    void addSubmenu(const QString &title, SkinnedWindow &window, const std::function<void(QMenu &)> &fill);
    /// Fills a menu with those submenus, in the order of their windows.
    void fillSubmenus(QMenu &menu) const;

    /// Without a page, as it was left.
    void showPreferences(std::optional<PreferencesPage> page = {});
    /// Opens at a point of the screen and returns at once.
    void popUpMainMenu(QPoint at);
    void popUpVisualizerMenu(QPoint at);

  private:
    void add(Id id, const QString &text, const QList<QKeySequence> &shortcuts,
             const std::function<void()> &run);
    /// A command that is on or off.
    void addCheck(Id id, const QString &text, const QList<QKeySequence> &shortcuts,
                  const std::function<bool()> &isOn, const std::function<void()> &run);
    /// Of these, each of which is on or off, one is on.
    void oneOf(std::initializer_list<Id> ids);
    void addPlayback();
    void addOpening();
    void addVisualisation();
    void addSkins();
    void addWindows();
    /// None before it is added.
    [[nodiscard]] SkinnedWindow *mainWindow() const;
    void showFileInfo();
    void showSpeakers();
    void showAbout();
    void takeSelection();

    struct Submenu {
        QString title;
        QPointer<SkinnedWindow> window;
        std::function<void(QMenu &)> fill;
    };

    PlayerModel &m_model;
    MusicLibrary *m_library = nullptr;
    NetworkSpeaker *m_speaker = nullptr;
    SkinSwitcher *m_skins = nullptr;
    std::function<void()> m_browseSkins;
    std::vector<QPointer<SkinnedWindow>> m_windows;
    std::vector<Submenu> m_submenus;
    QPointer<PreferencesDialog> m_preferences; ///< while it is open
    QPointer<SpeakersDialog> m_speakers;       ///< the same
    std::map<Id, QAction *> m_actions;         ///< owned by this object
    std::map<Id, std::function<bool()>> m_checks;
};

} // namespace vantor
