#include "Vantor/Windows/ShowInFolder.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>

namespace vantor {

void showInFolder(const QUrl &file) {
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    const QStringList addresses{QString::fromLatin1(file.toEncoded())};
    call.setArguments({addresses, QString()});
    const QDBusPendingCall pending = QDBusConnection::sessionBus().asyncCall(call);
    auto *const watcher = new QDBusPendingCallWatcher(pending, QCoreApplication::instance());
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, file] {
        watcher->deleteLater();
        if (watcher->isError())
            QDesktopServices::openUrl(file.adjusted(QUrl::RemoveFilename));
    });
}

} // namespace vantor
