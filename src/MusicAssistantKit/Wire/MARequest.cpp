#include "MusicAssistantKit/Wire/MARequest.h"

namespace vantor {

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr auto authCommand = "auth"_L1;
}

MARequest MARequest::auth(const MusicAssistantToken &token) {
    return {.command = authCommand, .args = {{u"token"_s, token.reveal()}}, .timeout = {}};
}

QString MARequest::description() const {
    return command == authCommand ? u"auth(redacted)"_s : command;
}

QString MARequest::encoded(const QString &messageID) const {
    const QJsonObject message{{u"message_id"_s, messageID}, {u"command"_s, command}, {u"args"_s, args}};
    return QString::fromUtf8(MAJSON(message).encoded());
}

QDebug operator<<(QDebug debug, const MARequest &request) {
    return debug.noquote() << request.description();
}

} // namespace vantor
