#include "Vantor/Library/MusicLibrary.h"

#include "FolderBackendKit/FolderBackend.h"
#include "Platform/AppPaths.h"
#include "Vantor/Library/LibraryWindow.h"
#include "Vantor/Model/PlayerModel.h"

#include <QPointer>

namespace vantor {

MusicLibrary::MusicLibrary(PlayerModel &model, QSettings &settings)
    : m_model(model), m_settings(settings), m_output(model),
      m_artwork(AppPaths::cacheFolder() + QStringLiteral("/artwork"), {}) {
    connect(&model.preferences(), &Preferences::libraryFolderChanged, this, [this] {
        if (m_folder)
            useFolder();
    });
    model.remote().setBrowser(&m_browser);
    model.setLibrary([this](const QList<MediaID> &ids, const Receiver &take) { findFiles(ids, take); });
}

MusicLibrary::~MusicLibrary() {
    m_model.setLibrary({});
    m_model.remote().setBrowser(nullptr);
    m_window.reset();
    m_updates = {};
    m_output.setTrackFinder({});
    m_artwork.setBackend(nullptr);
    m_browser.setBackend(nullptr);
}

void MusicLibrary::open() {
    if (!m_folder)
        useFolder();
}

void MusicLibrary::useFolder() {
    m_folder = std::make_shared<FolderBackend>(m_model.preferences().libraryFolder(),
                                               AppPaths::dataFolder() + QStringLiteral("/music-folder.index"),
                                               m_output);
    // The output may live longer than the folder that it asks.
    m_output.setTrackFinder([weak = std::weak_ptr(m_folder)](const QUrl &file) {
        const auto folder = weak.lock();
        return folder ? folder->trackOf(file) : std::nullopt;
    });
    m_updates = m_folder->statusUpdates();
    take({});
    followStatus();
    m_artwork.setBackend(m_folder);
    m_browser.setBackend(m_folder);
}

void MusicLibrary::showWindow() {
    open();
    if (!m_window) {
        m_window = std::make_unique<LibraryWindow>(
            m_browser, m_artwork, m_settings,
            [this](const QList<MediaID> &ids, const Receiver &receive) { findFiles(ids, receive); });
        connect(m_window.get(), &LibraryWindow::settingsAsked, this, &MusicLibrary::settingsAsked);
        take(m_status);
    }
    m_window->bringToFront();
}

QCoro::Task<> MusicLibrary::findFiles(QList<MediaID> ids, Receiver take) {
    const std::shared_ptr<FolderBackend> folder = m_folder;
    if (!folder)
        co_return;
    const QPointer<MusicLibrary> self(this);
    std::vector<Track> tracks;
    std::optional<LibraryFailure> failure;
    try {
        tracks = co_await folder->localTracks(ids);
    } catch (...) {
        failure = LibraryFailure::of(std::current_exception());
    }
    if (!self)
        co_return;
    if (failure)
        Q_EMIT m_browser.failed(failure->sentence);
    else
        take(tracks);
}

void MusicLibrary::rescan() {
    open();
    if (m_browser.state() == LibraryBrowser::State::failed)
        m_browser.retry();
    else
        reindex();
}

QCoro::Task<> MusicLibrary::reindex() {
    const std::shared_ptr<FolderBackend> folder = m_folder;
    const QPointer<MusicLibrary> self(this);
    std::optional<LibraryFailure> failure;
    try {
        co_await folder->reindex();
    } catch (...) {
        failure = LibraryFailure::of(std::current_exception());
    }
    if (self && failure)
        Q_EMIT m_browser.failed(failure->sentence);
}

QCoro::Task<> MusicLibrary::followStatus() {
    const QPointer<MusicLibrary> self(this);
    const std::shared_ptr<FolderBackend> folder = m_folder;
    while (true) {
        const std::optional<FolderIndexStatus> status = co_await m_updates.next();
        if (!self || folder != m_folder || !status)
            co_return;
        take(*status);
    }
}

void MusicLibrary::take(const FolderIndexStatus &status) {
    const bool hasChanged = status.revision != m_status.revision;
    m_status = status;
    if (hasChanged && m_browser.state() == LibraryBrowser::State::failed)
        m_browser.retry(); // the folder has come back
    else if (hasChanged)
        m_browser.refresh();
    const bool isAtRest = status.state == FolderIndexStatus::State::ready && status.note.isEmpty();
    if (m_window)
        m_window->setSourceStatus(isAtRest ? QString() : this->status());
    Q_EMIT statusChanged();
}

QString MusicLibrary::status() const {
    switch (m_status.state) {
    case FolderIndexStatus::State::notConnected:
        return {};
    case FolderIndexStatus::State::indexing:
        return m_status.filesTotal == 0 ? tr("Looking through the music folder…")
                                        : tr("Reading your music: %L1 of %L2 files")
                                              .arg(m_status.filesDone)
                                              .arg(m_status.filesTotal);
    case FolderIndexStatus::State::failed:
        return m_status.message;
    case FolderIndexStatus::State::ready:
        break;
    }
    const int tracks = m_status.summary.reused + m_status.summary.loaded;
    const QString count = tracks == 1 ? tr("1 track.") : tr("%L1 tracks.").arg(tracks);
    return m_status.note.isEmpty() ? count : m_status.note;
}

} // namespace vantor
