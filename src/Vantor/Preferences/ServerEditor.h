#pragma once

#include "Vantor/Library/MusicAssistantServers.h"

#include <QTimer>
#include <QWidget>

class QLabel;
class QLineEdit;
class QPushButton;

namespace vantor {

class NetworkNames;

/// Everything about one Music Assistant server; what is changed holds at once. Only a token stays in its
/// field until it has signed in, or until one goes elsewhere, which keeps it untested. Main thread; borrows
/// the servers.
class ServerEditor : public QWidget {
    Q_OBJECT

  public:
    explicit ServerEditor(MusicAssistantServers &servers, QWidget *parent = nullptr);

    void edit(const QUuid &id);
    /// Takes what was typed; false if the address is none, which then has the focus.
    [[nodiscard]] bool confirm();
    /// The server was just added: its token comes next.
    void askForToken();

  protected:
    void showEvent(QShowEvent *event) override;

  private:
    [[nodiscard]] QWidget *makeTest();
    void fill();
    void lookForToken();
    void takeName();
    [[nodiscard]] bool takeAddress();
    void takeToken();
    QCoro::Task<> test(QUuid id, QString typed);
    void showStatus();
    void showKeychain();
    [[nodiscard]] QString tokenNote() const;

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
    QTimer m_patience; ///< before the page speaks of the keychain, which mostly answers at once
    bool m_isPatient = true;
};

} // namespace vantor
