#include "Vantor/Windows/PreferencesDialog.h"

#include "Vantor/Library/MusicLibrary.h"
#include "Vantor/Model/PlayerModel.h"
#include "Vantor/Windows/FolderField.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QStackedWidget>

namespace vantor {

namespace {

/// A page: everything under one another, from the top.
class SettingsPage : public QWidget {
  public:
    SettingsPage() : m_layout(new QVBoxLayout(this)) {
        m_layout->setContentsMargins(12, 0, 0, 0);
        m_layout->addStretch(1);
    }
    void add(QWidget *widget) { m_layout->insertWidget(m_layout->count() - 1, widget); }
    void addGap() { m_layout->insertSpacing(m_layout->count() - 1, 12); }

    /// A sentence about what is above it.
    void addNote(const QString &text) {
        auto *note = new QLabel(text);
        note->setWordWrap(true);
        note->setForegroundRole(QPalette::PlaceholderText);
        add(note);
    }
    /// A title with the field that it belongs to.
    void addField(const QString &title, QWidget *field) {
        auto *label = new QLabel(title);
        label->setBuddy(field);
        add(label);
        add(field);
    }
    QCheckBox *addCheck(const QString &text, bool on) {
        auto *box = new QCheckBox(text);
        box->setChecked(on);
        add(box);
        return box;
    }

  private:
    QVBoxLayout *m_layout;
};

} // namespace

PreferencesDialog::PreferencesDialog(PlayerModel &model, MusicLibrary *library, QWidget *parent)
    : QDialog(parent), m_model(model), m_library(library), m_titles(new QListWidget),
      m_pages(new QStackedWidget) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("Preferences"));
    m_titles->setAccessibleName(tr("Pages"));
    addPage(tr("General"), generalPage());
    addPage(tr("Skins"), skinsPage());
    addPage(tr("Library"), libraryPage());
    addPage(tr("Output"), outputPage());
    addPage(tr("Playback"), playbackPage());
    m_titles->setFixedWidth(m_titles->sizeHintForColumn(0) + 48);
    connect(m_titles, &QListWidget::currentRowChanged, m_pages, &QStackedWidget::setCurrentIndex);
    m_titles->setCurrentRow(0);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &PreferencesDialog::closeIfConfirmed);
    auto *layout = new QGridLayout(this);
    layout->addWidget(m_titles, 0, 0);
    layout->addWidget(m_pages, 0, 1);
    layout->addWidget(buttons, 1, 0, 1, 2);
    layout->setColumnStretch(1, 1);
    resize(460, 320);
}

void PreferencesDialog::addPage(const QString &title, QWidget *page) {
    m_titles->addItem(title);
    m_pages->addWidget(page);
}

void PreferencesDialog::closeIfConfirmed() {
    for (int page = 0; page < m_pages->count(); ++page) {
        for (FolderField *const field : m_pages->widget(page)->findChildren<FolderField *>()) {
            if (!field->confirm()) {
                m_titles->setCurrentRow(page);
                field->setFocus();
                return;
            }
        }
    }
    reject();
}

QWidget *PreferencesDialog::generalPage() {
    auto *page = new SettingsPage;
    WindowState &windows = m_model.windows();
    QCheckBox *const doubled = page->addCheck(tr("&Double size"), windows.isDoubleSize());
    QCheckBox *const onTop = page->addCheck(tr("&Always on top"), windows.isAlwaysOnTop());
    connect(doubled, &QCheckBox::toggled, &windows, &WindowState::setDoubleSize);
    connect(onTop, &QCheckBox::toggled, &windows, &WindowState::setAlwaysOnTop);
    // A key or the menu may change them meanwhile.
    connect(&windows, &WindowState::changed, page, [&windows, doubled, onTop] {
        doubled->setChecked(windows.isDoubleSize());
        onTop->setChecked(windows.isAlwaysOnTop());
    });
    return page;
}

QWidget *PreferencesDialog::skinsPage() {
    auto *page = new SettingsPage;
    auto *folder = new FolderField(tr("Skins folder"), m_model.skins().folder());
    page->addField(tr("&Skins folder"), folder);
    page->addNote(tr("The skins in it are at hand in the main menu, under Skins."));
    connect(folder, &FolderField::chosen, page,
            [this](const QString &path) { m_model.skins().setFolder(path); });
    page->addGap();
    Preferences &preferences = m_model.preferences();
    QCheckBox *const nsfw =
        page->addCheck(tr("Show &NSFW skins from the Skin Museum"), preferences.showsNSFWMuseumSkins());
    connect(nsfw, &QCheckBox::toggled, &preferences, &Preferences::setShowsNSFWMuseumSkins);
    return page;
}

QWidget *PreferencesDialog::libraryPage() {
    auto *page = new SettingsPage;
    auto *folder = new FolderField(tr("Music folder"), m_model.preferences().libraryFolder());
    page->addField(tr("&Music folder"), folder);
    page->addNote(
        tr("Organize it as Artist/Album/Track. Singles can sit directly in the artist's folder; discs "
           "as \"Disc 1\", \"Disc 2\" subfolders."));
    connect(folder, &FolderField::chosen, page,
            [this](const QString &path) { m_model.preferences().setLibraryFolder(path); });
    if (m_library)
        page->add(rescanField());
    return page;
}

QWidget *PreferencesDialog::rescanField() {
    auto *field = new QWidget;
    auto *button = new QPushButton(tr("&Rescan"));
    auto *status = new QLabel;
    button->setAutoDefault(false);
    status->setForegroundRole(QPalette::PlaceholderText);
    status->setWordWrap(true);
    auto *layout = new QHBoxLayout(field);
    layout->setContentsMargins(0, 6, 0, 0);
    layout->addWidget(button);
    layout->addWidget(status, 1);
    connect(button, &QPushButton::clicked, m_library, &MusicLibrary::rescan);
    const auto show = [this, button, status] {
        button->setEnabled(!m_library->isScanning() && !m_model.preferences().libraryFolder().isEmpty());
        status->setText(m_library->status());
    };
    connect(m_library, &MusicLibrary::statusChanged, field, show);
    connect(&m_model.preferences(), &Preferences::libraryFolderChanged, field, show);
    show();
    return field;
}

void PreferencesDialog::showLibrary() {
    const QList<QListWidgetItem *> found = m_titles->findItems(tr("Library"), Qt::MatchExactly);
    if (!found.isEmpty())
        m_titles->setCurrentItem(found.first());
}

QWidget *PreferencesDialog::outputPage() {
    auto *page = new SettingsPage;
    auto *devices = new QComboBox;
    page->addField(tr("&Device"), devices);
    page->addNote(tr("A device that is not connected is used again as soon as it is; until then the system's "
                     "default plays."));
    const auto fill = [this, devices] {
        const QSignalBlocker blocker(devices);
        devices->clear();
        for (const OutputChoice::Item &item : m_model.output().items()) {
            devices->addItem(item.label, item.key.value_or(QString()));
            if (item.chosen)
                devices->setCurrentIndex(devices->count() - 1);
        }
    };
    fill();
    connect(&m_model.player(), &Player::outputDevicesChanged, devices, fill);
    connect(devices, &QComboBox::activated, page, [this, devices](int index) {
        const QString key = devices->itemData(index).toString();
        m_model.output().choose(key.isEmpty() ? std::nullopt : std::optional(key));
    });
    return page;
}

QWidget *PreferencesDialog::playbackPage() {
    auto *page = new SettingsPage;
    QCheckBox *const resume =
        page->addCheck(tr("&Resume where playback was on start"), m_model.preferences().resumesOnStart());
    connect(resume, &QCheckBox::toggled, page,
            [this](bool on) { m_model.preferences().setResumesOnStart(on); });
    page->addGap();

    Player &player = m_model.player();
    auto *const loudness = new QComboBox;
    loudness->addItem(tr("As it is"), rawValue(ReplayGainMode::off));
    loudness->addItem(tr("Equal for every track"), rawValue(ReplayGainMode::track));
    loudness->addItem(tr("Equal for every album"), rawValue(ReplayGainMode::album));
    loudness->setCurrentIndex(loudness->findData(rawValue(player.replayGainMode())));
    connect(loudness, &QComboBox::activated, &player, [&player, loudness](int index) {
        player.setReplayGainMode(
            replayGainModeFromRawValue(loudness->itemData(index).toString()).value_or(ReplayGainMode::off));
    });
    page->addField(tr("&Loudness"), loudness);
    page->addNote(tr("By the ReplayGain tags of the files; those without them play as they are."));
    QCheckBox *const limiter = page->addCheck(tr("Li&mit what would clip"), player.isLimiterEnabled());
    connect(limiter, &QCheckBox::toggled, &player, &Player::setLimiterEnabled);
    return page;
}

} // namespace vantor
