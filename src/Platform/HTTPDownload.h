#pragma once

#include "Platform/AsyncStream.h"

#include <QNetworkReply>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <functional>
#include <memory>

namespace vantor {

/// What a server has answered, as far as it came.
struct HTTPAnswer {
    enum class End { finished, tooLong, timedOut, abandoned };

    End end = End::finished;
    int status = 0; ///< 0 when there was no answer
    QByteArray body = {};
    bool isBroken = false;  ///< no connection, no trust, or the body ended too early
    QString errorText = {}; ///< Qt's own words
    QList<QNetworkReply::RawHeaderPair> headers = {};

    /// Empty when there is none of this name.
    [[nodiscard]] QByteArray header(QByteArrayView name) const;
};

/// Receives the answer to one request, bounded in size and time while it comes. Main thread.
class HTTPDownload : public QObject {
  public:
    struct Limits {
        qint64 maxBytes = 0;
        std::chrono::milliseconds timeout{};  ///< for all of it
        std::chrono::milliseconds silence{0}; ///< in which nothing comes; 0: as long as `timeout`
    };

    /// `reply` is of `network`, which lasts as long as the download; becomes the download's.
    HTTPDownload(std::shared_ptr<QNetworkAccessManager> network, QNetworkReply *reply, const Limits &limits);

    /// Ends with the reply. Not inside its signal: there it must not be destroyed.
    [[nodiscard]] const AsyncStream<bool> &finished() const { return m_finished; }
    /// Once, when it has finished.
    [[nodiscard]] HTTPAnswer takeAnswer();
    /// Lets go of connection and network at once; whoever waits gets an answer that says so.
    void abandon();

    /// Called with what has come and what the server says will come, or a number below 1.
    std::function<void(qint64 received, qint64 total)> onProgress;

  private:
    void read();
    void stop(HTTPAnswer::End end);

    std::shared_ptr<QNetworkAccessManager> m_network;
    std::unique_ptr<QNetworkReply> m_reply;
    const Limits m_limits;
    HTTPAnswer m_answer;
    AsyncStreamProducer<bool> m_whenFinished;
    AsyncStream<bool> m_finished;
    QTimer m_timer;
    QTimer m_silence;
};

} // namespace vantor
