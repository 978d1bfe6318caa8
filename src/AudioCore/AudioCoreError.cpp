#include "AudioCore/AudioCoreError.h"

namespace vantor {

AudioCoreError::AudioCoreError(Case errorCase, const QString &reason)
    : m_case(errorCase), m_reason(reason), m_what(description().toUtf8()) {}

AudioCoreError AudioCoreError::engineStart(const QString &reason) {
    return AudioCoreError(Case::engineStart, reason);
}

AudioCoreError AudioCoreError::unresolvableSource() {
    return AudioCoreError(Case::unresolvableSource);
}

AudioCoreError AudioCoreError::outputDevice(const QString &reason) {
    return AudioCoreError(Case::outputDevice, reason);
}

AudioCoreError AudioCoreError::unsupportedStreamFormat() {
    return AudioCoreError(Case::unsupportedStreamFormat);
}

AudioCoreError AudioCoreError::openFailure() {
    return AudioCoreError(Case::openFailure);
}

AudioCoreError AudioCoreError::readFailure() {
    return AudioCoreError(Case::readFailure);
}

QString AudioCoreError::description() const {
    switch (m_case) {
    case Case::engineStart:
        return QStringLiteral("Could not start the audio engine: ") + m_reason;
    case Case::unresolvableSource:
        return QStringLiteral("This track is not available as a local file.");
    case Case::outputDevice:
        return QStringLiteral("Could not switch the audio output device: ") + m_reason;
    case Case::unsupportedStreamFormat:
        return QStringLiteral("The stream's audio format is not supported.");
    case Case::openFailure:
        return QStringLiteral("This file is not a supported audio file.");
    case Case::readFailure:
        return QStringLiteral("This audio file could not be read.");
    }
    return {};
}

} // namespace vantor
