#include "Vantor/Model/StoredValue.h"

#include <QSettings>

#include <algorithm>
#include <cmath>

namespace vantor::StoredValue {

bool boolean(const QSettings &settings, const QString &key, bool fallback) {
    const QString text = settings.value(key).toString().toLower();
    if (text == QLatin1String("true") || text == QLatin1String("1"))
        return true;
    if (text == QLatin1String("false") || text == QLatin1String("0"))
        return false;
    return fallback;
}

double number(const QSettings &settings, const QString &key, double fallback, double minimum,
              double maximum) {
    bool isNumber = false;
    const double value = settings.value(key).toDouble(&isNumber);
    return isNumber && std::isfinite(value) ? std::clamp(value, minimum, maximum) : fallback;
}

} // namespace vantor::StoredValue
