#include "Platform/NativePath.h"
#include "SkinBrowser/IndexAnswer.h"
#include "SkinBrowser/SkinLibraryModel.h"
#include "Vantor/Model/PlayerModel.h"
#include "Vantor/Model/SkinSwitcher.h"
#include "Vantor/Windows/AskBefore.h"
#include "Vantor/Windows/ShowInFolder.h"
#include "Vantor/Windows/SkinBrowserWindow.h"

#include <QMenu>
#include <QMessageBox>

// What is done to the skin that is selected, and what is asked before.
namespace vantor {

void SkinBrowserWindow::tell(const QString &message) {
    auto *box = new QMessageBox(QMessageBox::Warning, windowTitle(), message, QMessageBox::Ok, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setTextFormat(Qt::PlainText);
    box->open();
}

const SkinRecord *SkinBrowserWindow::selected() const {
    return m_skins.record(m_grid->currentIndex());
}

void SkinBrowserWindow::wear(const QModelIndex &index) {
    if (const SkinRecord *const skin = m_skins.record(index); skin && !skin->primaryPath.isEmpty())
        m_switcher.wear(*skin);
}

void SkinBrowserWindow::popUpMenu(QPoint at) {
    const SkinRecord *const skin = selected();
    if (!skin)
        return;
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QAction *const wearIt = menu->addAction(tr("Wear"), this, [this] { wear(m_grid->currentIndex()); });
    wearIt->setEnabled(skin->status != SkinStatus::failed);
    menu->setDefaultAction(wearIt);
    const QUrl file = NativePath::url(skin->primaryPath);
    menu->addAction(tr("Show in Folder"), this, [file] { showInFolder(file); });
    menu->addSeparator();
    menu->addAction(tr("Move to Trash…"), QKeySequence(Qt::Key_Delete), this, [this] { askToTrash(); });
    const QRect cell = m_grid->visualRect(m_grid->currentIndex());
    // The menu key knows no place.
    const QPoint place = cell.contains(at) ? at : cell.center();
    menu->popup(m_grid->viewport()->mapToGlobal(place));
}

void SkinBrowserWindow::askToTrash() {
    const SkinRecord *const skin = selected();
    if (!skin)
        return;
    using Files = std::vector<FileStamp>;
    const auto question = [id = skin->id](SkinIndexStore &store) { return store.files(id); };
    whenAnswered(
        *this, m_switcher.reader().ask<Files>(question),
        [this, name = skin->name](const Files &files) { askToTrash(name, files); },
        [this](const SkinLibraryError &error) { tell(error.description()); });
}

void SkinBrowserWindow::askToTrash(const QString &name, const std::vector<FileStamp> &files) {
    constexpr std::size_t listed = 8;
    QStringList paths;
    for (const FileStamp &file : files)
        paths.append(file.path);
    if (paths.isEmpty())
        return;
    QString list = paths.mid(0, listed).join(QLatin1Char('\n'));
    if (files.size() > listed)
        list += QStringLiteral("\n…");
    const QString more =
        files.size() == 1 ? list
                          : tr("It is there %n times, and all go:", nullptr, static_cast<int>(files.size())) +
                                QStringLiteral("\n\n") + list;
    askBefore(this, tr("Move “%1” to the Trash?").arg(name), more, tr("Move to Trash"), [this, name, paths] {
        for (const QString &path : paths)
            m_library.moveToTrash(path, name);
    });
}

void SkinBrowserWindow::askToReset() {
    askBefore(this, tr("Delete the index?"),
              tr("It is built anew from your skins folder. No skin is changed or deleted."), tr("Delete"),
              [this] { m_library.resetIndex(); });
}

} // namespace vantor
