#pragma once

#include <QString>

#include <functional>

class QWidget;

namespace vantor {

/// Asks over the window before something is done that cannot be undone, and returns at once. `yes`: what the
/// button says that has `action` done; the other one cancels and is what Enter and Escape mean. Main thread.
void askBefore(QWidget *parent, const QString &question, const QString &more, const QString &yes,
               const std::function<void()> &action);

} // namespace vantor
