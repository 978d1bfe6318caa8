#include "SendspinKit/Session/SendspinIdentity.h"

#include <QSettings>
#include <QUuid>

namespace vantor {

using namespace Qt::Literals::StringLiterals;

SendspinIdentity SendspinIdentity::load(QSettings &defaults, const QString &hostName) {
    constexpr auto key = "sendspin.clientID"_L1;
    QString clientID = defaults.value(key).toString();
    if (clientID.isEmpty()) {
        clientID = "vantor-"_L1 + QUuid::createUuid().toString(QUuid::WithoutBraces).toLower();
        defaults.setValue(key, clientID);
    }
    return {.clientID = clientID, .name = u"Vantor (%1)"_s.arg(hostName)};
}

} // namespace vantor
