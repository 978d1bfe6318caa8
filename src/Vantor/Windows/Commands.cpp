#include "Vantor/Windows/Commands.h"

#include "LocalPlayback/Loading/TrackLoader.h"
#include "LocalPlayback/Playlists/PlaylistFile.h"
#include "Vantor/Windows/FileInfoDialog.h"
#include "Vantor/Windows/JumpToFileDialog.h"
#include "Vantor/Windows/SkinnedWindow.h"

#include <QActionGroup>
#include <QApplication>
#include <QFileDialog>
#include <QMenu>
#include <QMessageBox>

#include <algorithm>

namespace vantor {

namespace {

constexpr double volumeStep = 0.02;
constexpr double seekStep = 5; // seconds

void openDialog(QFileDialog &dialog) {
    dialog.setAttribute(Qt::WA_DeleteOnClose);
    dialog.open();
}

} // namespace

Commands::Commands(PlayerModel &model) : m_model(model) {
    addPlayback();
    addOptions();
    addWindows();
    connect(&model, &PlayerModel::sceneChanged, this, &Commands::updateChecks);
    connect(&model.windows(), &WindowState::changed, this, &Commands::updateChecks);
    updateChecks();
}

void Commands::addTo(SkinnedWindow &window) {
    m_windows.emplace_back(&window);
    for (const auto &[id, action] : m_actions)
        window.addAction(action);
}

SkinnedWindow *Commands::window() const {
    const auto active = std::ranges::find_if(
        m_windows, [](const QPointer<SkinnedWindow> &window) { return window && window->isActiveWindow(); });
    if (active != m_windows.end())
        return *active;
    return m_windows.empty() ? nullptr : m_windows.front().data();
}

void Commands::toggleWindow(WindowKind kind, const QString &missing) {
    const bool exists = std::ranges::any_of(
        m_windows, [kind](const auto &window) { return window && window->windowKind() == kind; });
    if (exists)
        m_model.windows().setOpen(kind, !m_model.windows().isOpen(kind));
    else
        m_model.showNotice(missing);
}

void Commands::add(Id id, const QString &text, const QList<QKeySequence> &shortcuts,
                   const std::function<void()> &run) {
    auto *action = new QAction(text, this);
    action->setShortcuts(shortcuts);
    action->setAutoRepeat(false);
    connect(action, &QAction::triggered, this, run);
    m_actions.emplace(id, action);
}

void Commands::addPlayback() {
    Player &player = m_model.player();
    add(Id::previous, tr("Previous"), {Qt::Key_Z}, [&player] { player.previous(); });
    add(Id::play, tr("Play"), {Qt::Key_X, Qt::Key_MediaPlay}, [this, &player] {
        if (player.queue().count() == 0)
            openFiles();
        else if (player.state() == PlaybackState::playing)
            player.seek(0);
        else
            player.play();
    });
    add(Id::pause, tr("Pause"), {Qt::Key_C, Qt::Key_Space}, [&player] { player.togglePause(); });
    add(Id::stop, tr("Stop"), {Qt::Key_V, Qt::Key_MediaStop}, [&player] { player.stop(); });
    add(Id::next, tr("Next"), {Qt::Key_B}, [&player] { player.next(); });
    add(Id::volumeUp, tr("Volume Up"), {Qt::Key_Up}, [this] { m_model.changeVolume(volumeStep); });
    add(Id::volumeDown, tr("Volume Down"), {Qt::Key_Down}, [this] { m_model.changeVolume(-volumeStep); });
    add(Id::seekBack, tr("Back 5 Seconds"), {Qt::Key_Left}, [this] { m_model.seekBy(-seekStep); });
    add(Id::seekForward, tr("Forward 5 Seconds"), {Qt::Key_Right}, [this] { m_model.seekBy(seekStep); });
    for (const Id id : {Id::volumeUp, Id::volumeDown, Id::seekBack, Id::seekForward})
        action(id).setAutoRepeat(true);
    add(Id::shuffle, tr("Shuffle"), {Qt::Key_S}, [this] { m_model.toggleShuffle(); });
    add(Id::repeat, tr("Repeat"), {Qt::Key_R}, [this] { m_model.toggleRepeat(); });
}

void Commands::addOptions() {
    add(Id::openFiles, tr("Open Files…"), {Qt::Key_L}, [this] { openFiles(); });
    add(Id::openFolder, tr("Open Folder…"), {Qt::SHIFT | Qt::Key_L}, [this] { openFolder(); });
    add(Id::jumpToFile, tr("Jump to File…"), {Qt::Key_J}, [this] { jumpToFile(); });
    add(Id::loadSkin, tr("Load Skin…"), {Qt::ALT | Qt::Key_S}, [this] { loadSkin(); });
    add(Id::defaultSkin, tr("Default Skin"), {}, [this] { m_model.wearDefaultSkin(); });
    add(Id::timeElapsed, tr("Time Elapsed"), {}, [this] { m_model.setTimeMode(TimeMode::elapsed); });
    add(Id::timeRemaining, tr("Time Remaining"), {}, [this] { m_model.setTimeMode(TimeMode::remaining); });
    add(Id::toggleTime, tr("Toggle Time Display"), {Qt::CTRL | Qt::Key_T}, [this] {
        m_model.setTimeMode(m_model.timeMode() == TimeMode::elapsed ? TimeMode::remaining
                                                                    : TimeMode::elapsed);
    });
    add(Id::spectrum, tr("Spectrum Analyser"), {},
        [this] { m_model.setVisualizerMode(VisualizerMode::spectrum); });
    add(Id::oscilloscope, tr("Oscilloscope"), {},
        [this] { m_model.setVisualizerMode(VisualizerMode::oscilloscope); });
    add(Id::visualizerOff, tr("Off"), {}, [this] { m_model.setVisualizerMode(VisualizerMode::off); });
    add(Id::fileInfo, tr("File Info…"), {Qt::ALT | Qt::Key_3}, [this] { showFileInfo(); });
}

void Commands::addWindows() {
    WindowState &state = m_model.windows();
    add(Id::doubleSize, tr("Double Size"), {Qt::CTRL | Qt::Key_D},
        [&state] { state.setDoubleSize(!state.isDoubleSize()); });
    add(Id::shade, tr("Window Shade"), {Qt::CTRL | Qt::Key_W}, [this, &state] {
        if (const SkinnedWindow *const active = window())
            state.setShaded(active->windowKind(), !active->isShaded());
    });
    add(Id::alwaysOnTop, tr("Always on Top"), {Qt::CTRL | Qt::Key_A},
        [&state] { state.setAlwaysOnTop(!state.isAlwaysOnTop()); });
    add(Id::equalizer, tr("Equalizer"), {Qt::ALT | Qt::Key_G},
        [this] { toggleWindow(WindowKind::equalizer, tr("No equalizer window yet")); });
    add(Id::playlist, tr("Playlist"), {Qt::ALT | Qt::Key_E},
        [this] { toggleWindow(WindowKind::playlist, tr("No playlist window yet")); });
    add(Id::minimize, tr("Minimise"), {Qt::CTRL | Qt::Key_M}, [this] {
        if (!m_windows.empty() && m_windows.front())
            m_windows.front()->showMinimized();
    });
    add(Id::about, tr("About Vantor"), {}, [this] { showAbout(); });
    add(Id::quit, tr("Quit"), {Qt::CTRL | Qt::Key_Q, Qt::ALT | Qt::Key_F4}, [] { QApplication::quit(); });

    for (const Id id :
         {Id::shuffle, Id::repeat, Id::timeElapsed, Id::timeRemaining, Id::spectrum, Id::oscilloscope,
          Id::visualizerOff, Id::doubleSize, Id::shade, Id::alwaysOnTop, Id::equalizer, Id::playlist})
        action(id).setCheckable(true);
}

void Commands::updateChecks() {
    const WindowState &windows = m_model.windows();
    const auto check = [this](Id id, bool on) { action(id).setChecked(on); };
    check(Id::shuffle, m_model.player().isShuffled());
    check(Id::repeat, m_model.player().repeatMode() != RepeatMode::off);
    check(Id::timeElapsed, m_model.timeMode() == TimeMode::elapsed);
    check(Id::timeRemaining, m_model.timeMode() == TimeMode::remaining);
    check(Id::spectrum, m_model.visualizerMode() == VisualizerMode::spectrum);
    check(Id::oscilloscope, m_model.visualizerMode() == VisualizerMode::oscilloscope);
    check(Id::visualizerOff, m_model.visualizerMode() == VisualizerMode::off);
    check(Id::doubleSize, windows.isDoubleSize());
    check(Id::shade, windows.isShaded(WindowKind::main));
    check(Id::alwaysOnTop, windows.isAlwaysOnTop());
    check(Id::equalizer, windows.isOpen(WindowKind::equalizer));
    check(Id::playlist, windows.isOpen(WindowKind::playlist));
}

void Commands::popUpMainMenu(QPoint at) {
    auto *menu = new QMenu(window());
    menu->setAttribute(Qt::WA_DeleteOnClose);
    fillMainMenu(*menu);
    menu->popup(at);
}

void Commands::popUpVisualizerMenu(QPoint at) {
    auto *menu = new QMenu(window());
    menu->setAttribute(Qt::WA_DeleteOnClose);
    fillVisualizerMenu(*menu);
    menu->popup(at);
}

void Commands::fillVisualizerMenu(QMenu &menu) {
    for (const Id id : {Id::spectrum, Id::oscilloscope, Id::visualizerOff})
        menu.addAction(&action(id));
}

void Commands::fillMainMenu(QMenu &menu) {
    const auto addAll = [this](QMenu &to, std::initializer_list<Id> ids) {
        for (const Id id : ids)
            to.addAction(&action(id));
    };
    addAll(menu, {Id::openFiles, Id::openFolder, Id::fileInfo});
    menu.addSeparator();
    QMenu *playback = menu.addMenu(tr("Playback"));
    addAll(*playback, {Id::previous, Id::play, Id::pause, Id::stop, Id::next});
    playback->addSeparator();
    addAll(*playback, {Id::seekBack, Id::seekForward, Id::volumeUp, Id::volumeDown});
    playback->addSeparator();
    addAll(*playback, {Id::jumpToFile, Id::shuffle, Id::repeat});
    QMenu *skins = menu.addMenu(tr("Skins"));
    addAll(*skins, {Id::loadSkin, Id::defaultSkin});
    fillVisualizerMenu(*menu.addMenu(tr("Visualizer")));
    QMenu *options = menu.addMenu(tr("Options"));
    addAll(*options, {Id::timeElapsed, Id::timeRemaining});
    options->addSeparator();
    addAll(*options, {Id::doubleSize, Id::shade, Id::alwaysOnTop});
    menu.addSeparator();
    addAll(menu, {Id::about, Id::minimize, Id::quit});
}

void Commands::openFiles() {
    auto *dialog = new QFileDialog(window(), tr("Open Files"));
    dialog->setFileMode(QFileDialog::ExistingFiles);
    dialog->setNameFilters(
        {tr("Audio, playlists and skins (%1 *.wsz)")
             .arg((TrackLoader::audioPatterns() + PlaylistFile::patterns()).join(QLatin1Char(' '))),
         tr("All files (*)")});
    connect(dialog, &QFileDialog::filesSelected, this,
            [this, dialog] { m_model.open(dialog->selectedUrls()); });
    openDialog(*dialog);
}

void Commands::openFolder() {
    auto *dialog = new QFileDialog(window(), tr("Open Folder"));
    dialog->setFileMode(QFileDialog::Directory);
    connect(dialog, &QFileDialog::fileSelected, this,
            [this, dialog] { m_model.open(dialog->selectedUrls()); });
    openDialog(*dialog);
}

void Commands::jumpToFile() {
    (new JumpToFileDialog(m_model, window()))->open();
}

void Commands::loadSkin() {
    auto *dialog = new QFileDialog(window(), tr("Load Skin"));
    dialog->setFileMode(QFileDialog::ExistingFile);
    dialog->setNameFilters({tr("Skins (*.wsz *.zip)"), tr("All files (*)")});
    connect(dialog, &QFileDialog::fileSelected, this,
            [this](const QString &path) { m_model.wear(QUrl::fromLocalFile(path)); });
    openDialog(*dialog);
}

void Commands::showFileInfo() {
    if (const std::optional<Track> track = m_model.player().queue().current())
        (new FileInfoDialog(TrackInfo::fromTrack(*track, m_model.player().currentFormat()), window()))
            ->show();
    else
        m_model.showNotice(tr("No file is loaded"));
}

void Commands::showAbout() {
    auto *box = new QMessageBox(window());
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowTitle(tr("About Vantor"));
    box->setIconPixmap(QApplication::windowIcon().pixmap(64));
    box->setText(tr("<b>Vantor %1</b><br>A music player that wears classic skins.<br>MIT licence.")
                     .arg(QApplication::applicationVersion()));
    box->open();
}

} // namespace vantor
