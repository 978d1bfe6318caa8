#include "Vantor/Library/LibraryDialogs.h"

#include "Vantor/Model/InBackground.h"
#include "Vantor/Windows/FaintText.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSaveFile>
#include <QStandardPaths>

namespace vantor {

namespace {

constexpr qint64 mostBytes = 8 << 20; // of a playlist file

QString tr(const char *text) {
    return QCoreApplication::translate("LibraryDialogs", text);
}

QFileDialog *fileDialog(QWidget *parent, const QString &title) {
    auto *const dialog =
        new QFileDialog(parent, title, QStandardPaths::writableLocation(QStandardPaths::MusicLocation));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setNameFilters({tr("Playlists (*.m3u8 *.m3u)"), tr("All files (*)")});
    return dialog;
}

// None when it cannot be read.
std::optional<QString> textOf(const QString &path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > mostBytes)
        return std::nullopt;
    const QByteArray bytes = file.read(mostBytes);
    return file.error() == QFileDevice::NoError ? std::optional(QString::fromUtf8(bytes)) : std::nullopt;
}

bool write(const QString &path, const QString &text) {
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) >= 0 && file.commit();
}

} // namespace

void LibraryDialogs::askName(QWidget *parent, const QString &title, const QString &button,
                             const QString &name, const std::function<void(const QString &)> &then) {
    auto *const dialog = new QInputDialog(parent);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(title);
    dialog->setLabelText(tr("Name of the playlist:"));
    dialog->setTextValue(name);
    dialog->setOkButtonText(button);
    dialog->resize(380, 0);
    QObject::connect(dialog, &QInputDialog::textValueSelected, parent,
                     [then](const QString &text) { then(text.trimmed()); });
    dialog->open();
}

void LibraryDialogs::askRadio(QWidget *parent, const std::function<void(const RadioURLInput &)> &then) {
    auto *const dialog = new QDialog(parent);
    giveFaintText(*dialog);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(tr("Add Radio Station"));
    auto *const url = new QLineEdit;
    url->setObjectName(QStringLiteral("url"));
    url->setMinimumWidth(320);
    auto *const name = new QLineEdit;
    name->setObjectName(QStringLiteral("name"));
    name->setPlaceholderText(tr("The address's host"));
    auto *const fault = new QLabel;
    fault->setWordWrap(true);
    auto *const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Ok)->setText(tr("Add"));
    auto *const layout = new QFormLayout(dialog);
    layout->addRow(tr("&Stream URL:"), url);
    layout->addRow(tr("&Name:"), name);
    layout->addRow(fault);
    layout->addRow(buttons);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, [dialog, url, name, fault, then] {
        const std::optional<RadioURLInput> input = RadioURLInput::parse(url->text(), name->text());
        if (input) {
            dialog->accept();
            then(*input);
            return;
        }
        fault->setText(tr("Enter an http or https stream URL."));
        url->setFocus();
        url->selectAll();
    });
    dialog->open();
}

void LibraryDialogs::readPlaylist(QWidget *parent, const std::function<void(const QString &)> &then,
                                  const std::function<void(const QString &)> &failed) {
    QFileDialog *const dialog = fileDialog(parent, tr("Import Playlist"));
    dialog->setFileMode(QFileDialog::ExistingFile);
    QObject::connect(dialog, &QFileDialog::fileSelected, parent, [=](const QString &path) {
        inBackground(
            *QThreadPool::globalInstance(), parent, [path] { return textOf(path); },
            [=](const std::optional<QString> &text) {
                if (text)
                    then(*text);
                else
                    failed(tr("%1 could not be read.").arg(QFileInfo(path).fileName()));
            });
    });
    dialog->open();
}

void LibraryDialogs::writePlaylist(QWidget *parent, const QString &name, const QString &m3u,
                                   const std::function<void(const QString &)> &failed) {
    QFileDialog *const dialog = fileDialog(parent, tr("Export Playlist"));
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(QStringLiteral("m3u8"));
    dialog->selectFile(QString(name).replace(QLatin1Char('/'), QLatin1Char('_')) + QStringLiteral(".m3u8"));
    QObject::connect(dialog, &QFileDialog::fileSelected, parent, [=](const QString &path) {
        inBackground(
            *QThreadPool::globalInstance(), parent, [path, m3u] { return write(path, m3u); },
            [=](bool isWritten) {
                if (!isWritten)
                    failed(tr("%1 could not be written.").arg(QFileInfo(path).fileName()));
            });
    });
    dialog->open();
}

} // namespace vantor
