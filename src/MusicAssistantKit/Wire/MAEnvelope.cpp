#include "MusicAssistantKit/Wire/MAEnvelope.h"

#include <cmath>

namespace vantor {

using namespace Qt::Literals::StringLiterals;

namespace {

/// Servers echo the text that they were sent; a number is taken for its decimal text when it is whole.
std::optional<QString> messageIDOf(const MAJSON &value) {
    if (const auto text = value.string())
        return text;
    if (const auto whole = value.integer())
        return QString::number(*whole);
    const auto number = value.number();
    if (!number || std::floor(*number) != *number)
        return std::nullopt;
    return QString::number(*number, 'f', 0);
}

std::optional<MAServerInfo> serverInfoOf(const MAJSON &message) {
    if (!message.hasMember("server_id"_L1) || !message.hasMember("schema_version"_L1))
        return std::nullopt;
    try {
        return MAServerInfo::decode(MAReader(message));
    } catch (const MADecodingError &) {
        return std::nullopt;
    }
}

std::optional<MAServerEvent> eventOf(const MAJSON &message) {
    const auto name = message.member("event"_L1).string();
    if (!name)
        return std::nullopt;
    return MAServerEvent{.event = *name,
                         .objectID = message.member("object_id"_L1).string(),
                         .data = message.member("data"_L1)};
}

MAEnvelope classify(const MAJSON &message) {
    const MAJSON rawID = message.member("message_id"_L1);
    if (rawID.isNull()) {
        if (auto info = serverInfoOf(message))
            return {std::move(*info)};
    }
    if (const auto id = messageIDOf(rawID)) {
        if (message.hasMember("result"_L1))
            return {MAEnvelope::Result{.messageID = *id,
                                       .result = message.member("result"_L1),
                                       .partial = message.member("partial"_L1).boolean().value_or(false)}};
        if (const auto code = message.member("error_code"_L1).integer())
            return {MAEnvelope::Error{.messageID = *id,
                                      .code = *code,
                                      .details = message.member("details"_L1).string().value_or(QString())}};
    }
    if (auto event = eventOf(message))
        return {std::move(*event)};
    return {};
}

} // namespace

MAEnvelope MAEnvelope::decode(const QString &text) {
    const auto message = MAJSON::parse(text.toUtf8());
    return message ? classify(*message) : MAEnvelope();
}

} // namespace vantor
