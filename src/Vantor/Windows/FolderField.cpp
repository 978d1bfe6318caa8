#include "Vantor/Windows/FolderField.h"

#include <QDir>
#include <QFileDialog>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace vantor {

FolderField::FolderField(const QString &purpose, const QString &folder, QWidget *parent)
    : QWidget(parent), m_purpose(purpose), m_folder(folder),
      m_edit(new QLineEdit(QDir::toNativeSeparators(folder))),
      m_problem(new QLabel(tr("There is no such folder."))) {
    m_edit->setPlaceholderText(tr("None chosen"));
    m_edit->setClearButtonEnabled(true);
    m_edit->setAccessibleName(purpose);
    m_edit->setMinimumWidth(220);
    // Its place is kept free: a dialog that grew under the pointer would move the button away from it.
    QSizePolicy place = m_problem->sizePolicy();
    place.setRetainSizeWhenHidden(true);
    m_problem->setSizePolicy(place);
    m_problem->hide();
    auto *choose = new QPushButton(tr("Choose…"));
    choose->setAutoDefault(false);
    choose->setAccessibleName(tr("Choose the folder: %1").arg(purpose));

    auto *layout = new QGridLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_edit, 0, 0);
    layout->addWidget(choose, 0, 1);
    layout->addWidget(m_problem, 1, 0);
    setFocusProxy(m_edit);

    connect(m_edit, &QLineEdit::editingFinished, this, [this] { (void)confirm(); });
    connect(choose, &QPushButton::clicked, this, &FolderField::browse);
}

void FolderField::browse() {
    auto *dialog = new QFileDialog(this, m_purpose, m_folder.isEmpty() ? QDir::homePath() : m_folder);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString &path) {
        m_edit->setText(QDir::toNativeSeparators(path));
        (void)confirm();
    });
    dialog->open();
}

bool FolderField::confirm() {
    QString folder = QDir::fromNativeSeparators(m_edit->text().trimmed());
    if (folder == QLatin1String("~") || folder.startsWith(QLatin1String("~/")))
        folder.replace(0, 1, QDir::homePath());
    const bool usable = folder.isEmpty() || (QDir::isAbsolutePath(folder) && QDir(folder).exists());
    m_problem->setVisible(!usable);
    if (usable && folder != m_folder) {
        m_folder = folder;
        Q_EMIT chosen(folder);
    }
    return usable;
}

} // namespace vantor
