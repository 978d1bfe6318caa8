#include "SendspinKit/Wire/SendspinNames_p.h"
#include "SendspinKit/Wire/SendspinOutgoing_p.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace vantor {

using namespace sendspinnames;

namespace {

QString encoded(const QJsonObject &message) {
    return QString::fromUtf8(QJsonDocument(message).toJson(QJsonDocument::Compact));
}

QString message(const QString &type, const QJsonObject &payload) {
    return encoded({{u"type"_s, type}, {u"payload"_s, payload}});
}

/// What the player can decode, with what it likes best first: servers go by the order.
QJsonArray formats(const SendspinAudioFormat &preferred) {
    const SendspinAudioFormat decodable[] = {
        {.codec = u"flac"_s, .sampleRate = 48'000, .bitDepth = 24},
        {.codec = u"flac"_s, .sampleRate = 48'000, .bitDepth = 16},
        {.codec = u"flac"_s, .sampleRate = 44'100, .bitDepth = 24},
        {.codec = u"flac"_s, .sampleRate = 44'100, .bitDepth = 16},
        {.codec = u"opus"_s, .sampleRate = 48'000, .bitDepth = 16},
        {.codec = u"pcm"_s, .sampleRate = 48'000, .bitDepth = 32},
        {.codec = u"pcm"_s, .sampleRate = 48'000, .bitDepth = 24},
        {.codec = u"pcm"_s, .sampleRate = 48'000, .bitDepth = 16},
        {.codec = u"pcm"_s, .sampleRate = 44'100, .bitDepth = 24},
        {.codec = u"pcm"_s, .sampleRate = 44'100, .bitDepth = 16},
    };
    const auto asJSON = [](const SendspinAudioFormat &format) {
        return QJsonObject{{u"codec"_s, format.codec},
                           {u"channels"_s, format.channels},
                           {u"sample_rate"_s, format.sampleRate},
                           {u"bit_depth"_s, format.bitDepth}};
    };
    QJsonArray offered{asJSON(preferred)};
    for (const SendspinAudioFormat &format : decodable) {
        if (format != preferred)
            offered.append(asJSON(format));
    }
    return offered;
}

QString goodbyeReason(SendspinGoodbyeReason reason) {
    switch (reason) {
    case SendspinGoodbyeReason::anotherServer:
        return u"another_server"_s;
    case SendspinGoodbyeReason::shutdown:
        return u"shutdown"_s;
    case SendspinGoodbyeReason::restart:
        return u"restart"_s;
    case SendspinGoodbyeReason::userRequest:
        break;
    }
    return u"user_request"_s;
}

} // namespace

QString sendspinoutgoing::auth(const SendspinConnectionConfiguration &configuration) {
    return encoded({{u"type"_s, u"auth"_s},
                    {u"token"_s, configuration.token.reveal()},
                    {u"client_id"_s, configuration.clientID}});
}

QString sendspinoutgoing::hello(const SendspinConnectionConfiguration &configuration) {
    const SendspinDeviceInfo &device = configuration.deviceInfo;
    const QJsonObject deviceInfo{{u"manufacturer"_s, device.manufacturer},
                                 {u"product_name"_s, device.productName},
                                 {u"software_version"_s, device.softwareVersion}};
    const QJsonObject support{{u"supported_formats"_s, formats(configuration.format)},
                              {u"buffer_capacity"_s, configuration.bufferCapacity},
                              {u"supported_commands"_s, QJsonArray{volume, mute}}};
    return message(u"client/hello"_s, {{u"client_id"_s, configuration.clientID},
                                       {u"name"_s, configuration.name},
                                       {u"version"_s, 1},
                                       {u"supported_roles"_s, QJsonArray{playerRole}},
                                       {u"device_info"_s, deviceInfo},
                                       {u"player@v1_support"_s, support}});
}

QString sendspinoutgoing::time(std::int64_t clientTransmitted) {
    return message(u"client/time"_s, {{u"client_transmitted"_s, static_cast<qint64>(clientTransmitted)}});
}

QString sendspinoutgoing::state(const SendspinConnectionConfiguration &configuration,
                                const SendspinPlayerState &state) {
    const QJsonObject playerState{{volume, state.volume},
                                  {u"muted"_s, state.muted},
                                  {u"static_delay_ms"_s, state.staticDelayMs},
                                  {u"required_lead_time_ms"_s, configuration.requiredLeadTimeMs},
                                  {u"min_buffer_ms"_s, configuration.minBufferMs},
                                  {u"supported_commands"_s, QJsonArray{setStaticDelay}}};
    return message(u"client/state"_s, {{u"available"_s, state.available}, {player, playerState}});
}

QString sendspinoutgoing::goodbye(SendspinGoodbyeReason reason) {
    return message(u"client/goodbye"_s, {{u"reason"_s, goodbyeReason(reason)}});
}

} // namespace vantor
