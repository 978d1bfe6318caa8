#include "Vantor/Windows/OpenDialogs.h"

#include "LocalPlayback/Loading/TrackLoader.h"
#include "LocalPlayback/Playlists/PlaylistFile.h"
#include "Vantor/Model/PlayerModel.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QInputDialog>

namespace vantor::OpenDialogs {

namespace {

QString tr(const char *text) {
    return QCoreApplication::translate("OpenDialogs", text);
}

QFileDialog *fileDialog(QWidget *parent, const QString &title, const QString &folder,
                        QFileDialog::FileMode mode) {
    auto *dialog = new QFileDialog(parent, title, folder);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(mode);
    return dialog;
}

void take(PlayerModel &model, Use use, const QList<QUrl> &urls) {
    if (use == Use::open)
        model.open(urls);
    else
        model.insert(urls, model.player().queue().count());
}

} // namespace

void openFiles(PlayerModel &model, QWidget *parent, Use use) {
    QFileDialog *const dialog = fileDialog(parent, use == Use::open ? tr("Open Files") : tr("Add Files"),
                                           model.preferences().libraryFolder(), QFileDialog::ExistingFiles);
    dialog->setNameFilters(
        {tr("Audio, playlists and skins (%1 *.wsz)")
             .arg((TrackLoader::audioPatterns() + PlaylistFile::patterns()).join(QLatin1Char(' '))),
         tr("All files (*)")});
    QObject::connect(dialog, &QFileDialog::filesSelected, &model,
                     [&model, use, dialog] { take(model, use, dialog->selectedUrls()); });
    dialog->open();
}

void openFolder(PlayerModel &model, QWidget *parent, Use use) {
    QFileDialog *const dialog = fileDialog(parent, use == Use::open ? tr("Open Folder") : tr("Add Folder"),
                                           model.preferences().libraryFolder(), QFileDialog::Directory);
    QObject::connect(dialog, &QFileDialog::fileSelected, &model,
                     [&model, use, dialog] { take(model, use, dialog->selectedUrls()); });
    dialog->open();
}

void openAddress(PlayerModel &model, QWidget *parent, Use use) {
    auto *dialog = new QInputDialog(parent);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(use == Use::open ? tr("Open Address") : tr("Add Address"));
    dialog->setLabelText(tr("Address of a file, playlist or stream:"));
    dialog->setOkButtonText(use == Use::open ? tr("Open") : tr("Add"));
    dialog->resize(420, 0);
    QObject::connect(dialog, &QInputDialog::textValueSelected, &model, [&model, use](const QString &text) {
        const QUrl url = QUrl::fromUserInput(text.trimmed());
        if (url.isValid())
            take(model, use, {url});
        else if (!text.trimmed().isEmpty())
            model.showNotice(tr("This is not an address"));
    });
    dialog->open();
}

void loadSkin(PlayerModel &model, QWidget *parent) {
    QFileDialog *const dialog =
        fileDialog(parent, tr("Load Skin"), model.skins().folder(), QFileDialog::ExistingFile);
    dialog->setNameFilters({tr("Skins (*.wsz *.zip)"), tr("All files (*)")});
    QObject::connect(dialog, &QFileDialog::fileSelected, &model,
                     [&model](const QString &path) { model.wear(QUrl::fromLocalFile(path)); });
    dialog->open();
}

} // namespace vantor::OpenDialogs
