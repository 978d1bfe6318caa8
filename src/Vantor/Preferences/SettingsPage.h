#pragma once

#include <QWidget>

class QCheckBox;
class QLabel;
class QVBoxLayout;

namespace vantor {

/// A page of the preferences: everything under one another, from the top. Main thread.
class SettingsPage : public QWidget {
  public:
    SettingsPage();

    void add(QWidget *widget);
    void addGap();
    /// A sentence about what is above it.
    void addNote(const QString &text);
    /// A title with the field that it belongs to.
    void addField(const QString &title, QWidget *field);
    QCheckBox *addCheck(const QString &text, bool on);

    /// A text that is less important than what it stands beside.
    [[nodiscard]] static QLabel *makeNote(const QString &text = {});

  private:
    QVBoxLayout *m_layout;
};

} // namespace vantor
