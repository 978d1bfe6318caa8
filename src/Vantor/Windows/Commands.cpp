#include "Vantor/Windows/Commands.h"

#include "Vantor/Library/MusicLibrary.h"
#include "Vantor/Model/SkinSwitcher.h"
#include "Vantor/Remote/SpeakersPanel.h"
#include "Vantor/Windows/DialogPlace.h"
#include "Vantor/Windows/FileInfoDialog.h"
#include "Vantor/Windows/JumpToFileDialog.h"
#include "Vantor/Windows/MainMenu.h"
#include "Vantor/Windows/OpenDialogs.h"
#include "Vantor/Windows/PreferencesDialog.h"
#include "Vantor/Windows/SkinnedWindow.h"
#include "Vantor/Windows/SkippedFilesDialog.h"

#include <QActionGroup>
#include <QApplication>
#include <QMenu>
#include <QMessageBox>
#include <QShortcut>

#include <algorithm>

namespace vantor {

namespace {

constexpr double volumeStep = 0.02;
constexpr double seekStep = 5; // seconds

} // namespace

Commands::Commands(PlayerModel &model) : m_model(model) {
    addPlayback();
    addOpening();
    addSkins();
    addVisualisation();
    addWindows();
    for (const auto signal : {&RemoteOutput::selectionChanged, &RemoteOutput::changed})
        connect(&model.remote(), signal, this, &Commands::takeSelection);
    connect(&model, &PlayerModel::streamChanged, this, &Commands::takeSelection);
    takeSelection();
}

// What is about files, is so only where files play.
void Commands::takeSelection() {
    for (const Id id : {Id::jumpToFile, Id::fileInfo})
        action(id).setEnabled(!m_model.remote().isSelected());
    const bool hasFavorites = m_model.remote().isAvailable() &&
                              m_model.remote().capabilities().testFlag(MusicBackendCapability::favorites);
    action(Id::favoriteTrack).setEnabled(hasFavorites);
    action(Id::mute).setEnabled(m_model.isMuted().has_value());
}

void Commands::addTo(SkinnedWindow &window) {
    m_windows.emplace_back(&window);
    for (const auto &[id, action] : m_actions)
        window.addAction(action);
    // Keyboards' own keys, where the desktop leaves them to the window, mean what the desktop means by them.
    const auto bind = [&](Qt::Key key, void (Commands::*run)()) {
        auto *const shortcut = new QShortcut(key, &window);
        shortcut->setAutoRepeat(false);
        connect(shortcut, &QShortcut::activated, this, run);
    };
    bind(Qt::Key_MediaPlay, &Commands::togglePlayPause);
    bind(Qt::Key_MediaTogglePlayPause, &Commands::togglePlayPause);
    bind(Qt::Key_MediaPause, &Commands::pause);
}

SkinnedWindow *Commands::activeWindow() const {
    const auto active = std::ranges::find_if(
        m_windows, [](const QPointer<SkinnedWindow> &window) { return window && window->isActiveWindow(); });
    if (active != m_windows.end())
        return *active;
    return mainWindow();
}

SkinnedWindow *Commands::mainWindow() const {
    return m_windows.empty() ? nullptr : m_windows.front().data();
}

QList<QRect> Commands::shownFrames() const {
    QList<QRect> frames;
    for (const QPointer<SkinnedWindow> &window : m_windows) {
        if (window && window->isVisible() && !window->isMinimized())
            frames.append(window->frameGeometry());
    }
    return frames;
}

QAction &Commands::action(Id id) {
    QAction &action = *m_actions.at(id);
    if (const auto isOn = m_checks.find(id); isOn != m_checks.end())
        action.setChecked(isOn->second());
    if (id == Id::skippedFiles)
        action.setEnabled(!m_model.imports().skippedFiles().empty());
    return action;
}

void Commands::add(Id id, const QString &text, const QList<QKeySequence> &shortcuts,
                   const std::function<void()> &run) {
    auto *action = new QAction(text, this);
    action->setShortcuts(shortcuts);
    action->setAutoRepeat(false);
    connect(action, &QAction::triggered, this, run);
    m_actions.emplace(id, action);
}

void Commands::addCheck(Id id, const QString &text, const QList<QKeySequence> &shortcuts,
                        const std::function<bool()> &isOn, const std::function<void()> &run) {
    add(id, text, shortcuts, [this, id, run] {
        run();
        (void)action(id); // the menu has ticked it by itself, whatever came of it
    });
    action(id).setCheckable(true);
    m_checks.emplace(id, isOn);
}

void Commands::oneOf(std::initializer_list<Id> ids) {
    auto *group = new QActionGroup(this);
    for (const Id id : ids)
        group->addAction(&action(id));
}

void Commands::addPlayback() {
    const auto send = [this](Id id, const QString &text, const QList<QKeySequence> &keys,
                             const TransportCommand &command) {
        add(id, text, keys, [this, command] { m_model.transport(command); });
    };
    send(Id::previous, tr("Previous"), {Qt::Key_Z, Qt::Key_MediaPrevious}, TransportCommand::previous());
    add(Id::play, tr("Play"), {Qt::Key_X}, [this] {
        const PlaybackView view = m_model.target().view();
        if (m_model.player().queue().count() == 0 && !m_model.remote().isSelected())
            OpenDialogs::openFiles(m_model, activeWindow());
        else if (view.state == PlaybackState::playing && !m_model.showsStream())
            m_model.transport(TransportCommand::seek(0));
        else
            m_model.transport(TransportCommand::play());
    });
    add(Id::pause, tr("Pause"), {Qt::Key_C, Qt::Key_Space}, [this] {
        if (m_model.target().view().state != PlaybackState::stopped)
            m_model.transport(TransportCommand::togglePlayPause());
    });
    send(Id::stop, tr("Stop"), {Qt::Key_V, Qt::Key_MediaStop}, TransportCommand::stop());
    send(Id::next, tr("Next"), {Qt::Key_B, Qt::Key_MediaNext}, TransportCommand::next());
    add(Id::volumeUp, tr("Volume Up"), {Qt::Key_Up}, [this] { m_model.changeVolume(volumeStep); });
    add(Id::volumeDown, tr("Volume Down"), {Qt::Key_Down}, [this] { m_model.changeVolume(-volumeStep); });
    add(Id::seekBack, tr("Back 5 Seconds"), {Qt::Key_Left}, [this] { m_model.seekBy(-seekStep); });
    add(Id::seekForward, tr("Forward 5 Seconds"), {Qt::Key_Right}, [this] { m_model.seekBy(seekStep); });
    for (const Id id : {Id::volumeUp, Id::volumeDown, Id::seekBack, Id::seekForward})
        action(id).setAutoRepeat(true);
    addCheck(
        Id::shuffle, tr("Shuffle"), {Qt::Key_S}, [this] { return m_model.target().view().isShuffled; },
        [this] { m_model.toggleShuffle(); });
    addCheck(
        Id::repeat, tr("Repeat"), {Qt::Key_R},
        [this] { return m_model.target().view().repeat != RepeatMode::off; },
        [this] { m_model.toggleRepeat(); });
    add(Id::speakers, tr("Speakers…"), {Qt::ALT | Qt::Key_O}, [this] { showSpeakers(); });
    addCheck(
        Id::mute, tr("Mute"), {Qt::Key_VolumeMute}, [this] { return m_model.isMuted().value_or(false); },
        [this] { m_model.setMuted(!m_model.isMuted().value_or(false)); });
    add(Id::favoriteTrack, tr("Add to Favourites"), {}, [this] { m_model.remote().favoriteCurrent(); });
}

// The desktop

void Commands::play() {
    const PlaybackView view = m_model.target().view();
    if (!view.isEmpty && !view.wantsToPlay)
        trigger(Id::play);
}

void Commands::pause() {
    if (m_model.target().view().state == PlaybackState::playing)
        trigger(Id::pause);
    else // what is loading, which the command would set going again the second time
        m_model.transport(TransportCommand::pause());
}

void Commands::togglePlayPause() {
    if (m_model.target().view().state == PlaybackState::stopped)
        play();
    else
        trigger(Id::pause);
}

void Commands::seek(double seconds) {
    m_model.transport(TransportCommand::seek(seconds));
}

void Commands::addOpening() {
    add(Id::openFiles, tr("Open Files…"), {Qt::Key_L},
        [this] { OpenDialogs::openFiles(m_model, activeWindow()); });
    add(Id::openFolder, tr("Open Folder…"), {Qt::SHIFT | Qt::Key_L},
        [this] { OpenDialogs::openFolder(m_model, activeWindow()); });
    add(Id::openAddress, tr("Open Address…"), {Qt::CTRL | Qt::Key_L},
        [this] { OpenDialogs::openAddress(m_model, activeWindow()); });
    add(Id::jumpToFile, tr("Jump to File…"), {Qt::Key_J},
        [this] { (new JumpToFileDialog(m_model, activeWindow()))->open(); });
    add(Id::fileInfo, tr("File Info…"), {Qt::ALT | Qt::Key_3}, [this] { showFileInfo(); });
    add(Id::skippedFiles, tr("Skipped Files…"), {},
        [this] { (new SkippedFilesDialog(m_model.imports().skippedFiles(), activeWindow()))->show(); });
}

void Commands::addSkins() {
    add(Id::loadSkin, tr("Load Skin…"), {Qt::ALT | Qt::Key_S},
        [this] { OpenDialogs::loadSkin(m_model, activeWindow()); });
    addCheck(
        Id::defaultSkin, tr("Default Skin"), {}, [this] { return m_model.skinUrl().isEmpty(); },
        [this] { m_model.wearDefaultSkin(); });
    add(Id::skinBrowser, tr("Skin Browser…"), {Qt::ALT | Qt::Key_B}, [this] { m_browseSkins(); });
    const auto step = [this](Id id, const QString &text, const QKeySequence &key, SkinSwitcher::Step where) {
        add(id, text, {key}, [this, where] { m_skins->step(where); });
    };
    step(Id::nextSkin, tr("Next Skin"), Qt::ALT | Qt::Key_Right, SkinSwitcher::Step::next);
    step(Id::previousSkin, tr("Previous Skin"), Qt::ALT | Qt::Key_Left, SkinSwitcher::Step::previous);
    step(Id::randomSkin, tr("Random Skin"), Qt::ALT | Qt::Key_R, SkinSwitcher::Step::random);
    setSkins(nullptr, {});
}

void Commands::setSkins(SkinSwitcher *skins, const std::function<void()> &browse) {
    m_skins = skins;
    m_browseSkins = browse;
    for (const Id id : {Id::skinBrowser, Id::nextSkin, Id::previousSkin, Id::randomSkin})
        action(id).setEnabled(skins != nullptr);
}

void Commands::wearSkin(const SkinRecord &skin) {
    if (m_skins)
        m_skins->wear(skin);
}

void Commands::addVisualisation() {
    Visualizer &visualizer = m_model.visualizer();
    const auto mode = [&](Id id, const QString &text, VisualizerMode shown) {
        addCheck(
            id, text, {}, [&visualizer, shown] { return visualizer.mode() == shown; },
            [&visualizer, shown] { visualizer.setMode(shown); });
    };
    mode(Id::spectrum, tr("Spectrum Analyser"), VisualizerMode::spectrum);
    mode(Id::oscilloscope, tr("Oscilloscope"), VisualizerMode::oscilloscope);
    mode(Id::visualizerOff, tr("Off"), VisualizerMode::off);
    const auto bars = [&](Id id, const QString &text, bool thin) {
        addCheck(
            id, text, {}, [&visualizer, thin] { return visualizer.hasThinBars() == thin; },
            [&visualizer, thin] { visualizer.setThinBars(thin); });
    };
    bars(Id::wideBars, tr("Spectrum as Bars"), false);
    bars(Id::thinBars, tr("Spectrum as Thin Lines"), true);
    addCheck(
        Id::peaks, tr("Spectrum with Peaks"), {}, [&visualizer] { return visualizer.showsPeaks(); },
        [&visualizer] { visualizer.setShowsPeaks(!visualizer.showsPeaks()); });
    const auto scope = [&](Id id, const QString &text, ScopeStyle style) {
        addCheck(
            id, text, {}, [&visualizer, style] { return visualizer.scopeStyle() == style; },
            [&visualizer, style] { visualizer.setScopeStyle(style); });
    };
    scope(Id::scopeDots, tr("Oscilloscope as Dots"), ScopeStyle::dots);
    scope(Id::scopeLines, tr("Oscilloscope as Lines"), ScopeStyle::lines);
    scope(Id::scopeSolid, tr("Oscilloscope, Solid"), ScopeStyle::solid);
    oneOf({Id::spectrum, Id::oscilloscope, Id::visualizerOff});
    oneOf({Id::wideBars, Id::thinBars});
    oneOf({Id::scopeDots, Id::scopeLines, Id::scopeSolid});
}

void Commands::addWindows() {
    WindowState &state = m_model.windows();
    const auto time = [&](Id id, const QString &text, TimeMode mode) {
        addCheck(
            id, text, {}, [this, mode] { return m_model.timeMode() == mode; },
            [this, mode] { m_model.setTimeMode(mode); });
    };
    time(Id::timeElapsed, tr("Time Elapsed"), TimeMode::elapsed);
    time(Id::timeRemaining, tr("Time Remaining"), TimeMode::remaining);
    oneOf({Id::timeElapsed, Id::timeRemaining});
    add(Id::toggleTime, tr("Toggle Time Display"), {Qt::CTRL | Qt::Key_T}, [this] {
        m_model.setTimeMode(m_model.timeMode() == TimeMode::elapsed ? TimeMode::remaining
                                                                    : TimeMode::elapsed);
    });
    addCheck(
        Id::doubleSize, tr("Double Size"), {Qt::CTRL | Qt::Key_D}, [&state] { return state.isDoubleSize(); },
        [&state] { state.setDoubleSize(!state.isDoubleSize()); });
    addCheck(
        Id::alwaysOnTop, tr("Always on Top"), {Qt::CTRL | Qt::Key_A},
        [&state] { return state.isAlwaysOnTop(); },
        [&state] { state.setAlwaysOnTop(!state.isAlwaysOnTop()); });
    addCheck(
        Id::shade, tr("Window Shade"), {Qt::CTRL | Qt::Key_W},
        [this] { return activeWindow() && activeWindow()->isShaded(); },
        [this, &state] {
            if (const SkinnedWindow *const active = activeWindow())
                state.setShaded(active->windowKind(), !active->isShaded());
        });
    const auto toggle = [&](Id id, const QString &text, const QKeySequence &key, WindowKind kind) {
        addCheck(
            id, text, {key}, [&state, kind] { return state.isOpen(kind); },
            [&state, kind] { state.setOpen(kind, !state.isOpen(kind)); });
    };
    toggle(Id::mainWindow, tr("Main Window"), Qt::ALT | Qt::Key_W, WindowKind::main);
    toggle(Id::equalizer, tr("Equalizer"), Qt::ALT | Qt::Key_G, WindowKind::equalizer);
    toggle(Id::playlist, tr("Playlist"), Qt::ALT | Qt::Key_E, WindowKind::playlist);
    add(Id::minimize, tr("Minimise"), {Qt::CTRL | Qt::Key_M}, [this] {
        SkinnedWindow *const main = mainWindow(); // takes the others along
        SkinnedWindow *const window = main && main->isVisible() ? main : activeWindow();
        if (window && window->isVisible())
            window->showMinimized();
    });
    add(Id::library, tr("Library…"), {Qt::ALT | Qt::Key_L}, [this] { m_library->showWindow(); });
    setLibrary(nullptr);
    add(Id::preferences, tr("Preferences…"), {Qt::CTRL | Qt::Key_P}, [this] { showPreferences(); });
    add(Id::about, tr("About Vantor"), {}, [this] { showAbout(); });
    add(Id::quit, tr("Exit"), {Qt::CTRL | Qt::Key_Q, Qt::ALT | Qt::Key_F4}, &SkinnedWindow::quitProgram);
}

void Commands::addSubmenu(const QString &title, SkinnedWindow &window,
                          const std::function<void(QMenu &)> &fill) {
    m_submenus.push_back({title, &window, fill});
}

void Commands::fillSubmenus(QMenu &menu) const {
    for (const Submenu &submenu : m_submenus) {
        if (submenu.window)
            submenu.fill(*menu.addMenu(submenu.title));
    }
}

void Commands::popUpMainMenu(QPoint at) {
    auto *menu = new QMenu(activeWindow());
    menu->setAttribute(Qt::WA_DeleteOnClose);
    MainMenu::fill(*menu, *this, m_model);
    menu->popup(at);
}

void Commands::popUpVisualizerMenu(QPoint at) {
    auto *menu = new QMenu(activeWindow());
    menu->setAttribute(Qt::WA_DeleteOnClose);
    MainMenu::fillVisualisation(*menu, *this);
    menu->popup(at);
}

void Commands::showFileInfo() {
    if (const std::optional<Track> track = m_model.player().queue().current())
        (new FileInfoDialog(TrackInfo::fromTrack(*track, m_model.player().currentFormat()), activeWindow()))
            ->show();
    else
        m_model.showNotice(tr("No file is loaded"));
}

void Commands::setLibrary(MusicLibrary *library) {
    m_library = library;
    action(Id::library).setEnabled(library != nullptr);
    if (library)
        connect(library, &MusicLibrary::settingsAsked, this,
                [this](PreferencesPage page) { showPreferences(page); });
}

void Commands::showPreferences(std::optional<PreferencesPage> page) {
    if (!m_preferences) {
        m_preferences = new PreferencesDialog(m_model, m_library, m_speaker, activeWindow());
        DialogPlace::beside(*m_preferences, shownFrames());
    }
    if (page)
        m_preferences->showPage(*page);
    m_preferences->show();
    m_preferences->raise();
    m_preferences->activateWindow();
}

void Commands::showSpeakers() {
    if (!m_speakers) {
        m_speakers = new SpeakersDialog(m_model.remote(), activeWindow());
        DialogPlace::beside(*m_speakers, shownFrames());
    }
    m_speakers->show();
    m_speakers->raise();
    m_speakers->activateWindow();
}

void Commands::showAbout() {
    auto *box = new QMessageBox(activeWindow());
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowTitle(tr("About Vantor"));
    box->setIconPixmap(QApplication::windowIcon().pixmap(64));
    box->setText(tr("<b>Vantor %1</b><br>A music player that wears classic skins.<br>MIT licence.")
                     .arg(QApplication::applicationVersion()));
    box->open();
}

} // namespace vantor
