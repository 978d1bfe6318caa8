#include "SkinKit/Loading/SkinError.h"

namespace vantor {

SkinError::SkinError(Case errorCase, const QString &reason)
    : m_case(errorCase), m_reason(reason), m_what(description().toUtf8()) {}

SkinError SkinError::unreadableArchive(const QString &reason) {
    return SkinError(Case::unreadableArchive, reason);
}

SkinError SkinError::notEnoughMemory() {
    return unreadableArchive(QStringLiteral("not enough memory"));
}

SkinError SkinError::modernSkin() {
    return SkinError(Case::modernSkin);
}

SkinError SkinError::noBitmaps() {
    return SkinError(Case::noBitmaps);
}

QString SkinError::description() const {
    switch (m_case) {
    case Case::unreadableArchive:
        return QStringLiteral("Unreadable archive: ") + m_reason;
    case Case::modernSkin:
        return QStringLiteral("Modern (Winamp 3/5) skin; not supported");
    case Case::noBitmaps:
        break;
    }
    return QStringLiteral("No classic skin bitmaps found");
}

} // namespace vantor
