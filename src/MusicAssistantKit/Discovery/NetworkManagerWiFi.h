#pragma once

#include "MusicAssistantKit/Servers/WiFiNetworkProvider.h"

#include <QCoroTask>
#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QStringList>
#include <QVariantMap>

namespace vantor {

/// Asks NetworkManager on a message bus. Without it, or without a bus, there is no name. No permission is
/// needed.
class NetworkManagerWiFi : public WiFiNetworkProvider {
    Q_OBJECT
  public:
    NetworkManagerWiFi();

    /// To be called once. What it tells is known a moment later; networkChanged() says when, and until then
    /// the authorization is not determined.
    void setBus(const QDBusConnection &bus);

    [[nodiscard]] std::optional<QString> ssid() const override { return m_ssid; }
    [[nodiscard]] WiFiAuthorization authorization() const override { return m_authorization; }

  private Q_SLOTS:
    void refresh();

  private:
    QCoro::Task<> read();
    QCoro::Task<std::optional<QString>> ssidOf(QStringList connections);
    QCoro::Task<QVariantMap> properties(QString path, QString interface);

    QDBusConnection m_bus{QString()}; ///< none at first
    QDBusServiceWatcher m_watcher;
    WiFiAuthorization m_authorization = WiFiAuthorization::notDetermined;
    std::optional<QString> m_ssid;
    QString m_primaryConnection; ///< an object path; another one is another way to the network
    int m_round = 0;
};

} // namespace vantor
