#pragma once

#include "Vantor/Library/MusicAssistantServers.h"

#include <QWidget>

class QLabel;
class QLineEdit;
class QPushButton;

namespace vantor {

class NetworkNames;

/// Everything about one Music Assistant server; what is changed holds at once. A token that was typed is
/// taken out of its field. Main thread; borrows the servers.
class ServerEditor : public QWidget {
    Q_OBJECT

  public:
    explicit ServerEditor(MusicAssistantServers &servers, QWidget *parent = nullptr);

    void edit(const QUuid &id);
    /// Takes what was typed; false if the address is none, which then has the focus.
    [[nodiscard]] bool confirm();
    /// The server was just added: its token comes next.
    void askForToken();

  private:
    [[nodiscard]] QWidget *makeTest();
    void fill();
    void takeName();
    [[nodiscard]] bool takeAddress();
    void takeToken();
    QCoro::Task<> test(QUuid id);
    void showStatus();

    MusicAssistantServers &m_servers;
    MusicAssistantSettingsModel &m_model;
    QUuid m_id;
    QLineEdit *m_name;
    QLineEdit *m_address;
    QLabel *m_problem;
    QLineEdit *m_token;
    QLabel *m_kept;
    NetworkNames *m_networks;
    QPushButton *m_test;
    QPushButton *m_replace;
    QLabel *m_sign;
    QLabel *m_status;
};

} // namespace vantor
