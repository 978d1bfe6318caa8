#include "Vantor/Mpris/MprisRoot.h"

#include "Platform/AppPaths.h"

namespace vantor {

MprisRoot::MprisRoot(QObject *service, Actions actions)
    : QDBusAbstractAdaptor(service), m_actions(std::move(actions)) {}

QString MprisRoot::desktopEntry() const {
    return QLatin1String(AppPaths::bundleIdentifier);
}

QStringList MprisRoot::supportedUriSchemes() const {
    return {QStringLiteral("file"), QStringLiteral("http"), QStringLiteral("https")};
}

// The same ones as in the desktop file.
QStringList MprisRoot::supportedMimeTypes() const {
    return QStringLiteral(VANTOR_MIME_TYPES).split(QLatin1Char(','), Qt::SkipEmptyParts);
}

} // namespace vantor
