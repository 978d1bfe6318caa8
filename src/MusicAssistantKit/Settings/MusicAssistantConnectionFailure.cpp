#include "MusicAssistantKit/Settings/MusicAssistantConnectionFailure.h"

namespace vantor {

using namespace Qt::Literals::StringLiterals;

namespace {

using Case = MusicAssistantConnectionFailure::Case;

Case caseOf(const MusicAssistantError &error, const QUrl &address) {
    switch (error.errorCase()) {
    case MusicAssistantError::Case::tokenRejected:
    case MusicAssistantError::Case::unauthenticated:
        return Case::tokenRejected;
    case MusicAssistantError::Case::serverMismatch:
        return Case::serverMismatch;
    case MusicAssistantError::Case::schemaUnsupported:
        return Case::schema;
    case MusicAssistantError::Case::transport:
        if (error.transportError().kind == MATransportError::Kind::securityRequired)
            return Case::blockedByATS;
        if (address.scheme() == "https"_L1 && address.port() == MusicAssistantAddressInput::defaultPort)
            return Case::httpsOnMusicAssistantPort;
        return Case::unreachable;
    default:
        return Case::unreachable;
    }
}

} // namespace

MusicAssistantConnectionFailure MusicAssistantConnectionFailure::from(const MusicAssistantError &error,
                                                                      const QUrl &address) {
    return {.failureCase = caseOf(error, address),
            .message = error.description(),
            .foundName = {},
            .problem = {}};
}

QString MusicAssistantConnectionFailure::description() const {
    switch (failureCase) {
    case Case::invalidAddress:
        return MusicAssistantAddressInput::message(
            problem.value_or(MusicAssistantAddressInput::Problem::invalid));
    case Case::serverMismatch:
        return foundName ? u"A different server answered (%1). Its token was not sent."_s.arg(*foundName)
                         : u"A different server answered. Its token was not sent."_s;
    case Case::needsToken:
        return u"Found a Music Assistant server. Enter a token."_s;
    case Case::blockedByATS:
        return u"macOS blocks this connection. Use https; plain http works only on the local network or Tailscale."_s;
    case Case::httpsOnMusicAssistantPort:
        return u"Music Assistant serves plain http on port 8095. Use http for a local or MagicDNS address, "
               u"or https "
               u"without a port when Tailscale's serve feature is used."_s;
    case Case::tokenRejected:
        return u"Music Assistant rejected this token."_s;
    case Case::unreachable:
    case Case::schema:
    case Case::keychain:
        break;
    }
    return message;
}

} // namespace vantor
