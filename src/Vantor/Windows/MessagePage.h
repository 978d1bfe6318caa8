#pragma once

#include <QWidget>

#include <functional>

class QLabel;
class QPushButton;

namespace vantor {

/// What stands where a list would, when there is nothing to list: what is the matter, and what can be done.
/// Main thread.
class MessagePage : public QWidget {
    Q_OBJECT

  public:
    explicit MessagePage(QWidget *parent = nullptr);

    /// Empty texts take no room. `button`: what it says that has `action` done; empty for none.
    void say(const QString &heading, const QString &text, const QString &button = {},
             const std::function<void()> &action = {});

  private:
    QLabel *m_heading;
    QLabel *m_text;
    QPushButton *m_button;
    std::function<void()> m_action;
};

} // namespace vantor
