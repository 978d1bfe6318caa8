#include "Vantor/Windows/WelcomeDialog.h"

#include "Vantor/Model/PlayerModel.h"
#include "Vantor/Windows/FaintText.h"
#include "Vantor/Windows/FolderField.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace vantor {

WelcomeDialog::WelcomeDialog(PlayerModel &model, QWidget *parent)
    : QDialog(parent), m_skins(new FolderField(tr("Skins folder"), model.skins().folder())),
      m_music(new FolderField(tr("Music folder"), model.preferences().libraryFolder())) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("Welcome to Vantor"));
    giveFaintText(*this);
    auto *intro =
        new QLabel(tr("Where do you keep your skins and your music? You can leave either empty, and change "
                      "both later in the preferences (Ctrl+P)."));
    intro->setWordWrap(true);
    const int width = fontMetrics().averageCharWidth() * 70;
    intro->setMinimumSize(width, intro->heightForWidth(width)); // or what is below it would be squeezed
    connect(m_skins, &FolderField::chosen, this,
            [&model](const QString &path) { model.skins().setFolder(path); });
    connect(m_music, &FolderField::chosen, this,
            [&model](const QString &path) { model.preferences().setLibraryFolder(path); });

    auto *const server = new QPushButton(tr("&Connect to a Server…"));
    server->setAutoDefault(false);
    server->setToolTip(tr("A Music Assistant server in your home has the music and the speakers"));
    connect(server, &QPushButton::clicked, this, [this] {
        accept();
        if (!isVisible())
            Q_EMIT serverAsked();
    });

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
    layout->addRow(tr("&Skins:"), m_skins);
    layout->addRow(tr("&Music:"), m_music);
    auto *const serverRow = new QHBoxLayout; // as wide as its text
    serverRow->addWidget(server);
    serverRow->addStretch(1);
    layout->addRow(tr("Server:"), serverRow);
    layout->addRow(buttons);
}

void WelcomeDialog::accept() {
    for (FolderField *const field : {m_skins, m_music}) {
        if (!field->confirm()) {
            field->setFocus();
            return;
        }
    }
    QDialog::accept();
}

} // namespace vantor
