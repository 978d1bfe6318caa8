#pragma once

#include <QObject>
#include <QStringList>

#include <optional>

namespace vantor {

/// A computer in the local network that announces a service.
struct MusicAssistantDiscoveredHost {
    QString host;
    std::optional<int> port; ///< none: the announced port is not Music Assistant's
    QString address;         ///< the same computer as a number, where its name means nothing; may be empty

    bool operator==(const MusicAssistantDiscoveredHost &) const = default;
};

/// What looks for services in the local network. Main thread.
class MusicAssistantServiceBrowser : public QObject {
    Q_OBJECT
  public:
    using QObject::QObject;
    /// Looks anew, until stop().
    virtual void start() = 0;
    virtual void stop() = 0;

  Q_SIGNALS:
    void hostFound(const vantor::MusicAssistantDiscoveredHost &host);
    /// What was there at the start has been announced; more may still come. Also when nobody can look.
    void settled();
};

} // namespace vantor
