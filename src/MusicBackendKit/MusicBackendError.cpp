#include "MusicBackendKit/MusicBackendError.h"

namespace vantor {

MusicBackendError::MusicBackendError(Case errorCase, const QString &description)
    : m_case(errorCase), m_description(description), m_what(description.toUtf8()) {}

MusicBackendError MusicBackendError::notConfigured(const QString &message) {
    return {Case::notConfigured, message};
}

MusicBackendError MusicBackendError::unreachable(const QString &message) {
    return {Case::unreachable, message};
}

MusicBackendError MusicBackendError::notFound(const MediaID &id) {
    return {Case::notFound, QStringLiteral("Could not find %1 %2.").arg(rawValue(id.kind), id.rawValue)};
}

MusicBackendError MusicBackendError::unsupported(MusicBackendCapabilities needed) {
    return unsupported(needed, QStringLiteral("This music source does not support that."));
}

MusicBackendError MusicBackendError::unsupported(MusicBackendCapabilities needed, const QString &message) {
    MusicBackendError error(Case::unsupported, message);
    error.m_needed = needed;
    return error;
}

MusicBackendError MusicBackendError::unknownOutput(const OutputDevice::ID &output) {
    MusicBackendError error(Case::unknownOutput, QStringLiteral("That output is not available."));
    error.m_output = output;
    return error;
}

MusicBackendError MusicBackendError::backend(const QString &message) {
    return {Case::backend, message};
}

MusicBackendError MusicBackendError::forbidden(const QString &message) {
    return {Case::forbidden, message};
}

MusicBackendError MusicBackendError::notConnected() {
    return {Case::notConnected, QStringLiteral("Not connected to the music source.")};
}

MusicBackendError MusicBackendError::unauthorized() {
    return {Case::unauthorized, QStringLiteral("The music source rejected the sign-in.")};
}

bool MusicBackendError::operator==(const MusicBackendError &other) const {
    return m_case == other.m_case && m_needed == other.m_needed && m_output == other.m_output &&
           m_description == other.m_description;
}

} // namespace vantor
