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

QFileDialog *fileDialog(QWidget *parent, const QString &title, QFileDialog::FileMode mode) {
    auto *dialog = new QFileDialog(parent, title);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(mode);
    return dialog;
}

} // namespace

void openFiles(PlayerModel &model, QWidget *parent) {
    QFileDialog *const dialog = fileDialog(parent, tr("Open Files"), QFileDialog::ExistingFiles);
    dialog->setNameFilters(
        {tr("Audio, playlists and skins (%1 *.wsz)")
             .arg((TrackLoader::audioPatterns() + PlaylistFile::patterns()).join(QLatin1Char(' '))),
         tr("All files (*)")});
    QObject::connect(dialog, &QFileDialog::filesSelected, &model,
                     [&model, dialog] { model.open(dialog->selectedUrls()); });
    dialog->open();
}

void openFolder(PlayerModel &model, QWidget *parent) {
    QFileDialog *const dialog = fileDialog(parent, tr("Open Folder"), QFileDialog::Directory);
    QObject::connect(dialog, &QFileDialog::fileSelected, &model,
                     [&model, dialog] { model.open(dialog->selectedUrls()); });
    dialog->open();
}

void openAddress(PlayerModel &model, QWidget *parent) {
    auto *dialog = new QInputDialog(parent);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(tr("Open Address"));
    dialog->setLabelText(tr("Address of a file, playlist or stream:"));
    dialog->setOkButtonText(tr("Open"));
    dialog->resize(420, 0);
    QObject::connect(dialog, &QInputDialog::textValueSelected, &model, [&model](const QString &text) {
        const QUrl url = QUrl::fromUserInput(text.trimmed());
        if (url.isValid())
            model.open({url});
        else if (!text.trimmed().isEmpty())
            model.showNotice(tr("This is not an address"));
    });
    dialog->open();
}

void loadSkin(PlayerModel &model, QWidget *parent, const QString &folder) {
    QFileDialog *const dialog = fileDialog(parent, tr("Load Skin"), QFileDialog::ExistingFile);
    dialog->setNameFilters({tr("Skins (*.wsz *.zip)"), tr("All files (*)")});
    if (!folder.isEmpty())
        dialog->setDirectory(folder);
    QObject::connect(dialog, &QFileDialog::fileSelected, &model,
                     [&model](const QString &path) { model.wear(QUrl::fromLocalFile(path)); });
    dialog->open();
}

} // namespace vantor::OpenDialogs
