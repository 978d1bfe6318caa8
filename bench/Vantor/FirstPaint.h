#pragma once

#include <QApplication>
#include <QEvent>
#include <QTimer>
#include <QWidget>

/// Ends the event loop once a window has painted itself and the picture has gone to the display.
class QuitAfterFirstPaint : public QObject {
  public:
    explicit QuitAfterFirstPaint(QWidget &window) : QObject(&window) { window.installEventFilter(this); }

    bool eventFilter(QObject *, QEvent *event) override {
        if (event->type() == QEvent::Paint)
            QTimer::singleShot(0, this, [] { QApplication::quit(); });
        return false;
    }
};
