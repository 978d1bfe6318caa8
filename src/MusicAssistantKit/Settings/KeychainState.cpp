#include "MusicAssistantKit/Settings/KeychainState_p.h"

#include <QCoroDBusPendingCall>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusVariant>

namespace vantor {

using namespace Qt::Literals::StringLiterals;

namespace {

const QString secretService = u"org.freedesktop.secrets"_s;

QDBusPendingCall isOwned(const QString &name) {
    auto question = QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                                   u"org.freedesktop.DBus"_s, u"NameHasOwner"_s);
    question << name;
    return QDBusConnection::sessionBus().asyncCall(question);
}

QDBusPendingCall isDefaultLocked() {
    auto question =
        QDBusMessage::createMethodCall(secretService, u"/org/freedesktop/secrets/aliases/default"_s,
                                       u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    question << u"org.freedesktop.Secret.Collection"_s << u"Locked"_s;
    return QDBusConnection::sessionBus().asyncCall(question);
}

} // namespace

QCoro::Task<KeychainState> keychainState() {
    for (const QString &name : {secretService, u"org.kde.kwalletd6"_s, u"org.kde.kwalletd5"_s}) {
        const QDBusPendingCall question = isOwned(name);
        const QDBusReply<bool> owned = co_await question;
        if (!owned.isValid() || !owned.value())
            continue;
        if (name != secretService)
            co_return KeychainState::open;
        const QDBusPendingCall second = isDefaultLocked();
        const QDBusReply<QDBusVariant> locked = co_await second;
        const bool isLocked = locked.isValid() && locked.value().variant().toBool();
        co_return isLocked ? KeychainState::locked : KeychainState::open;
    }
    co_return KeychainState::absent;
}

} // namespace vantor
