#include "Vantor/Windows/WelcomeDialog.h"

#include "Vantor/Model/PlayerModel.h"
#include "Vantor/Windows/FolderField.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>

namespace vantor {

WelcomeDialog::WelcomeDialog(PlayerModel &model, QWidget *parent) : QDialog(parent) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("Welcome to Vantor"));
    auto *intro =
        new QLabel(tr("Where do you keep your skins and your music? You can leave either empty, and change "
                      "both later in the preferences (Ctrl+P)."));
    intro->setWordWrap(true);
    intro->setMinimumWidth(fontMetrics().averageCharWidth() * 70); // so that its height is known at once
    auto *skins = new FolderField(tr("Skins folder"), model.skins().folder());
    auto *music = new FolderField(tr("Music folder"), model.preferences().libraryFolder());
    connect(skins, &FolderField::chosen, this,
            [&model](const QString &path) { model.skins().setFolder(path); });
    connect(music, &FolderField::chosen, this,
            [&model](const QString &path) { model.preferences().setLibraryFolder(path); });

    auto *buttons = new QDialogButtonBox;
    QPushButton *const done = buttons->addButton(tr("Done"), QDialogButtonBox::AcceptRole);
    QPushButton *const skip = buttons->addButton(tr("Skip"), QDialogButtonBox::RejectRole);
    skip->setAutoDefault(false);
    done->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto *layout = new QFormLayout(this);
    layout->setVerticalSpacing(12);
    layout->addRow(intro);
    layout->addRow(tr("&Skins:"), skins);
    layout->addRow(tr("&Music:"), music);
    layout->addRow(buttons);
}

} // namespace vantor
