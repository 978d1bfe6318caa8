#pragma once

#include "Vantor/Library/MusicAssistantServers.h"

#include <QWidget>

class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QPushButton;

namespace vantor {

/// Adds a Music Assistant server: one whose address is known, or one that is found in the network. Main
/// thread; borrows the servers.
class ServerAdder : public QWidget {
    Q_OBJECT

  public:
    explicit ServerAdder(MusicAssistantServers &servers, QWidget *parent = nullptr);
    ~ServerAdder() override;

    /// Empty fields for another server.
    void begin();

  Q_SIGNALS:
    /// One that is new, or was found where nobody looked for it.
    void added(const QUuid &id);
    void cancelled();

  private:
    void add();
    void find();
    void showFound();
    void take(const QListWidgetItem &found);

    MusicAssistantServers &m_servers;
    QLineEdit *m_name;
    QLineEdit *m_address;
    QLabel *m_problem;
    QPushButton *m_find;
    QPushButton *m_cancel;
    QPushButton *m_add;
    QListWidget *m_found;
    QLabel *m_finding;
    QList<std::pair<MusicAssistantServerConfiguration, QUrl>> m_moved;
};

} // namespace vantor
