#include "MusicAssistantKit/Servers/MusicAssistantServerConfiguration.h"

#include "MusicAssistantKit/Connection/MAEndpoints.h"

#include <QJsonArray>

namespace vantor {

using namespace Qt::Literals::StringLiterals;

QJsonObject MusicAssistantServerConfiguration::encode() const {
    QJsonObject encodedAddress{{u"baseURL"_s, address.baseURL.toString()}};
    if (address.serverID)
        encodedAddress.insert("serverID"_L1, *address.serverID);
    return {{u"id"_s, id.toString(QUuid::WithoutBraces)},
            {u"name"_s, name},
            {u"address"_s, encodedAddress},
            {u"networks"_s, QJsonArray::fromStringList(networks)}};
}

std::optional<MusicAssistantServerConfiguration>
MusicAssistantServerConfiguration::decode(const QJsonObject &object) {
    const QJsonObject encodedAddress = object.value("address"_L1).toObject();
    MusicAssistantServerConfiguration made{
        .id = QUuid::fromString(object.value("id"_L1).toString()),
        .name = object.value("name"_L1).toString(),
        .address = {.baseURL = QUrl(encodedAddress.value("baseURL"_L1).toString()), .serverID = {}},
        .networks = {}};
    if (made.id.isNull() || !isServerURL(made.address.baseURL))
        return std::nullopt;
    const QString serverID = encodedAddress.value("serverID"_L1).toString();
    if (!serverID.isEmpty())
        made.address.serverID = serverID;
    for (const QJsonValue network : object.value("networks"_L1).toArray()) {
        if (network.isString())
            made.networks.append(network.toString());
    }
    return made;
}

} // namespace vantor
