#include "SkinMuseum/Client/MuseumDownloader.h"

#include "SkinLibrary/Ingest/SkinContentHash.h"
#include "SkinMuseum/Client/MuseumPartialFile.h"
#include "SkinMuseum/Client/MuseumTransport.h"
#include "SkinMuseum/MuseumError.h"

#include <QCoroFuture>
#include <QScopeGuard>
#include <QThreadPool>
#include <QtConcurrentRun>

#include <vector>

namespace vantor {

/// What the downloader shares with what is under way.
struct MuseumDownloader::Work {
    QThreadPool pool;      ///< one thread, so that two skins of one name take turns in looking for a free one
    bool isClosed = false; ///< main thread
    std::vector<std::weak_ptr<MuseumPartialFile>> partials; ///< the worker's, while it works
};

namespace {

using Partial = std::shared_ptr<MuseumPartialFile>;

/// The archive, or at least what came of it: its checksum tells.
QByteArray archive(const HTTPAnswer &answer) {
    if (answer.status == 0 || answer.end == HTTPAnswer::End::timedOut)
        throw MuseumError::offline();
    if (answer.status < 200 || answer.status > 299)
        throw MuseumError::http(answer.status);
    if (answer.end == HTTPAnswer::End::tooLong)
        throw MuseumError::tooLarge();
    return answer.body;
}

/// What is thrown inside a worker would not come out as what it is.
template <typename T, typename F>
std::variant<T, MuseumError> outcome(F work) {
    try {
        return work();
    } catch (const MuseumError &error) {
        return error;
    }
}

template <typename T>
T taken(std::variant<T, MuseumError> outcome) {
    if (const auto *error = std::get_if<MuseumError>(&outcome))
        throw *error;
    return std::get<T>(std::move(outcome));
}

using Begun = std::variant<Partial, MuseumError>;
using Saved = std::variant<MuseumDownloadResult, MuseumError>;

Saved saved(const Partial &partial, const MuseumSkin &skin, const HTTPAnswer &answer) {
    const auto discard = qScopeGuard([&] { partial->discard(); });
    return outcome<MuseumDownloadResult>([&] {
        const QByteArray bytes = archive(answer);
        if (SkinContentHash::digests(bytes).md5 != skin.md5)
            throw MuseumError::checksumMismatch();
        return partial->save(bytes, MuseumDownloader::sanitizedFilename(skin.filename, skin.md5));
    });
}

} // namespace

MuseumDownloader::MuseumDownloader(std::shared_ptr<MuseumTransport> transport, QByteArray userAgent,
                                   qint64 maxBytes)
    : m_transport(std::move(transport)), m_userAgent(std::move(userAgent)), m_maxBytes(maxBytes),
      m_work(std::make_shared<Work>()) {
    m_work->pool.setMaxThreadCount(1);
}

MuseumDownloader::~MuseumDownloader() {
    m_work->isClosed = true;
    m_work->pool.waitForDone();
    for (const std::weak_ptr<MuseumPartialFile> &partial : m_work->partials) {
        if (const Partial open = partial.lock())
            open->discard();
    }
}

QCoro::Task<QUrl> MuseumDownloader::found(std::shared_ptr<Work> work, Existing existing, QString md5) {
    // An index that cannot be read tells the user itself; it may only have been interrupted. When it fails
    // again, the file is downloaded, and no copy replaced.
    for (int attempt = 0; attempt < 2 && !work->isClosed; ++attempt) {
        try {
            const QFuture<QUrl> looking = existing(md5);
            QUrl file = co_await looking;
            co_return file;
        } catch (...) {
            continue;
        }
    }
    co_return QUrl();
}

QCoro::Task<MuseumDownloadResult> MuseumDownloader::download(MuseumSkin skin, QString folder,
                                                             Existing existing, Progress progress,
                                                             std::stop_token stop) {
    if (folder.isEmpty())
        throw MuseumError::noFolder();
    const std::shared_ptr<Work> work = m_work;
    const std::shared_ptr<MuseumTransport> transport = m_transport;
    const MuseumRequest request{.url = skin.downloadURL,
                                .userAgent = m_userAgent,
                                .maxBytes = m_maxBytes,
                                .onProgress = progress,
                                .stop = stop};
    const auto goOn = [&work, &stop] {
        if (work->isClosed || stop.stop_requested())
            throw MuseumError::offline();
    };
    const QUrl file = co_await found(work, existing, skin.md5);
    if (!file.isEmpty())
        co_return MuseumDownloadResult{MuseumDownloadResult::Case::alreadyHad, file};
    goOn();
    // Before anything is fetched, so that a folder that takes nothing is told of at once.
    const QFuture<Begun> beginning = QtConcurrent::run(&work->pool, [&partials = work->partials, folder] {
        return outcome<Partial>([&] {
            auto partial = std::make_shared<MuseumPartialFile>(folder);
            std::erase_if(partials, [](const auto &other) { return other.expired(); });
            partials.push_back(partial);
            return partial;
        });
    });
    const Partial partial = taken(Begun(co_await beginning));
    goOn();
    const HTTPAnswer answer = co_await transport->send(request);
    goOn();
    const QFuture<Saved> saving = QtConcurrent::run(&work->pool, &saved, partial, skin, answer);
    const Saved result = co_await saving;
    co_return taken(result);
}

} // namespace vantor
