#include "SendspinKit/Session/SendspinConnectionConfiguration.h"

namespace vantor {

QString SendspinConnectionConfiguration::description() {
    return QStringLiteral("SendspinConnectionConfiguration(token: redacted)");
}

QDebug operator<<(QDebug debug, const SendspinConnectionConfiguration &) {
    return debug.noquote() << SendspinConnectionConfiguration::description();
}

} // namespace vantor
