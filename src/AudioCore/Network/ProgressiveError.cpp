#include "AudioCore/Network/ProgressiveError.h"

namespace vantor {

ProgressiveError::ProgressiveError(Case errorCase, const QString &reason)
    : m_case(errorCase), m_what(description().toUtf8()) {
    if (!reason.isEmpty())
        m_what += " (" + reason.toUtf8() + ')';
}

QString ProgressiveError::description() const {
    switch (m_case) {
    case Case::notStreamable:
        return QStringLiteral("This file cannot be played while it downloads.");
    case Case::cannotOpen:
        return QStringLiteral("This file is not a supported audio file.");
    case Case::readFailure:
        return QStringLiteral("This audio file could not be read.");
    case Case::formatUnsupported:
        return QStringLiteral("This audio file's format is not supported.");
    }
    return {};
}

} // namespace vantor
