#pragma once

#include <QWidget>

class QLabel;
class QListWidget;
class QPushButton;

namespace vantor {

class WiFiNetworkProvider;

/// A short list of names of Wi-Fi networks, for people who know them and those who are in one. Main thread;
/// borrows the provider.
class NetworkNames : public QWidget {
    Q_OBJECT

  public:
    explicit NetworkNames(WiFiNetworkProvider &wifi, QWidget *parent = nullptr);

    void setNames(const QStringList &names);
    /// As they stand, without empty and repeated ones.
    [[nodiscard]] QStringList names() const;

  Q_SIGNALS:
    void edited(const QStringList &names);

  private:
    void addCurrent();
    void addTyped();
    void removeSelected();
    void add(const QString &name);
    void tell();
    void showNetwork();

    WiFiNetworkProvider &m_wifi;
    QListWidget *m_list;
    QPushButton *m_useCurrent;
    QPushButton *m_remove;
    QStringList m_told;
};

} // namespace vantor
