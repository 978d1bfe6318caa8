#include "Vantor/Windows/SkinBrowserFoot.h"

#include "SkinBrowser/SkinLibraryModel.h"
#include "Vantor/Model/PlayerModel.h"

#include <QDir>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>

namespace vantor {

namespace {

using Phase = SkinIndexProgress::Phase;

/// A line that is cut in its middle when there is little room.
class PathLabel : public QLabel {
  public:
    PathLabel() { setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred); }

  protected:
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        painter.setOpacity(0.7); // dark themes do not always have a colour for lesser texts
        const QString cut = fontMetrics().elidedText(text(), Qt::ElideMiddle, width());
        painter.drawText(rect(), Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine, cut);
    }
};

QString shortened(const QString &folder) {
    const QString home = QDir::homePath();
    const bool isInHome = folder == home || folder.startsWith(home + QLatin1Char('/'));
    return isInHome && home != QDir::rootPath() ? QLatin1Char('~') + folder.mid(home.size()) : folder;
}

} // namespace

SkinBrowserFoot::SkinBrowserFoot(PlayerModel &model, SkinLibraryModel &library, QWidget *parent)
    : QWidget(parent), m_model(model), m_library(library), m_folder(new PathLabel), m_text(new QLabel),
      m_progress(new QProgressBar), m_pass(new QPushButton) {
    auto *change = new QPushButton(tr("Change…"));
    change->setAccessibleName(tr("Change the skins folder"));
    m_progress->setTextVisible(false);
    m_progress->setFixedWidth(110);
    m_progress->setAccessibleName(tr("Progress of the index"));

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(10, 6, 10, 6);
    layout->addWidget(m_folder, 1);
    layout->addWidget(change);
    layout->addSpacing(16);
    layout->addWidget(m_text);
    layout->addWidget(m_progress);
    layout->addWidget(m_pass);

    connect(change, &QPushButton::clicked, this, &SkinBrowserFoot::chooseFolder);
    connect(m_pass, &QPushButton::clicked, this, [this] {
        if (m_library.isIndexing())
            m_library.cancel();
        else
            m_library.reindex();
    });
    for (const auto signal : {&SkinLibraryModel::folderChanged, &SkinLibraryModel::watchNoteChanged})
        connect(&library, signal, this, &SkinBrowserFoot::showFolder);
    for (const auto signal : {&SkinLibraryModel::progressChanged, &SkinLibraryModel::problemChanged,
                              &SkinLibraryModel::contentChanged})
        connect(&library, signal, this, &SkinBrowserFoot::showPass);
    showFolder();
}

void SkinBrowserFoot::setFound(int skins) {
    m_found = skins;
    showPass();
}

void SkinBrowserFoot::showFolder() {
    const QString folder = m_library.folder();
    m_folder->setText(folder.isEmpty() ? tr("No skins folder") : shortened(folder));
    const QString note = m_library.watchNote();
    m_folder->setToolTip(note.isEmpty() ? folder : folder + QLatin1Char('\n') + note);
    showPass();
}

void SkinBrowserFoot::showPass() {
    const bool isRunning = m_library.isIndexing();
    const SkinIndexProgress &progress = m_library.progress();
    const bool isCounted = progress.phase == Phase::indexing && progress.changed > 0;
    m_progress->setVisible(isRunning);
    m_progress->setRange(0, isCounted ? static_cast<int>(progress.changed) : 0);
    m_progress->setValue(static_cast<int>(progress.processed));
    m_text->setText(isRunning ? passText() : restText());
    m_text->setToolTip(m_library.problem());
    m_pass->setText(isRunning ? tr("Cancel") : tr("Re-index"));
    m_pass->setEnabled(isRunning || !m_library.folder().isEmpty());
}

QString SkinBrowserFoot::passText() const {
    const SkinIndexProgress &progress = m_library.progress();
    switch (progress.phase) {
    case Phase::scanning:
        return tr("Looking for skins…");
    case Phase::indexing:
        return tr("Reading %L1 of %L2").arg(progress.processed).arg(progress.changed);
    case Phase::hashing:
        return tr("Making checksums: %L1").arg(progress.processed);
    case Phase::pruning:
    case Phase::done:
        break;
    }
    return tr("Tidying up…");
}

QString SkinBrowserFoot::restText() const {
    if (!m_library.problem().isEmpty())
        return m_library.isIndexUnusable() ? tr("No index") : tr("The folder could not be read");
    const auto all = m_library.counts().skins;
    return m_found == all ? tr("%L1 skins").arg(all) : tr("%L1 of %L2 skins").arg(m_found).arg(all);
}

void SkinBrowserFoot::chooseFolder() {
    const QString folder = m_library.folder();
    auto *dialog = new QFileDialog(this, tr("Skins folder"), folder.isEmpty() ? QDir::homePath() : folder);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    connect(dialog, &QFileDialog::fileSelected, this,
            [this](const QString &path) { m_model.skins().setFolder(path); });
    dialog->open();
}

} // namespace vantor
