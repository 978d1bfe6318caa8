#include "MusicAssistantKit/Connection/MusicAssistantError.h"

#include "MusicAssistantKit/Connection/MusicAssistantClient.h"

namespace vantor {

using namespace Qt::Literals::StringLiterals;

namespace {

// A lost connection, a timeout and a failed handshake are one and the same to the user.
constexpr auto unreachableText = "Can't reach the Music Assistant server."_L1;

QString schemaText(qint64 server, qint64 minSupported) {
    if (server >= MusicAssistantClient::minimumSchemaVersion)
        return u"This Music Assistant server is too new for Vantor (it needs clients newer than schema %1)."_s
            .arg(minSupported);
    return u"This Music Assistant server is too old for Vantor (schema %1; needs %2 or later)."_s.arg(server)
        .arg(MusicAssistantClient::minimumSchemaVersion);
}

const char *caseName(MusicAssistantError::Case errorCase) {
    static constexpr const char *names[] = {"transport",        "schema unsupported", "server error",
                                            "timeout",          "decoding",           "invalid URL",
                                            "handshake failed", "server mismatch",    "token rejected",
                                            "unauthenticated",  "disconnected",       "not connected"};
    return names[static_cast<std::size_t>(errorCase)];
}

} // namespace

MusicAssistantError::MusicAssistantError(Case errorCase, const QString &description)
    : m_case(errorCase), m_description(description), m_what(description.toUtf8()) {}

MusicAssistantError MusicAssistantError::transport(const MATransportError &transportError) {
    const bool needsTLS = transportError.kind == MATransportError::Kind::securityRequired;
    MusicAssistantError error(
        Case::transport,
        needsTLS ? u"App Transport Security requires https for this address (network error -1022)."_s
                 : unreachableText);
    error.m_transport = transportError;
    return error;
}

MusicAssistantError MusicAssistantError::schemaUnsupported(qint64 server, qint64 minSupported) {
    MusicAssistantError error(Case::schemaUnsupported, schemaText(server, minSupported));
    error.m_code = server;
    return error;
}

MusicAssistantError MusicAssistantError::server(qint64 code, const QString &details) {
    MusicAssistantError error(Case::server, u"The Music Assistant server reported an error."_s);
    error.m_code = code;
    error.m_details = details;
    return error;
}

MusicAssistantError MusicAssistantError::timeout(const QString &command) {
    MusicAssistantError error(Case::timeout, unreachableText);
    error.m_command = command;
    return error;
}

MusicAssistantError MusicAssistantError::decoding(const QString &command, const QString &detail) {
    MusicAssistantError error(Case::decoding, u"The Music Assistant server's answer could not be read."_s);
    error.m_command = command;
    error.m_details = detail;
    return error;
}

MusicAssistantError MusicAssistantError::invalidURL() {
    return {Case::invalidURL, u"The Music Assistant address is not valid."_s};
}

MusicAssistantError MusicAssistantError::handshakeFailed() {
    return {Case::handshakeFailed, unreachableText};
}

MusicAssistantError MusicAssistantError::serverMismatch() {
    return {Case::serverMismatch, u"A different Music Assistant server answered at this address."_s};
}

MusicAssistantError MusicAssistantError::tokenRejected() {
    return {Case::tokenRejected, u"The Music Assistant token was rejected."_s};
}

MusicAssistantError MusicAssistantError::unauthenticated() {
    return {Case::unauthenticated, u"Music Assistant needs a token before it will answer."_s};
}

MusicAssistantError MusicAssistantError::disconnected() {
    return {Case::disconnected, unreachableText};
}

MusicAssistantError MusicAssistantError::notConnected() {
    return {Case::notConnected, u"Not connected to Music Assistant."_s};
}

bool MusicAssistantError::isPermanent() const {
    return m_case == Case::tokenRejected || m_case == Case::serverMismatch ||
           m_case == Case::schemaUnsupported;
}

QString MusicAssistantError::logText() const {
    QStringList parts{QString::fromLatin1(caseName(m_case))};
    if (!m_command.isEmpty())
        parts.append(m_command);
    if (m_case == Case::server)
        parts.append(QString::number(m_code));
    if (m_case == Case::decoding)
        parts.append(m_details);
    if (m_case == Case::transport)
        parts.append(m_transport.detail);
    return parts.join(": "_L1);
}

bool MusicAssistantError::operator==(const MusicAssistantError &other) const {
    return m_case == other.m_case && m_code == other.m_code && m_command == other.m_command &&
           m_details == other.m_details && m_transport == other.m_transport &&
           m_description == other.m_description;
}

QDebug operator<<(QDebug debug, const MusicAssistantError &error) {
    return debug.noquote() << error.logText();
}

} // namespace vantor
