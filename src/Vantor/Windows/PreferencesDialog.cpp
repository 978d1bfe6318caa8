#include "Vantor/Windows/PreferencesDialog.h"

#include "Vantor/Library/MusicLibrary.h"
#include "Vantor/Model/PlayerModel.h"
#include "Vantor/Preferences/MusicAssistantPage.h"
#include "Vantor/Preferences/SettingsPage.h"
#include "Vantor/Speaker/SpeakerPage.h"
#include "Vantor/Windows/DialogPlace.h"
#include "Vantor/Windows/FaintText.h"
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

PreferencesDialog::PreferencesDialog(PlayerModel &model, MusicLibrary *library, NetworkSpeaker *speaker,
                                     QWidget *parent)
    : QDialog(parent), m_model(model), m_library(library), m_titles(new QListWidget),
      m_pages(new QStackedWidget) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("Preferences"));
    giveFaintText(*this);
    m_titles->setAccessibleName(tr("Pages"));
    addPage(PreferencesPage::general, tr("General"), generalPage());
    addPage(PreferencesPage::skins, tr("Skins"), skinsPage());
    addPage(PreferencesPage::library, tr("Library"), libraryPage());
    if (m_library) {
        m_servers = new MusicAssistantPage(m_library->servers());
        addPage(PreferencesPage::musicAssistant, tr("Music Assistant"), m_servers);
    }
    if (m_library && speaker) {
        auto *const page = new SpeakerPage(*speaker, m_library->servers().list());
        addPage(PreferencesPage::speaker, tr("Speaker"), page);
        connect(page, &SpeakerPage::serverWanted, this,
                [this] { showPage(PreferencesPage::musicAssistant); });
    }
    addPage(PreferencesPage::output, tr("Output"), outputPage());
    addPage(PreferencesPage::playback, tr("Playback"), playbackPage());
    m_titles->setSpacing(2);
    m_titles->setFixedWidth(m_titles->sizeHintForColumn(0) + 48);
    connect(m_titles, &QListWidget::currentRowChanged, m_pages, &QStackedWidget::setCurrentIndex);
    m_titles->setCurrentRow(0);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    // Enter takes what is typed, and does not close over it.
    buttons->button(QDialogButtonBox::Close)->setAutoDefault(false);
    connect(buttons, &QDialogButtonBox::rejected, this, &PreferencesDialog::closeIfConfirmed);
    auto *layout = new QGridLayout(this);
    layout->addWidget(m_titles, 0, 0);
    layout->addWidget(m_pages, 0, 1);
    layout->addWidget(buttons, 1, 0, 1, 2);
    layout->setColumnStretch(1, 1);
    resize(620, 460);
}

void PreferencesDialog::addPage(PreferencesPage page, const QString &title, QWidget *widget) {
    (new QListWidgetItem(title, m_titles))->setData(Qt::UserRole, static_cast<int>(page));
    m_pages->addWidget(widget);
}

// Details that open may need more room than there is below.
void PreferencesDialog::resizeEvent(QResizeEvent *event) {
    QDialog::resizeEvent(event);
    DialogPlace::keepOnScreen(*this);
}

void PreferencesDialog::showPage(PreferencesPage page) {
    for (int row = 0; row < m_titles->count(); ++row) {
        if (m_titles->item(row)->data(Qt::UserRole).toInt() == static_cast<int>(page))
            m_titles->setCurrentRow(row);
    }
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
    if (m_servers && !m_servers->confirm()) {
        showPage(PreferencesPage::musicAssistant);
        return;
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
        const FolderSource &folder = m_library->folder();
        button->setEnabled(!folder.isScanning() && !m_model.preferences().libraryFolder().isEmpty());
        status->setText(folder.status());
    };
    connect(&m_library->folder(), &FolderSource::activityChanged, field, show);
    connect(&m_model.preferences(), &Preferences::libraryFolderChanged, field, show);
    show();
    return field;
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
