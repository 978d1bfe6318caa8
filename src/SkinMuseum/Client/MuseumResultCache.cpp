#include "SkinMuseum/Client/MuseumResultCache.h"

#include "Platform/CacheFolder.h"

#include <QCoroFuture>
#include <QCryptographicHash>
#include <QFileInfo>
#include <QtConcurrentRun>

namespace vantor {

using Entry = MuseumResultCache::Entry;

static std::optional<Entry> load(const QString &path, const QDateTime &freshSince) {
    const QByteArray answer = CacheFolder::read(path, MuseumResultCache::maxAnswer);
    if (answer.isEmpty())
        return std::nullopt;
    return Entry{answer, QFileInfo(path).lastModified() < freshSince};
}

MuseumResultCache::MuseumResultCache(QString directory, const Limits &limits, std::function<QDateTime()> now)
    : m_directory(std::move(directory)), m_limits(limits), m_now(std::move(now)) {
    m_pool.setMaxThreadCount(1);
}

MuseumResultCache::~MuseumResultCache() {
    m_pool.waitForDone();
}

QString MuseumResultCache::pathOf(const QString &key) const {
    const QByteArray hash = QCryptographicHash::hash(key.toUtf8(), QCryptographicHash::Sha256);
    return m_directory + QLatin1Char('/') + QString::fromLatin1(hash.toHex()) + QStringLiteral(".json");
}

QCoro::Task<std::optional<Entry>> MuseumResultCache::page(QString key) {
    const QDateTime freshSince = m_now().addSecs(-m_limits.ttl.count());
    const QFuture<std::optional<Entry>> loading = QtConcurrent::run(&m_pool, &load, pathOf(key), freshSince);
    std::optional<Entry> entry = co_await loading;
    co_return entry;
}

void MuseumResultCache::store(const QString &key, const QByteArray &answer) {
    if (answer.size() > maxAnswer)
        return;
    m_pool.start([path = pathOf(key), answer, time = m_now(), directory = m_directory, limits = m_limits] {
        CacheFolder::write(path, answer, time);
        CacheFolder::trim(directory, limits.maxBytes, limits.maxEntries);
    });
}

} // namespace vantor
