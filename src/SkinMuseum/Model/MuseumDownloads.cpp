#include "SkinMuseum/Model/MuseumDownloads.h"

#include <QPointer>

namespace vantor {

MuseumDownloads::MuseumDownloads(MuseumDownloader &downloader, MuseumDownloader::Existing existing,
                                 QObject *parent)
    : QObject(parent), m_downloader(downloader), m_existing(std::move(existing)) {}

const MuseumDownloads::State *MuseumDownloads::state(const QString &md5) const {
    const auto state = m_states.constFind(md5);
    return state != m_states.cend() ? &*state : nullptr;
}

void MuseumDownloads::start(const MuseumSkin &skin, const QString &folder) {
    if (const State *const known = state(skin.md5); known && known->isUnderWay())
        return;
    m_states.insert(skin.md5, {});
    m_waiting.push_back({skin, folder});
    Q_EMIT changed(skin.md5);
    startNext();
}

void MuseumDownloads::cancel(const QString &md5) {
    if (const auto stop = m_stops.find(md5); stop != m_stops.end()) {
        stop->second.request_stop();
        return;
    }
    const auto isMeant = [&](const Waiting &waiting) { return waiting.skin.md5 == md5; };
    if (std::erase_if(m_waiting, isMeant) == 0)
        return;
    m_states.remove(md5);
    Q_EMIT changed(md5);
}

void MuseumDownloads::startNext() {
    while (m_running < mostAtOnce && !m_waiting.empty()) {
        const Waiting next = std::move(m_waiting.front());
        m_waiting.pop_front();
        ++m_running;
        m_states[next.skin.md5].isRunning = true;
        run(next.skin, next.folder, m_stops[next.skin.md5].get_token());
    }
}

QCoro::Task<> MuseumDownloads::run(MuseumSkin skin, QString folder, std::stop_token stop) {
    const QPointer<MuseumDownloads> self(this);
    const QString md5 = skin.md5;
    const MuseumDownloader::Progress progress = [self, md5](qint64 received, qint64 total) {
        if (self)
            self->advance(md5, received, total);
    };
    std::optional<MuseumDownloadResult> result;
    std::optional<MuseumError> error;
    try {
        result = co_await m_downloader.download(skin, folder, m_existing, progress, stop);
    } catch (const MuseumError &thrown) {
        error = thrown;
    }
    if (!self)
        co_return;
    --m_running;
    m_stops.erase(md5);
    const bool isGivenUp = error && stop.stop_requested();
    if (error && !isGivenUp)
        m_states.insert(md5, {.error = error});
    else
        m_states.remove(md5);
    startNext();
    Q_EMIT changed(md5);
    if (!self)
        co_return;
    if (result)
        Q_EMIT finished(md5, *result);
    else if (!isGivenUp)
        Q_EMIT failed(md5, *error);
}

void MuseumDownloads::advance(const QString &md5, qint64 received, qint64 total) {
    const auto state = m_states.find(md5);
    if (state == m_states.end() || total < 1)
        return;
    state->fraction = std::clamp(static_cast<double>(received) / static_cast<double>(total), 0.0, 1.0);
    Q_EMIT changed(md5);
}

} // namespace vantor
