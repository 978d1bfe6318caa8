#include "Vantor/Windows/FaintText.h"

#include <QWidget>

namespace vantor {

void giveFaintText(QWidget &window) {
    QColor faint = window.palette().color(QPalette::WindowText);
    faint.setAlphaF(0.62F);
    if (faint == window.palette().color(QPalette::PlaceholderText))
        return;
    QPalette own;
    own.setColor(QPalette::PlaceholderText, faint);
    window.setPalette(own);
}

} // namespace vantor
