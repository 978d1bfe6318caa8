#include "MusicAssistantKit/Servers/WiFiNetworkProvider.h"

namespace vantor {

QString message(WiFiLocationMessage message) {
    switch (message) {
    case WiFiLocationMessage::needsLocationAccess:
        return QStringLiteral(
            "Allow access to the location, so that Vantor can see the name of the Wi-Fi network.");
    case WiFiLocationMessage::notOnWiFi:
        break;
    }
    return QStringLiteral("This computer is not on Wi-Fi.");
}

std::optional<WiFiLocationMessage> WiFiNetworkProvider::locationMessage() const {
    if (ssid())
        return std::nullopt;
    return authorization() == WiFiAuthorization::authorized ? WiFiLocationMessage::notOnWiFi
                                                            : WiFiLocationMessage::needsLocationAccess;
}

} // namespace vantor
