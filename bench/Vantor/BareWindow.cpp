#include "FirstPaint.h"

#include <QPainter>

namespace {

class BareWindow : public QWidget {
  protected:
    void paintEvent(QPaintEvent *) override { QPainter(this).fillRect(rect(), Qt::darkGray); }
};

} // namespace

// The least that a Qt program can do: one window, painted once. What StartupBench compares with.
int main(int argc, char **argv) {
    QApplication application(argc, argv);
    BareWindow window;
    window.resize(275, 116);
    const QuitAfterFirstPaint quit(window);
    window.show();
    return QApplication::exec();
}
