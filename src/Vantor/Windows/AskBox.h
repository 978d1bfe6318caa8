#pragma once

#include <QString>

#include <functional>

class QWidget;

/// Questions before something that cannot be undone. Main thread.
namespace vantor::AskBox {

/// Asks over the window and returns at once. `yes`: what the button says that has `action` done, unless the
/// parent has gone by then.
void ask(QWidget *parent, const QString &question, const QString &more, const QString &yes,
         const std::function<void()> &action);

} // namespace vantor::AskBox
