#include "MusicAssistantKit/Settings/MusicAssistantTokenStore.h"

#include "MusicAssistantKit/Settings/KeychainState_p.h"

#include <QLoggingCategory>
#include <qt6keychain/keychain.h>

namespace vantor {

using namespace Qt::Literals::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(logTokens, "co.kelvane.vantor.musicassistant.tokens")

/// Runs a job that the event loop then deletes; what it found is read before.
template <typename Job, typename Found>
AsyncStream<Found> started(Job *job, Found (*read)(Job &)) {
    auto [producer, stream] = AsyncStream<Found>::make(latestValueOnly);
    const auto shared = std::make_shared<AsyncStreamProducer<Found>>(std::move(producer));
    job->setAutoDelete(true);
    job->setInsecureFallback(false);
    QObject::connect(job, &QKeychain::Job::finished, job, [job, shared, read] {
        shared->yield(read(*job));
        shared->finish();
    });
    job->start();
    return std::move(stream);
}

struct ReadResult {
    QKeychain::Error error;
    QString secret;
};

ReadResult readResult(QKeychain::ReadPasswordJob &job) {
    return {job.error(), job.textData()};
}

template <typename Job>
QKeychain::Error errorOf(Job &job) {
    return job.error();
}

/// Whether there is nobody who could keep a secret, in contrast to somebody who refuses. Both may show as
/// `OtherError`.
QCoro::Task<bool> isAbsent(QKeychain::Error error) {
    if (error == QKeychain::NoBackendAvailable || error == QKeychain::NotImplemented)
        co_return true;
    if (error != QKeychain::OtherError)
        co_return false;
    const KeychainState state = co_await keychainState();
    co_return state == KeychainState::absent;
}

/// Whether what was asked for is kept from us. A keychain that stays locked says that there is no such entry.
QCoro::Task<bool> isRefused(QKeychain::Error error) {
    if (error == QKeychain::NoError)
        co_return false;
    const KeychainState state = co_await keychainState();
    if (error == QKeychain::EntryNotFound)
        co_return state == KeychainState::locked;
    const bool absent = co_await isAbsent(error);
    co_return !absent;
}

} // namespace

MusicAssistantTokenStoreError MusicAssistantTokenStoreError::keychain(int status) {
    return {status, u"The Keychain refused the request (%1)"_s.arg(status)};
}

MusicAssistantTokenStoreError MusicAssistantTokenStoreError::notReadable() {
    return {0, u"The Keychain could not be read."_s};
}

MusicAssistantTokenStoreError MusicAssistantTokenStoreError::notCheckable() {
    return {0, u"The Keychain could not be checked for a saved token."_s};
}

MusicAssistantTokenStoreError MusicAssistantTokenStoreError::notUsable() {
    return {0, u"The Keychain could not be used."_s};
}

QString MusicAssistantTokenStore::message(Kept kept) {
    return kept == Kept::permanently
               ? u"Saved in Keychain"_s
               : u"No keychain is running on this computer: the token is kept until Vantor quits."_s;
}

QString KeychainMusicAssistantTokenStore::standardService() {
    return u"co.kelvane.vantor.musicAssistant"_s;
}

QCoro::Task<std::optional<MusicAssistantToken>> KeychainMusicAssistantTokenStore::token(QString account) {
    if (const auto found = m_session.constFind(account); found != m_session.constEnd())
        co_return *found;
    if (const auto found = m_known.constFind(account); found != m_known.constEnd())
        co_return *found;
    co_return co_await read(account, MusicAssistantTokenStoreError::notReadable());
}

QCoro::Task<std::optional<MusicAssistantTokenStore::Kept>>
KeychainMusicAssistantTokenStore::kept(QString account) {
    if (m_session.contains(account))
        co_return Kept::untilQuit;
    if (m_known.contains(account))
        co_return Kept::permanently;
    const auto found = co_await read(account, MusicAssistantTokenStoreError::notCheckable());
    co_return found ? std::optional(Kept::permanently) : std::nullopt;
}

QCoro::Task<std::optional<MusicAssistantToken>>
KeychainMusicAssistantTokenStore::read(QString account, MusicAssistantTokenStoreError failure) {
    auto [producer, stream] = AsyncStream<Reading>::make(latestValueOnly);
    auto &readers = m_readers[account];
    readers.push_back(std::make_shared<AsyncStreamProducer<Reading>>(std::move(producer)));
    if (readers.size() == 1)
        readOnce(account);
    const AsyncStream<Reading> answer = std::move(stream);
    const auto reading = co_await answer.next();
    if (!reading)
        throw MusicAssistantTokenStoreError::notUsable();
    if (reading->isRefused)
        throw failure;
    co_return reading->token;
}

QCoro::Task<> KeychainMusicAssistantTokenStore::readOnce(QString account) {
    auto *job = new QKeychain::ReadPasswordJob(m_service);
    job->setKey(account);
    const auto stream = started(job, &readResult);
    const auto result = co_await stream.next();
    Reading reading;
    if (result) {
        reading.isRefused = co_await isRefused(result->error);
        if (result->error == QKeychain::NoError) {
            reading.token = MusicAssistantToken(result->secret);
            m_known.insert(account, *reading.token);
        }
    }
    for (const auto &reader : m_readers.take(account)) {
        if (result)
            reader->yield(reading);
        reader->finish();
    }
}

QCoro::Task<MusicAssistantTokenStore::Kept>
KeychainMusicAssistantTokenStore::save(QString account, MusicAssistantToken token) {
    auto *job = new QKeychain::WritePasswordJob(m_service);
    job->setKey(account);
    job->setTextData(token.reveal());
    const auto stream = started(job, &errorOf<QKeychain::WritePasswordJob>);
    const auto error = co_await stream.next();
    if (!error)
        throw MusicAssistantTokenStoreError::notUsable();
    const bool absent = co_await isAbsent(*error);
    if (absent) {
        qCInfo(logTokens) << "no keychain: token kept for the session";
        m_session.insert(account, token);
        co_return Kept::untilQuit;
    }
    if (*error != QKeychain::NoError) {
        qCWarning(logTokens, "token store failed %d", static_cast<int>(*error));
        throw MusicAssistantTokenStoreError::keychain(*error);
    }
    m_session.remove(account);
    m_known.insert(account, token);
    qCInfo(logTokens, "token saved");
    co_return Kept::permanently;
}

QCoro::Task<> KeychainMusicAssistantTokenStore::remove(QString account) {
    m_session.remove(account);
    m_known.remove(account);
    auto *job = new QKeychain::DeletePasswordJob(m_service);
    job->setKey(account);
    const auto stream = started(job, &errorOf<QKeychain::DeletePasswordJob>);
    const auto error = co_await stream.next();
    if (!error)
        throw MusicAssistantTokenStoreError::notUsable();
    const bool refused = co_await isRefused(*error);
    if (refused) {
        qCWarning(logTokens, "token delete failed %d", static_cast<int>(*error));
        throw MusicAssistantTokenStoreError::keychain(*error);
    }
    qCInfo(logTokens, "token removed");
}

} // namespace vantor
