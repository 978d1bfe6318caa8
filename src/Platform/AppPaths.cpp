#include "Platform/AppPaths.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QStandardPaths>

namespace vantor::AppPaths {

static QString below(QStandardPaths::StandardLocation location) {
    return QStandardPaths::writableLocation(location) + QLatin1Char('/') + QLatin1String(bundleIdentifier);
}

QString dataFolder() {
    return below(QStandardPaths::GenericDataLocation);
}

QString cacheFolder() {
    return below(QStandardPaths::GenericCacheLocation);
}

QString sharedFile(const QString &name) {
    const QFileInfo file(QCoreApplication::applicationDirPath() + QStringLiteral("/../share/vantor/") + name);
    return file.isFile() ? file.canonicalFilePath() : QString();
}

} // namespace vantor::AppPaths
