#pragma once

#include "Vantor/App/LaunchOptions.h"

#include <QLocalServer>
#include <QLockFile>
#include <QObject>

#include <memory>

namespace vantor {

/// Makes sure that one player runs per user and display: the first start claims the place, later ones hand
/// over what they were asked for through a local socket and end. Main thread, with an application object.
class SingleInstance : public QObject {
    Q_OBJECT

  public:
    enum class Outcome {
        first,      ///< this process is the player; it hears of later starts by requested()
        handedOver, ///< the running player has taken it
        unanswered, ///< a player holds the place but does not answer
    };

    /// `path`: of the socket; its folder exists. A lock file goes beside it.
    explicit SingleInstance(const QString &path, QObject *parent = nullptr);
    ~SingleInstance() override;

    /// For this user and display; empty where there is no folder for it.
    [[nodiscard]] static QString defaultPath();

    /// Claims the place or hands `options` over; blocks for two seconds at most.
    [[nodiscard]] Outcome claim(const LaunchOptions &options);

  Q_SIGNALS:
    void requested(const vantor::LaunchOptions &options);

  private:
    void listen();
    void accept();
    [[nodiscard]] Outcome handOver(const LaunchOptions &options) const;

    QString m_path;
    QLockFile m_lock;
    QLocalServer m_server;
};

} // namespace vantor
