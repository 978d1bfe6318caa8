#include "Vantor/Model/QueueImports.h"

#include "Vantor/Remote/RemoteOutput.h"

#include <QPointer>

#include <algorithm>

namespace vantor {

QueueImports::QueueImports(Player &player, RemoteOutput &remote, QObject *parent)
    : QObject(parent), m_player(player), m_remote(remote) {
    connect(&m_importer, &TrackImporter::imported, this, &QueueImports::take);
    connect(&m_importer, &TrackImporter::finished, this, &QueueImports::finish);
}

void QueueImports::insert(const QList<QUrl> &music, int row) {
    start(music, planInFrontOf(row));
}

void QueueImports::openItems(const QList<MediaID> &ids) {
    if (m_remote.playsItems())
        m_remote.play(ids, PlayMode::replace(0));
    else
        start(ids, {.replaces = true});
}

void QueueImports::insertItems(const QList<MediaID> &ids, int row) {
    if (m_remote.playsItems())
        m_remote.play(ids, PlayMode::append());
    else
        start(ids, planInFrontOf(row));
}

QueueImports::Plan QueueImports::planInFrontOf(int row) const {
    Plan plan;
    if (row >= 0 && row < m_player.queue().count())
        plan.before = m_player.queue().tracks()[static_cast<std::size_t>(row)].id;
    return plan;
}

void QueueImports::start(const QList<MediaID> &ids, const Plan &plan) {
    if (!m_library || ids.isEmpty())
        return;
    m_library(ids, [self = QPointer(this), plan = Plan(plan)](const std::vector<Track> &tracks) mutable {
        if (self)
            self->add(tracks, plan);
    });
}

void QueueImports::start(const QList<QUrl> &music, const Plan &plan) {
    if (music.isEmpty())
        return;
    if (plan.replaces)
        m_remote.deselect(); // files play here, and the windows show it
    if (m_isHolding)
        m_held.push_back({music, plan});
    else
        import(music, plan);
}

void QueueImports::release() {
    m_isHolding = false;
    for (const Held &held : std::exchange(m_held, {}))
        import(held.music, held.plan);
}

void QueueImports::import(const QList<QUrl> &music, const Plan &plan) {
    if (plan.replaces) {
        m_importer.cancel();
        for (auto &[number, older] : m_imports)
            older.replaces = false;
    }
    m_imports.emplace(m_importer.import(music), plan);
}

void QueueImports::cancel() {
    m_importer.cancel();
    m_imports.clear();
    m_held.clear();
}

void QueueImports::take(quint64 import, const std::vector<Track> &tracks) {
    if (const auto plan = m_imports.find(import); plan != m_imports.end())
        add(tracks, plan->second);
}

void QueueImports::add(const std::vector<Track> &tracks, Plan &plan) {
    const bool replaces = std::exchange(plan.replaces, false);
    if (replaces)
        m_player.clearQueue();
    const std::vector<Track> &queued = m_player.queue().tracks();
    auto place = queued.end();
    if (plan.before)
        place = std::ranges::find(queued, *plan.before, &Track::id);
    const auto first = static_cast<int>(place - queued.begin());
    m_player.insertTracks(tracks, first);
    if (replaces)
        m_player.play(first);
}

void QueueImports::finish(quint64 import, int added, const std::vector<SkippedFile> &skipped) {
    if (m_imports.erase(import) > 0) {
        m_skippedFiles = skipped;
        Q_EMIT finished(added, skipped);
    }
    if (m_imports.empty())
        Q_EMIT allFinished();
}

} // namespace vantor
