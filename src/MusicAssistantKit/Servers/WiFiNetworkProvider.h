#pragma once

#include <QObject>

#include <optional>

namespace vantor {

/// Whether the system tells this program the name of the Wi-Fi network.
enum class WiFiAuthorization { notDetermined, denied, restricted, authorized };

/// Why there is no name of a Wi-Fi network to choose.
enum class WiFiLocationMessage { needsLocationAccess, notOnWiFi };
[[nodiscard]] QString message(WiFiLocationMessage message);

/// Which Wi-Fi network this computer is in. Main thread.
class WiFiNetworkProvider : public QObject {
    Q_OBJECT
  public:
    using QObject::QObject;
    /// The name; none when this computer is in no Wi-Fi network or nobody can tell.
    [[nodiscard]] virtual std::optional<QString> ssid() const = 0;
    [[nodiscard]] virtual WiFiAuthorization authorization() const = 0;
    /// None when there is a name.
    [[nodiscard]] std::optional<WiFiLocationMessage> locationMessage() const;

  Q_SIGNALS:
    /// Another Wi-Fi network, or another way to the network altogether.
    void networkChanged();
};

} // namespace vantor
