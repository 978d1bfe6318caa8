#include "Vantor/Windows/PlaylistCommands.h"

#include "LocalPlayback/Playlists/PlaylistFile.h"
#include "MusicBackendKit/MusicBackendError.h"
#include "Vantor/Windows/FileInfoDialog.h"
#include "Vantor/Windows/OpenDialogs.h"
#include "Vantor/Windows/SkinnedWindow.h"

#include <QDesktopServices>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QMenu>

namespace vantor {

namespace {

using Entry = PlaylistMenuEntry;

QString textOf(Entry entry) {
    switch (entry) {
    case Entry::addUrl:
        return PlaylistCommands::tr("Add Address…");
    case Entry::addFolder:
        return PlaylistCommands::tr("Add Folder…");
    case Entry::addFiles:
        return PlaylistCommands::tr("Add Files…");
    case Entry::removeMisc:
        return PlaylistCommands::tr("Remove More");
    case Entry::removeAll:
        return PlaylistCommands::tr("Remove All");
    case Entry::crop:
        return PlaylistCommands::tr("Crop to Selection");
    case Entry::removeSelected:
        return PlaylistCommands::tr("Remove Selected");
    case Entry::invertSelection:
        return PlaylistCommands::tr("Invert Selection");
    case Entry::selectNone:
        return PlaylistCommands::tr("Select None");
    case Entry::selectAll:
        return PlaylistCommands::tr("Select All");
    case Entry::sort:
        return PlaylistCommands::tr("Sort");
    case Entry::fileInfo:
        return PlaylistCommands::tr("File Info…");
    case Entry::miscOptions:
        return PlaylistCommands::tr("Options");
    case Entry::newList:
        return PlaylistCommands::tr("New List");
    case Entry::saveList:
        return PlaylistCommands::tr("Save List…");
    case Entry::loadList:
        return PlaylistCommands::tr("Load List…");
    }
    return {};
}

/// As the window's keys run it; shown in menus only.
QKeySequence keyOf(Entry entry) {
    switch (entry) {
    case Entry::removeSelected:
        return Qt::Key_Delete;
    case Entry::crop:
        return Qt::CTRL | Qt::Key_Delete;
    case Entry::invertSelection:
        return Qt::CTRL | Qt::Key_I;
    case Entry::selectAll:
        return Qt::CTRL | Qt::Key_A;
    case Entry::fileInfo:
        return Qt::ALT | Qt::Key_3;
    default:
        return {};
    }
}

} // namespace

PlaylistCommands::PlaylistCommands(PlaylistModel &playlist, PlayerModel &model, Commands &commands,
                                   QWidget &window)
    : QObject(&window), m_playlist(playlist), m_model(model), m_commands(commands), m_window(window) {}

bool PlaylistCommands::offers(PlaylistMenuEntry entry) const {
    if (!m_playlist.isRemote())
        return true;
    using Capability = MusicBackendCapability;
    const MusicBackendCapabilities capabilities = m_model.remote().capabilities();
    switch (entry) {
    case Entry::removeAll:
    case Entry::newList:
    case Entry::removeSelected:
        return capabilities.testFlag(Capability::queueEditing);
    case Entry::saveList:
        return capabilities.testFlag(Capability::playlistEditing) && m_playlist.count() > 0;
    case Entry::invertSelection:
    case Entry::selectNone:
    case Entry::selectAll:
    case Entry::miscOptions:
        return true;
    default: // what is about files
        return false;
    }
}

void PlaylistCommands::run(PlaylistMenuEntry entry, QPoint at) {
    if (!offers(entry)) { // in the pop-ups of sprites every entry looks the same
        m_model.showNotice(MusicBackendError::unsupported({}).description());
        return;
    }
    const auto popUpWith = [&](void (PlaylistCommands::*fillIt)(QMenu &)) {
        QMenu *menu = newMenu();
        (this->*fillIt)(*menu);
        menu->popup(at);
    };
    switch (entry) {
    case Entry::addUrl:
        return OpenDialogs::openAddress(m_model, m_commands.activeWindow(), OpenDialogs::Use::add);
    case Entry::addFolder:
        return OpenDialogs::openFolder(m_model, m_commands.activeWindow(), OpenDialogs::Use::add);
    case Entry::addFiles:
        return OpenDialogs::openFiles(m_model, m_commands.activeWindow(), OpenDialogs::Use::add);
    case Entry::removeMisc:
        return popUpWith(&PlaylistCommands::fillRemoval);
    case Entry::removeAll:
    case Entry::newList:
        return m_playlist.removeAll();
    case Entry::crop:
        return m_playlist.crop();
    case Entry::removeSelected:
        return m_playlist.removeSelected();
    case Entry::invertSelection:
        return m_playlist.invertSelection();
    case Entry::selectNone:
        return m_playlist.selectNone();
    case Entry::selectAll:
        return m_playlist.selectAll();
    case Entry::sort:
        return popUpWith(&PlaylistCommands::fillSorting);
    case Entry::fileInfo:
        return showFileInfo();
    case Entry::miscOptions:
        return popUpWith(&PlaylistCommands::fillOptions);
    case Entry::saveList:
        return m_playlist.isRemote() ? saveRemoteList() : saveList();
    case Entry::loadList:
        return loadList();
    }
}

// Menus

QMenu *PlaylistCommands::newMenu() {
    auto *menu = new QMenu(&m_window);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    return menu;
}

/// Only where it works: in other windows it may mean something else.
void PlaylistCommands::showKey(QAction &action, const QKeySequence &key) const {
    if (m_window.isActiveWindow())
        action.setShortcut(key);
}

void PlaylistCommands::popUp(PlaylistMenu entries, QPoint at) {
    QMenu *menu = newMenu();
    fill(*menu, entries);
    menu->popup(at);
}

void PlaylistCommands::fill(QMenu &menu, PlaylistMenu entries) {
    for (const Entry entry : PlaylistMenus::entries(entries)) {
        if (!offers(entry)) {
            menu.addAction(textOf(entry))->setEnabled(false);
        } else if (entry == Entry::removeMisc) {
            fillRemoval(*menu.addMenu(textOf(entry)));
        } else if (entry == Entry::sort) {
            fillSorting(*menu.addMenu(textOf(entry)));
        } else if (entry == Entry::miscOptions) {
            fillOptions(*menu.addMenu(textOf(entry)));
        } else {
            QAction *action = menu.addAction(textOf(entry), this, [this, entry] { run(entry, {}); });
            showKey(*action, keyOf(entry));
        }
    }
}

void PlaylistCommands::fillRemoval(QMenu &menu) {
    LocalPlaylist &list = m_playlist.local();
    menu.addAction(tr("Remove Missing Files"), &list, &LocalPlaylist::removeMissing);
    menu.addAction(tr("Remove Duplicates"), &list, &LocalPlaylist::removeDuplicates);
}

void PlaylistCommands::fillSorting(QMenu &menu) {
    LocalPlaylist &list = m_playlist.local();
    menu.addAction(tr("Sort by Title"), &list, &LocalPlaylist::sortByTitle);
    menu.addAction(tr("Sort by File Name"), &list, [&list] { list.sort(PlaylistSortKey::fileName); });
    menu.addAction(tr("Sort by Path"), &list, [&list] { list.sort(PlaylistSortKey::path); });
    menu.addSeparator();
    menu.addAction(tr("Reverse List"), &list, &LocalPlaylist::reverse);
    menu.addAction(tr("Randomise List"), &list, &LocalPlaylist::randomize);
}

void PlaylistCommands::fillOptions(QMenu &menu) {
    using Id = Commands::Id;
    menu.addAction(tr("Show Playing Track"), &m_playlist, [this] {
        if (const std::optional<int> current = m_playlist.currentIndex())
            m_playlist.select(*current, PlaylistModel::Selecting::only);
    });
    for (const Id id : {Id::jumpToFile, Id::shuffle, Id::repeat, Id::toggleTime})
        menu.addAction(&m_commands.action(id));
}

void PlaylistCommands::popUpRowMenu(QPoint at) {
    QMenu *menu = newMenu();
    fillMenu(*menu);
    menu->popup(at);
}

void PlaylistCommands::fillMenu(QMenu &menu) {
    const bool hasSelection = m_playlist.hasSelection();
    const auto addSelected = [&](const QString &text, auto run) {
        QAction *action = menu.addAction(text, this, run);
        action->setEnabled(hasSelection);
        return action;
    };
    const auto addEntry = [&](Entry entry) {
        QAction *const action = addSelected(textOf(entry), [this, entry] { run(entry, {}); });
        action->setEnabled(hasSelection && offers(entry));
        showKey(*action, keyOf(entry));
    };
    QAction *play = addSelected(tr("Play"), [this] { m_playlist.play(m_playlist.cursor().value_or(-1)); });
    showKey(*play, Qt::Key_Return);
    menu.setDefaultAction(play);
    menu.addSeparator();
    addEntry(Entry::removeSelected);
    addEntry(Entry::crop);
    menu.addSeparator();
    addEntry(Entry::fileInfo);
    QAction *const folder = addSelected(tr("Show in Folder"), [this] { showInFolder(); });
    folder->setEnabled(hasSelection && !m_playlist.isRemote());
    menu.addSeparator();
    fill(*menu.addMenu(tr("Add")), PlaylistMenu::add);
    fill(*menu.addMenu(tr("Remove")), PlaylistMenu::remove);
    fill(*menu.addMenu(tr("Select")), PlaylistMenu::select);
    QMenu *const sorting = menu.addMenu(tr("Sort"));
    fillSorting(*sorting);
    sorting->setEnabled(offers(Entry::sort));
    fill(*menu.addMenu(tr("List")), PlaylistMenu::list);
    fillOptions(*menu.addMenu(tr("Options")));
}

// Files

void PlaylistCommands::saveList() {
    auto *dialog =
        new QFileDialog(m_commands.activeWindow(), tr("Save List"), m_model.preferences().libraryFolder());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setNameFilters({tr("M3U8 playlist (*.m3u8)"), tr("PLS playlist (*.pls)")});
    dialog->setDefaultSuffix(QStringLiteral("m3u8"));
    connect(dialog, &QFileDialog::filterSelected, dialog, [dialog](const QString &filter) {
        dialog->setDefaultSuffix(filter.contains(QLatin1String("*.pls")) ? QStringLiteral("pls")
                                                                         : QStringLiteral("m3u8"));
    });
    connect(dialog, &QFileDialog::fileSelected, this,
            [this](const QString &path) { m_playlist.local().save(QUrl::fromLocalFile(path)); });
    dialog->open();
}

void PlaylistCommands::saveRemoteList() {
    auto *const dialog = new QInputDialog(m_commands.activeWindow());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(tr("Save as Playlist"));
    dialog->setLabelText(tr("Name of the playlist:"));
    connect(dialog, &QInputDialog::textValueSelected, this,
            [this](const QString &name) { m_model.remote().saveQueue(name.trimmed()); });
    dialog->open();
}

void PlaylistCommands::loadList() {
    auto *dialog =
        new QFileDialog(m_commands.activeWindow(), tr("Load List"), m_model.preferences().libraryFolder());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFile);
    dialog->setNameFilters(
        {tr("Playlists (%1)").arg(PlaylistFile::patterns().join(QLatin1Char(' '))), tr("All files (*)")});
    connect(dialog, &QFileDialog::fileSelected, this,
            [this](const QString &path) { m_model.open({QUrl::fromLocalFile(path)}); });
    dialog->open();
}

void PlaylistCommands::showFileInfo() {
    if (!offers(Entry::fileInfo))
        return;
    const std::optional<int> row = m_playlist.cursor();
    const std::optional<Track> track = row ? m_playlist.track(*row) : std::nullopt;
    if (!track) {
        m_model.showNotice(tr("No file is selected"));
        return;
    }
    const bool plays = row == m_model.player().queue().currentIndex();
    const auto format = plays ? m_model.player().currentFormat() : std::nullopt;
    (new FileInfoDialog(TrackInfo::fromTrack(*track, format), m_commands.activeWindow()))->show();
}

void PlaylistCommands::showInFolder() {
    const std::optional<Track> track = m_playlist.track(m_playlist.cursor().value_or(-1));
    const QUrl *file = track ? std::get_if<QUrl>(&track->source) : nullptr;
    if (file && file->isLocalFile())
        QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(file->toLocalFile()).absolutePath()));
    else
        m_model.showNotice(tr("This track is no file"));
}

} // namespace vantor
