#include "Platform/AppPaths.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QStandardPaths>

namespace vantor::AppPaths {

static QString below(QStandardPaths::StandardLocation location, const QString &identifier) {
    return QStandardPaths::writableLocation(location) + QLatin1Char('/') + identifier;
}

QString dataFolder(const QString &identifier) {
    return below(QStandardPaths::GenericDataLocation, identifier);
}

QString cacheFolder() {
    return below(QStandardPaths::GenericCacheLocation, QLatin1String(bundleIdentifier));
}

QString sharedFile(const QString &name) {
    const QFileInfo file(QCoreApplication::applicationDirPath() + QStringLiteral("/../share/vantor/") + name);
    return file.isFile() ? file.canonicalFilePath() : QString();
}

} // namespace vantor::AppPaths
