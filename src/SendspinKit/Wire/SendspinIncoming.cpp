#include "SendspinKit/Wire/SendspinIncoming.h"

#include "MusicAssistantKit/Wire/MAReader.h"
#include "SendspinKit/Session/SendspinError.h"
#include "SendspinKit/Wire/SendspinNames_p.h"

#include <QtEndian>

namespace vantor {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr qsizetype longestTypeInErrors = 64;

int integerWithin(const MAReader &reader, int least, int most) {
    const qint64 value = reader.integer();
    if (value < least || value > most)
        reader.failCorrupt();
    return static_cast<int>(value);
}

std::int64_t instant(const MAReader &reader) {
    const qint64 value = reader.integer();
    if (value < -SendspinIncoming::maxInstant || value > SendspinIncoming::maxInstant)
        reader.failCorrupt();
    return value;
}

bool hasValue(const MAReader &reader, const char *name) {
    return !reader.value().member(QLatin1StringView(name)).isNull();
}

/// What may be missing, but when it is there, must be of the right type.
template <typename Read>
auto optionalMember(const MAReader &reader, const char *name, Read read)
    -> std::optional<decltype(read(reader))> {
    if (!hasValue(reader, name))
        return std::nullopt;
    return read(reader.member(name));
}

QString readString(const MAReader &reader) {
    return reader.string();
}

QStringList readStrings(const MAReader &reader) {
    QStringList strings;
    for (qsizetype i = 0; i < reader.size(); ++i)
        strings.append(reader.entry(i).string());
    return strings;
}

/// More of a name is never shown.
constexpr qsizetype longestName = 256;

QByteArray readBase64(const MAReader &reader) {
    const auto decoded =
        QByteArray::fromBase64Encoding(reader.string().toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded)
        reader.failCorrupt();
    return *decoded;
}

SendspinServerHello serverHello(const MAReader &payload) {
    return {.serverID = payload.member("server_id").string(),
            .name = payload.member("name").string().left(longestName),
            .version = payload.member("version").integer(),
            .activeRoles = readStrings(payload.member("active_roles")),
            .connectionReason = optionalMember(payload, "connection_reason", readString)};
}

SendspinIncoming::ServerTime serverTime(const MAReader &payload) {
    return {.clientTransmitted = instant(payload.member("client_transmitted")),
            .serverReceived = instant(payload.member("server_received")),
            .serverTransmitted = instant(payload.member("server_transmitted"))};
}

SendspinIncoming::StreamStart streamStart(const MAReader &payload) {
    using Format = SendspinStreamFormat;
    const MAReader player = payload.member("player");
    return {
        .format = {.codec = player.member("codec").string(),
                   .sampleRate = integerWithin(player.member("sample_rate"), 1, Format::maxSampleRate),
                   .channels = integerWithin(player.member("channels"), 1, Format::maxChannels),
                   .bitDepth = integerWithin(player.member("bit_depth"), 0, Format::maxBitDepth),
                   .codecHeader = optionalMember(player, "codec_header", readBase64).value_or(QByteArray())},
        .serverTransmitted = optionalMember(payload, "server_transmitted", instant)};
}

/// "stream/clear" and "stream/end" may name the roles that they are for, with or without their version.
bool concernsPlayer(const MAReader &payload) {
    const auto roles = optionalMember(payload, "roles", readStrings);
    return !roles || std::any_of(roles->begin(), roles->end(), [](const QString &role) {
        return role == sendspinnames::player || role == sendspinnames::playerRole;
    });
}

/// None when it is missing, empty when it is null.
std::optional<QString> changedString(const MAReader &payload, const char *name) {
    const bool isCleared = payload.value().hasMember(QLatin1StringView(name)) && !hasValue(payload, name);
    if (isCleared)
        return QString();
    const auto text = optionalMember(payload, name, readString);
    return text ? std::optional(text->left(longestName)) : std::nullopt;
}

SendspinGroupUpdate groupUpdate(const MAReader &payload) {
    return {.playbackState = changedString(payload, "playback_state"),
            .groupID = changedString(payload, "group_id"),
            .groupName = changedString(payload, "group_name")};
}

SendspinIncoming::ServerCommand serverCommand(const MAReader &payload) {
    const auto upTo = [](qint64 most) {
        return [most](const MAReader &reader) {
            return static_cast<int>(std::clamp<qint64>(reader.integer(), 0, most));
        };
    };
    const MAReader player = payload.member("player");
    const QString command = player.member("command").string();
    const char *delay = command == sendspinnames::setOutputDelay ? "output_delay_ms" : "static_delay_ms";
    return {.command = command,
            .volume = optionalMember(player, "volume", upTo(100)),
            .mute = optionalMember(player, "mute", [](const MAReader &reader) { return reader.boolean(); }),
            .staticDelayMs = optionalMember(player, delay, upTo(SendspinIncoming::maxStaticDelayMs))};
}

SendspinIncoming decodeAs(const QString &type, const MAReader &message) {
    using Incoming = SendspinIncoming;
    const auto payload = [&] {
        const MAReader reader = message.member("payload");
        if (reader.value().kind() != MAJSON::Kind::object)
            (void)reader.member(""); // says what is wrong with it
        return reader;
    };
    if (type == "server/hello"_L1)
        return {serverHello(payload())};
    if (type == "server/time"_L1)
        return {serverTime(payload())};
    if (type == "stream/start"_L1)
        return {streamStart(payload())};
    if (type == "group/update"_L1)
        return {groupUpdate(payload())};
    if (type == "server/command"_L1)
        return {serverCommand(payload())};
    if (type == "stream/clear"_L1 && concernsPlayer(payload()))
        return {Incoming::StreamClear()};
    if (type == "stream/end"_L1 && concernsPlayer(payload()))
        return {Incoming::StreamEnd()};
    return {Incoming::Ignored{type}};
}

} // namespace

bool SendspinServerHello::isPlayerActive() const {
    return activeRoles.contains(sendspinnames::playerRole);
}

SendspinIncoming SendspinIncoming::decode(const QString &text) {
    const auto message = MAJSON::parse(text.toUtf8());
    if (!message || message->kind() != MAJSON::Kind::object)
        throw SendspinError::malformed(u"no JSON object"_s, {});
    const QString type = message->member("type"_L1).string().value_or(QString());
    if (type.isNull())
        throw SendspinError::malformed(u"no type"_s, {});
    try {
        return decodeAs(type, MAReader(*message));
    } catch (const MADecodingError &error) {
        throw SendspinError::malformed(type.left(longestTypeInErrors) + ": "_L1 + error.detail(), type);
    }
}

std::optional<SendspinAudioChunk> SendspinIncoming::decodeAudio(const QByteArray &frame) {
    constexpr qsizetype headerSize = 1 + sizeof(std::int64_t);
    constexpr char playerAudio = 4;
    if (frame.size() < headerSize)
        throw SendspinError::malformed(u"binary frame of %1 bytes"_s.arg(frame.size()), {});
    if (frame.front() != playerAudio)
        return std::nullopt;
    return SendspinAudioChunk{.timestamp = qFromBigEndian<std::int64_t>(frame.constData() + 1),
                              .data = frame.sliced(headerSize)};
}

} // namespace vantor
