#pragma once

#include <QWidget>

#include <functional>

class QHBoxLayout;
class QPushButton;

namespace vantor {

/// A list under a bar of buttons. Main thread.
class LibraryBarPage : public QWidget {
    Q_OBJECT

  public:
    /// `list` becomes the page's.
    explicit LibraryBarPage(QWidget *list, QWidget *parent = nullptr);

    void addButton(const QString &text, const std::function<void()> &action);
    void showBar(bool shows);

  private:
    QWidget *m_bar;
    QHBoxLayout *m_buttons;
};

} // namespace vantor
