#include "SkinBrowser/SkinLibraryModel.h"

#include "FolderWatching/FolderWatcher.h"
#include "SkinBrowser/SharedSkinIndex_p.h"
#include "SkinBrowser/SkinTrash_p.h"
#include "SkinLibrary/SkinLibraryError.h"

namespace vantor {

namespace {

constexpr std::chrono::milliseconds contentInterval{250};

} // namespace

template <class Action>
void SkinLibraryModel::post(Action action) {
    QMetaObject::invokeMethod(this, std::move(action), Qt::QueuedConnection);
}

template <class Action>
SkinLibraryModel::Problem SkinLibraryModel::attempt(const Action &action) {
    try {
        action();
        return {};
    } catch (const SkinLibraryError &error) {
        return {error.description(), error.isUnusableIndex()};
    } catch (const std::exception &error) { // no memory, no more threads
        return {SkinLibraryError::folderUnreadable(QString::fromLocal8Bit(error.what())).description()};
    }
}

SkinLibraryModel::SkinLibraryModel(const QUrl &index, QObject *parent)
    : QObject(parent), m_index(std::make_unique<SharedSkinIndex>(index)) {
    m_passes.setMaxThreadCount(1);
    m_errands.setMaxThreadCount(1);
    m_contentPause.setSingleShot(true);
    m_contentPause.setInterval(contentInterval);
    connect(&m_contentPause, &QTimer::timeout, this, [this] {
        if (m_hasNewContent)
            noteContent();
    });
    runErrand([this] { readCounts(); });
}

SkinLibraryModel::~SkinLibraryModel() {
    m_stopPass.request_stop();
    m_quit.request_stop();
    m_passes.waitForDone();
    m_errands.waitForDone();
}

const QUrl &SkinLibraryModel::index() const {
    return m_index->url();
}

QString SkinLibraryModel::watchNote() const {
    return m_watcher ? m_watcher->pollingReason() : QString();
}

void SkinLibraryModel::setFolder(const QString &path) {
    if (path == m_folder)
        return;
    m_folder = path;
    m_stopPass.request_stop();
    m_next.pass = false;
    m_watcher.reset();
    if (!path.isEmpty()) {
        m_watcher = std::make_unique<FolderWatcher>(path);
        connect(m_watcher.get(), &FolderWatcher::changed, this, [this] { reindex(); });
        connect(m_watcher.get(), &FolderWatcher::pollingChanged, this, &SkinLibraryModel::watchNoteChanged);
    }
    if (!m_isIndexUnusable)
        setProblem({}); // that was the other folder's
    reindex();
    Q_EMIT folderChanged();
    Q_EMIT watchNoteChanged();
}

void SkinLibraryModel::reindex(bool full) {
    if (!m_folder.isEmpty())
        begin({.pass = true, .full = full});
}

void SkinLibraryModel::cancel() {
    m_next.pass = false;
    m_stopPass.request_stop();
}

void SkinLibraryModel::resetIndex() {
    Q_EMIT indexAboutToReset();
    m_stopPass.request_stop();
    begin({.pass = !m_folder.isEmpty(), .reset = true});
}

void SkinLibraryModel::begin(const Turn &turn) {
    m_next.full = turn.full || (m_next.pass && m_next.full);
    m_next.pass = m_next.pass || turn.pass;
    m_next.reset = m_next.reset || turn.reset;
    if (m_isBusy)
        return;
    m_isBusy = true;
    const Turn now = std::exchange(m_next, {});
    m_stopPass = {};
    m_isIndexing = now.pass;
    m_progress = {};
    m_passes.start([this, now, folder = QUrl::fromLocalFile(m_folder), stop = m_stopPass.get_token()] {
        work(now, folder, stop);
    });
    Q_EMIT progressChanged();
}

void SkinLibraryModel::work(const Turn &turn, const QUrl &folder, const std::stop_token &stop) {
    std::optional<SkinIndexSummary> summary;
    const Problem problem = attempt([&] {
        if (turn.reset) {
            m_index->reset();
            post([this] { noteContent(); });
        }
        if (turn.pass)
            summary = pass(turn.full, folder, stop);
    });
    post([this, summary, problem] { finish(summary, problem); });
}

SkinIndexSummary SkinLibraryModel::pass(bool full, const QUrl &folder, const std::stop_token &stop) {
    return m_index->use([&](SkinIndexStore &store) {
        SkinIndexer indexer(folder, store);
        const std::stop_callback cancelPass(stop, [&] { indexer.cancel(); });
        return indexer.run(full, [&](const SkinIndexProgress &progress) {
            if (stop.stop_requested())
                indexer.cancel(); // again, for a stop that came before the run
            post([this, progress, counts = store.counts()] { advance(progress, counts); });
        });
    });
}

void SkinLibraryModel::advance(const SkinIndexProgress &progress, const SkinIndexCounts &counts) {
    m_progress = progress;
    setCounts(counts);
    if (progress.phase == SkinIndexProgress::Phase::indexing && progress.processed > 0)
        noteContent();
    Q_EMIT progressChanged();
}

void SkinLibraryModel::finish(const std::optional<SkinIndexSummary> &summary, const Problem &problem) {
    m_isBusy = false;
    m_isIndexing = false;
    if (summary)
        m_summary = summary;
    setProblem(problem);
    Q_EMIT progressChanged();
    if (m_next.pass || m_next.reset)
        begin({});
}

void SkinLibraryModel::readCounts() {
    const Problem problem = attempt([this] {
        const SkinIndexCounts counts = m_index->use([](SkinIndexStore &store) { return store.counts(); });
        post([this, counts] { setCounts(counts); });
    });
    if (!problem.sentence.isEmpty())
        post([this, problem] { setProblem(problem); });
}

void SkinLibraryModel::setCounts(const SkinIndexCounts &counts) {
    if (counts == m_counts)
        return;
    m_counts = counts;
    noteContent();
}

void SkinLibraryModel::setProblem(const Problem &problem) {
    if (problem.sentence == m_problem)
        return;
    m_problem = problem.sentence;
    m_isIndexUnusable = problem.isIndexUnusable;
    Q_EMIT problemChanged();
}

void SkinLibraryModel::noteContent() {
    m_hasNewContent = m_contentPause.isActive();
    if (m_hasNewContent)
        return;
    m_contentPause.start();
    Q_EMIT contentChanged();
}

void SkinLibraryModel::runErrand(std::function<void()> errand) {
    m_errands.start(std::move(errand));
}

void SkinLibraryModel::add(const QStringList &paths) {
    runErrand([this, paths, stop = m_quit.get_token()] {
        const Problem problem = attempt([&] {
            m_index->use([&](SkinIndexStore &store) {
                SkinIndexer indexer({}, store);
                const std::stop_callback quit(stop, [&] { indexer.cancel(); });
                indexer.add(paths);
            });
            post([this] { noteContent(); }); // a file may have come to a skin that was there
        });
        if (!problem.sentence.isEmpty())
            post([this, problem] { setProblem(problem); });
        readCounts();
    });
}

void SkinLibraryModel::moveToTrash(const QString &path, const QString &name) {
    runErrand([this, path, name] {
        const QString failure = moveSkinToTrash(*m_index, path, name);
        post([this, path, name, failure] {
            if (failure.isEmpty()) {
                noteContent();
                Q_EMIT trashed(path, name);
            } else {
                Q_EMIT trashFailed(failure);
            }
        });
        readCounts();
    });
}

} // namespace vantor
