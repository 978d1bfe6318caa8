#include "Vantor/Library/FolderSource.h"

#include "FolderBackendKit/FolderBackend.h"
#include "Platform/AppPaths.h"
#include "Vantor/Library/LibraryTexts.h"
#include "Vantor/Model/PlayerModel.h"

#include <QPointer>

namespace vantor {

FolderSource::FolderSource(PlayerModel &model) : m_preferences(model.preferences()), m_output(model) {
    connect(&m_preferences, &Preferences::libraryFolderChanged, this, [this] {
        if (m_isOpen)
            use();
    });
}

FolderSource::~FolderSource() = default;

QString FolderSource::key() const {
    return QStringLiteral("folder");
}

QString FolderSource::name() const {
    return tr("Music Folder");
}

void FolderSource::open() {
    if (!std::exchange(m_isOpen, true))
        use();
}

void FolderSource::close() {
    m_isOpen = false;
    leave();
    m_status = {};
    setBackend(nullptr);
}

void FolderSource::leave() {
    m_updates = {};
    m_output.setTrackFinder({});
    m_folder.reset();
}

void FolderSource::use() {
    m_folder = std::make_shared<FolderBackend>(m_preferences.libraryFolder(),
                                               AppPaths::dataFolder() + QStringLiteral("/music-folder.index"),
                                               m_output);
    // The output may live longer than the folder that it asks.
    m_output.setTrackFinder([weak = std::weak_ptr(m_folder)](const QUrl &file) {
        const auto folder = weak.lock();
        return folder ? folder->trackOf(file) : std::nullopt;
    });
    m_updates = m_folder->statusUpdates();
    m_status = {};
    Q_EMIT activityChanged();
    followStatus();
    setBackend(m_folder);
}

QCoro::Task<> FolderSource::rescan() {
    const QPointer<FolderSource> self(this);
    const bool isOnlyForThis = !m_folder;
    if (isOnlyForThis)
        use();
    const std::shared_ptr<FolderBackend> folder = m_folder;
    std::optional<LibraryFailure> failure;
    try {
        if (isOnlyForThis)
            co_await folder->connect();
        co_await folder->reindex();
    } catch (...) {
        failure = LibraryFailure::of(std::current_exception());
    }
    if (!self)
        co_return;
    if (isOnlyForThis && !m_isOpen && m_folder == folder) {
        leave();
        folder->disconnect();
    }
    if (failure)
        Q_EMIT failed(failure->sentence);
}

QCoro::Task<> FolderSource::findFiles(QList<MediaID> ids,
                                      std::function<void(const std::vector<Track> &)> take) {
    const std::shared_ptr<FolderBackend> folder = m_folder;
    if (!folder)
        co_return;
    const QPointer<FolderSource> self(this);
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
        Q_EMIT failed(failure->sentence);
    else
        take(tracks);
}

QCoro::Task<> FolderSource::followStatus() {
    const QPointer<FolderSource> self(this);
    const std::shared_ptr<FolderBackend> folder = m_folder;
    while (true) {
        const std::optional<FolderIndexStatus> status = co_await m_updates.next();
        if (!self || folder != m_folder || !status)
            co_return;
        take(*status);
    }
}

void FolderSource::take(const FolderIndexStatus &status) {
    const bool hasChanged = status.revision != m_status.revision;
    m_status = status;
    if (hasChanged)
        Q_EMIT contentChanged();
    Q_EMIT activityChanged();
}

QString FolderSource::activity() const {
    if (m_status.state != FolderIndexStatus::State::ready)
        return status();
    return LibraryTexts::joined({unreadable(), m_status.note});
}

QString FolderSource::status() const {
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
    QStringList sentences{m_status.note.isEmpty() ? count : m_status.note, unreadable()};
    sentences.removeAll(QString());
    return sentences.join(u' ');
}

QString FolderSource::unreadable() const {
    const int count = m_status.summary.unreadable;
    if (count == 0)
        return {};
    return count == 1 ? tr("1 file can't be read.") : tr("%L1 files can't be read.").arg(count);
}

} // namespace vantor
