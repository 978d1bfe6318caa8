#pragma once

#include <QWidget>

class QLabel;
class QPushButton;

namespace vantor {

/// A sentence above a list, with what can be done about it. Hidden while there is none. Main thread.
class NoticeBar : public QWidget {
    Q_OBJECT

  public:
    explicit NoticeBar(const QString &button, QWidget *parent = nullptr);

    /// Empty: nothing.
    void say(const QString &sentence);

  Q_SIGNALS:
    void pressed();

  private:
    QLabel *m_sentence;
    QPushButton *m_button;
};

} // namespace vantor
