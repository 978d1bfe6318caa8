#include "AudioCore/Network/ProgressiveError.h"

namespace vantor {

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
