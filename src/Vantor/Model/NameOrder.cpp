#include "Vantor/Model/NameOrder.h"

namespace vantor {

QCollator nameOrder() {
    // Without a language set, names would go by the bytes of their letters.
    QCollator order(QLocale().language() == QLocale::C ? QLocale(QLocale::English) : QLocale());
    order.setNumericMode(true);
    order.setCaseSensitivity(Qt::CaseInsensitive);
    return order;
}

} // namespace vantor
