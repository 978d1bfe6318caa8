#include "Vantor/Speaker/SpeakerThreads.h"

namespace vantor {

SpeakerThreads::SpeakerThreads(const QSettings &settings, std::shared_ptr<SendspinSource> source)
    : m_session(new SendspinSession(m_transports, m_scheduler, m_clock)),
      m_player(new SendspinPlayer(*m_session, m_scheduler, m_clock, std::move(source),
                                  std::make_unique<QSettings>(settings.fileName(), settings.format()),
                                  bufferCapacity)) {
    m_sessionThread.setObjectName(QStringLiteral("sendspin"));
    m_decodingThread.setObjectName(QStringLiteral("sendspin-decode"));
    m_session->moveToThread(&m_sessionThread);
    m_player->moveToThread(&m_decodingThread);
    connect(&m_sessionThread, &QThread::finished, m_session, &QObject::deleteLater);
    connect(&m_decodingThread, &QThread::finished, m_player, &QObject::deleteLater);
    connect(m_session, &SendspinSession::occurred, m_player, &SendspinPlayer::take);
    connect(this, &SpeakerThreads::eventCame, this, &SpeakerThreads::take, Qt::QueuedConnection);
    // In the session's thread: what the main thread does not need shall not wake it.
    connect(m_session, &SendspinSession::occurred, m_session, [this](const SendspinEvent &event) {
        if (!std::holds_alternative<SendspinEvent::Audio>(event.content))
            Q_EMIT eventCame(event, {});
    });
    connect(m_player, &SendspinPlayer::stateChanged, this, &SpeakerThreads::stateChanged);
    connect(m_player, &SendspinPlayer::streamingChanged, this, &SpeakerThreads::streamingChanged);
    connect(m_player, &SendspinPlayer::streamRefused, this, &SpeakerThreads::streamRefused);
    m_sessionThread.start(QThread::HighPriority);
    m_decodingThread.start();
}

SpeakerThreads::~SpeakerThreads() {
    leave(SendspinGoodbyeReason::shutdown);
    // The player uses the session, which ends when everything that was asked of it has been done.
    m_decodingThread.quit();
    m_decodingThread.wait();
    QMetaObject::invokeMethod(m_session, [this] { m_sessionThread.quit(); });
    m_sessionThread.wait();
}

void SpeakerThreads::connectTo(const SendspinConnectionConfiguration &configuration) {
    leave(SendspinGoodbyeReason::restart);
    m_isConnected = true;
    m_session->start(configuration);
}

void SpeakerThreads::leave(SendspinGoodbyeReason reason) {
    if (!std::exchange(m_isConnected, false))
        return;
    ++m_partings;
    m_session->stop(reason);
}

void SpeakerThreads::take(const SendspinEvent &event) {
    const auto *const end = std::get_if<SendspinEvent::Disconnected>(&event.content);
    if (end && !end->reason)
        --m_partings;
    else if (m_partings == 0) // else it comes from the server before
        Q_EMIT told(event);
}

} // namespace vantor
