#include "Vantor/Library/MusicLibrary.h"

#include "Platform/AppPaths.h"
#include "Vantor/Library/LibraryWindow.h"
#include "Vantor/Library/SourceSwitcher.h"
#include "Vantor/Model/PlayerModel.h"
#include "Vantor/Remote/SpeakersPanel.h"

#include <QSettings>
#include <QToolButton>

namespace vantor {

namespace {

const QString sourceKey = QStringLiteral("library/source");

}

MusicLibrary::MusicLibrary(PlayerModel &model, QSettings &settings, MusicAssistantServers &servers)
    : m_model(model), m_settings(settings), m_servers(servers), m_folder(model), m_musicAssistant(servers),
      m_artwork(AppPaths::cacheFolder() + QStringLiteral("/artwork"), {}), m_current(&wanted()) {
    follow(m_folder);
    follow(m_musicAssistant);
    connect(&m_folder, &FolderSource::failed, &m_browser, &LibraryBrowser::failed);
    connect(&m_browser, &LibraryBrowser::sourceAsked, this, [this] { m_current->retry(); });
    connect(&servers.list(), &MusicAssistantServerList::changed, this, &MusicLibrary::settle);
    connect(&model.preferences(), &Preferences::libraryFolderChanged, this, &MusicLibrary::settle);
    model.remote().setBrowser(&m_browser, &m_artwork);
    model.imports().setLibrary(
        [this](const QList<MediaID> &ids, const Receiver &take) { findFiles(ids, take); });
}

MusicLibrary::~MusicLibrary() {
    m_model.imports().setLibrary({});
    m_model.remote().setBrowser(nullptr);
    m_window.reset();
    m_folder.disconnect(this);
    m_musicAssistant.disconnect(this);
    m_artwork.setBackend(nullptr);
    m_browser.setBackend(nullptr);
    m_current->close();
}

void MusicLibrary::follow(LibrarySource &source) {
    const auto whenCurrent = [this, &source](void (MusicLibrary::*take)()) {
        return [this, &source, take] {
            if (m_isOpen && m_current == &source)
                (this->*take)();
        };
    };
    connect(&source, &LibrarySource::backendChanged, this, whenCurrent(&MusicLibrary::takeBackend));
    connect(&source, &LibrarySource::contentChanged, this, whenCurrent(&MusicLibrary::takeContent));
    connect(&source, &LibrarySource::capabilitiesChanged, this, whenCurrent(&MusicLibrary::takeCapabilities));
    connect(&source, &LibrarySource::activityChanged, this, whenCurrent(&MusicLibrary::takeActivity));
    connect(&source, &LibrarySource::nameChanged, this, &MusicLibrary::sourcesChanged);
}

// The sources

QList<LibrarySource *> MusicLibrary::sources() {
    if (m_musicAssistant.isSetUp())
        return {&m_folder, &m_musicAssistant};
    return {&m_folder};
}

LibrarySource &MusicLibrary::current() {
    return *m_current;
}

// The chosen one; before any choice a server counts more than a folder that there is not.
LibrarySource &MusicLibrary::wanted() {
    const QString chosen = m_settings.value(sourceKey).toString();
    const bool wantsServer =
        chosen.isEmpty() ? m_model.preferences().libraryFolder().isEmpty() : chosen == m_musicAssistant.key();
    if (m_musicAssistant.isSetUp() && wantsServer)
        return m_musicAssistant;
    return m_folder;
}

void MusicLibrary::choose(LibrarySource &source) {
    m_settings.setValue(sourceKey, source.key());
    settle();
}

void MusicLibrary::settle() {
    LibrarySource &next = wanted();
    if (m_current != &next) {
        LibrarySource &before = *m_current;
        m_current = &next;
        if (m_isOpen) {
            before.close();
            next.open();
            takeBackend();
        }
    }
    Q_EMIT sourcesChanged();
}

void MusicLibrary::open() {
    if (std::exchange(m_isOpen, true))
        return;
    m_current->open();
    takeBackend();
}

void MusicLibrary::resume() {
    if (m_current == &m_musicAssistant)
        open();
}

void MusicLibrary::takeBackend() {
    m_artwork.setBackend(m_current->backend());
    if (sources().size() == 1 && m_model.preferences().libraryFolder().isEmpty())
        m_browser.setUnavailable(
            LibraryFailure{.sentence = tr("Choose a music folder under Settings › Library.\n"
                                          "Add a Music Assistant server under Settings › Music Assistant."),
                           .isSetup = true});
    else if (m_current->backend())
        m_browser.setBackend(m_current->backend());
    else
        m_browser.setUnavailable(m_current->failure());
    takeActivity();
}

void MusicLibrary::takeContent() {
    if (m_browser.state() == LibraryBrowser::State::failed)
        m_browser.retry(); // what was not there has come
    else
        m_browser.refresh();
}

void MusicLibrary::takeCapabilities() {
    m_browser.refreshCapabilities();
}

void MusicLibrary::takeActivity() {
    m_browser.setInterrupted(m_current->isInterrupted());
    if (m_window)
        m_window->setSourceStatus(m_current->activity());
}

// What is done with them

void MusicLibrary::showWindow() {
    open();
    if (!m_window) {
        m_window = std::make_unique<LibraryWindow>(
            m_browser, m_artwork, m_settings,
            [this](const QList<MediaID> &ids, const Receiver &receive) { findFiles(ids, receive); });
        m_window->setSourceSwitcher(new SourceSwitcher(*this, m_window.get()));
        m_window->setOutputPicker(makeOutputButton(m_model.remote(), m_window.get()));
        connect(m_window.get(), &LibraryWindow::settingsAsked, this, [this] {
            Q_EMIT settingsAsked(m_current == &m_folder ? PreferencesPage::library
                                                        : PreferencesPage::musicAssistant);
        });
        takeActivity();
    }
    m_window->bringToFront();
}

// A server has no files: what it is to play it plays itself.
void MusicLibrary::findFiles(const QList<MediaID> &ids, const Receiver &take) {
    if (m_current == &m_folder)
        m_folder.findFiles(ids, take);
    else
        m_browser.play({ids, PlayMode::append()});
}

void MusicLibrary::rescan() {
    if (m_isOpen && m_current == &m_folder && m_browser.state() == LibraryBrowser::State::failed)
        m_browser.retry();
    else
        m_folder.rescan();
}

} // namespace vantor
