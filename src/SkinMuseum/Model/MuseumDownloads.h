#pragma once

#include "SkinMuseum/Client/MuseumDownloader.h"
#include "SkinMuseum/MuseumError.h"

#include <QHash>
#include <QObject>

#include <deque>
#include <map>
#include <stop_token>

namespace vantor {

/// The downloads of a run: a few at a time, the others in their order. Main thread; borrows the downloader.
class MuseumDownloads : public QObject {
    Q_OBJECT

  public:
    static constexpr int mostAtOnce = 4;

    struct State {
        bool isRunning = false;
        std::optional<double> fraction = {};   ///< 0 … 1; none while it is not known how much will come
        std::optional<MuseumError> error = {}; ///< of one that has failed

        [[nodiscard]] bool isUnderWay() const { return !error; }
    };

    MuseumDownloads(MuseumDownloader &downloader, MuseumDownloader::Existing existing,
                    QObject *parent = nullptr);

    /// Into the skins folder. One that is under way goes on.
    void start(const MuseumSkin &skin, const QString &folder);
    /// One that is under way is given up, and leaves nothing; but it may just have come.
    void cancel(const QString &md5);
    /// None for a skin that was never asked for, and for one that has come.
    [[nodiscard]] const State *state(const QString &md5) const;
    [[nodiscard]] int countUnderWay() const { return m_running + static_cast<int>(m_waiting.size()); }

  Q_SIGNALS:
    void changed(const QString &md5);
    void finished(const QString &md5, const vantor::MuseumDownloadResult &result);
    void failed(const QString &md5, const vantor::MuseumError &error);

  private:
    struct Waiting {
        MuseumSkin skin;
        QString folder;
    };

    void startNext();
    QCoro::Task<> run(MuseumSkin skin, QString folder, std::stop_token stop);
    void advance(const QString &md5, qint64 received, qint64 total);

    MuseumDownloader &m_downloader;
    const MuseumDownloader::Existing m_existing;
    QHash<QString, State> m_states;
    std::map<QString, std::stop_source> m_stops; ///< of those that run
    std::deque<Waiting> m_waiting;
    int m_running = 0;
};

} // namespace vantor
