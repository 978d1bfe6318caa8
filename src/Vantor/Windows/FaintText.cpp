#include "Vantor/Windows/FaintText.h"

#include <QEvent>
#include <QWidget>

namespace vantor {

namespace {

void apply(QWidget &window) {
    QColor faint = window.palette().color(QPalette::WindowText);
    faint.setAlphaF(0.62F);
    if (faint == window.palette().color(QPalette::PlaceholderText))
        return;
    QPalette own;
    own.setColor(QPalette::PlaceholderText, faint);
    window.setPalette(own);
}

class Keeper : public QObject {
  public:
    explicit Keeper(QWidget &window) : QObject(&window), m_window(window) { window.installEventFilter(this); }

  protected:
    bool eventFilter(QObject *, QEvent *event) override {
        if (event->type() == QEvent::PaletteChange)
            apply(m_window);
        return false;
    }

  private:
    QWidget &m_window;
};

} // namespace

void giveFaintText(QWidget &window) {
    apply(window);
    new Keeper(window);
}

} // namespace vantor
