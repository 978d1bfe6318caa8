#include "Vantor/Windows/PlaylistCommands.h"

#include "LocalPlayback/Playlists/PlaylistFile.h"
#include "Vantor/Windows/FileInfoDialog.h"
#include "Vantor/Windows/OpenDialogs.h"
#include "Vantor/Windows/SkinnedWindow.h"

#include <QDesktopServices>
#include <QFileDialog>
#include <QFileInfo>
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

void PlaylistCommands::run(PlaylistMenuEntry entry, QPoint at) {
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
        return saveList();
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
        if (entry == Entry::removeMisc) {
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
    menu.addAction(tr("Remove Missing Files"), &m_playlist, &PlaylistModel::removeMissing);
    menu.addAction(tr("Remove Duplicates"), &m_playlist, &PlaylistModel::removeDuplicates);
}

void PlaylistCommands::fillSorting(QMenu &menu) {
    menu.addAction(tr("Sort by Title"), &m_playlist, &PlaylistModel::sortByTitle);
    menu.addAction(tr("Sort by File Name"), &m_playlist,
                   [this] { m_playlist.sort(PlaylistSortKey::fileName); });
    menu.addAction(tr("Sort by Path"), &m_playlist, [this] { m_playlist.sort(PlaylistSortKey::path); });
    menu.addSeparator();
    menu.addAction(tr("Reverse List"), &m_playlist, &PlaylistModel::reverse);
    menu.addAction(tr("Randomise List"), &m_playlist, &PlaylistModel::randomize);
}

void PlaylistCommands::fillOptions(QMenu &menu) {
    using Id = Commands::Id;
    menu.addAction(tr("Show Playing Track"), &m_playlist, [this] {
        if (const std::optional<int> current = m_model.player().queue().currentIndex())
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
        showKey(*addSelected(textOf(entry), [this, entry] { run(entry, {}); }), keyOf(entry));
    };
    QAction *play = addSelected(tr("Play"), [this] { m_playlist.play(m_playlist.cursor().value_or(-1)); });
    showKey(*play, Qt::Key_Return);
    menu.setDefaultAction(play);
    menu.addSeparator();
    addEntry(Entry::removeSelected);
    addEntry(Entry::crop);
    menu.addSeparator();
    addEntry(Entry::fileInfo);
    addSelected(tr("Show in Folder"), [this] { showInFolder(); });
    menu.addSeparator();
    fill(*menu.addMenu(tr("Add")), PlaylistMenu::add);
    fill(*menu.addMenu(tr("Remove")), PlaylistMenu::remove);
    fill(*menu.addMenu(tr("Select")), PlaylistMenu::select);
    fillSorting(*menu.addMenu(tr("Sort")));
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
            [this](const QString &path) { m_playlist.save(QUrl::fromLocalFile(path)); });
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
