#include "Platform/NativePath.h"
#include "SkinBrowser/SkinLibraryModel.h"
#include "Vantor/Model/PlayerModel.h"
#include "Vantor/Museum/MuseumGridView.h"
#include "Vantor/Museum/MuseumTab.h"
#include "Vantor/Windows/ShowInFolder.h"

#include <QDesktopServices>
#include <QMenu>

// What is done to the skins of the museum.
namespace vantor {

void MuseumTab::connectDownloads() {
    connect(m_downloads.get(), &MuseumDownloads::changed, this, [this](const QString &md5) {
        if (const MuseumSkin *const skin = selected(); skin && skin->md5 == md5)
            showSelected();
        else
            m_grid->viewport()->update();
    });
    connect(m_downloads.get(), &MuseumDownloads::finished, this, &MuseumTab::takeDownload);
    connect(m_downloads.get(), &MuseumDownloads::failed, this, [this](const QString &md5) {
        if (m_wearNext == md5)
            m_wearNext.clear();
    });
    connect(&m_model, &PlayerModel::skinChanged, this, [this] {
        if (m_model.skinUrl() != m_lastAsked) // another was chosen elsewhere meanwhile
            m_wearNext.clear();
    });
    connect(m_details, &MuseumDetails::wearAsked, this, &MuseumTab::wearSelected);
    connect(m_details, &MuseumDetails::downloadAsked, this, &MuseumTab::downloadSelected);
    connect(m_details, &MuseumDetails::cancelAsked, this, &MuseumTab::cancelSelected);
    connect(m_details, &MuseumDetails::pageAsked, this, &MuseumTab::openPage);
    connect(m_details, &MuseumDetails::backAsked, this, &MuseumTab::goBack);
    connect(&m_history, &SkinHistory::changed, this, &MuseumTab::showSelected);
    connect(&m_model, &PlayerModel::skinRefused, this, [this](const QString &name, const QString &message) {
        if (!m_lastMD5.isEmpty() && m_lastAsked.fileName() == name)
            m_refusals.insert(m_lastMD5, message);
        showSelected();
    });
}

const MuseumSkin *MuseumTab::selected() const {
    return m_list->skin(m_grid->currentIndex());
}

void MuseumTab::choose(const QModelIndex &index) {
    m_grid->setCurrentIndex(index);
    wearSelected();
}

void MuseumTab::wearSelected() {
    const MuseumSkin *const skin = selected();
    if (!skin)
        return;
    m_refusals.remove(skin->md5);
    m_wearNext.clear(); // whichever it was, this one is wanted now
    if (const OwnedSkins::Skin *const owned = m_owned.find(skin->md5)) {
        wear(skin->md5, owned->file);
    } else {
        m_wearNext = skin->md5;
        start(*skin);
    }
}

void MuseumTab::wear(const QString &md5, const QUrl &file) {
    m_lastMD5 = md5;
    m_lastAsked = file;
    m_model.wear(file);
}

void MuseumTab::goBack() {
    m_wearNext.clear();
    m_history.goBack();
}

void MuseumTab::downloadSelected() {
    if (const MuseumSkin *const skin = selected(); skin && !m_owned.find(skin->md5))
        start(*skin);
}

void MuseumTab::cancelSelected() {
    const MuseumSkin *const skin = selected();
    if (!skin)
        return;
    if (m_wearNext == skin->md5)
        m_wearNext.clear();
    m_downloads->cancel(skin->md5);
}

void MuseumTab::start(const MuseumSkin &skin) {
    m_downloads->start(skin, m_library.folder());
}

void MuseumTab::takeDownload(const QString &md5, const MuseumDownloadResult &result) {
    const OwnedSkins::Skin *const known = m_owned.find(md5);
    const bool isIndexed = known && known->id && known->file == result.file;
    if (!isIndexed)
        m_library.add({NativePath::fromUrl(result.file)});
    m_owned.note(md5, result.file);
    if (m_wearNext == md5) {
        m_wearNext.clear();
        wear(md5, result.file);
    }
}

void MuseumTab::openPage() {
    if (const MuseumSkin *const skin = selected())
        QDesktopServices::openUrl(skin->museumURL);
}

void MuseumTab::popUpMenu(QPoint at) {
    const MuseumSkin *const skin = selected();
    if (!skin)
        return;
    const OwnedSkins::Skin *const owned = m_owned.find(skin->md5);
    auto *const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setDefaultAction(menu->addAction(tr("Wear"), this, &MuseumTab::wearSelected));
    if (owned)
        menu->addAction(tr("Show in Folder"), this, [file = owned->file] { showInFolder(file); });
    else if (stateOf(skin->md5).isUnderWay)
        menu->addAction(tr("Cancel Download"), this, &MuseumTab::cancelSelected);
    else
        menu->addAction(tr("Download"), this, &MuseumTab::downloadSelected);
    menu->addAction(tr("Open Museum Page"), this, &MuseumTab::openPage);
    menu->addSeparator();
    QAction *const back = menu->addAction(tr("Back to the Skin Before"), QKeySequence(Qt::Key_Backspace),
                                          this, &MuseumTab::goBack);
    back->setEnabled(m_history.canGoBack());
    const QRect cell = m_grid->visualRect(m_grid->currentIndex());
    // The menu key knows no place.
    const QPoint place = cell.contains(at) ? at : cell.center();
    menu->popup(m_grid->viewport()->mapToGlobal(place));
}

} // namespace vantor
