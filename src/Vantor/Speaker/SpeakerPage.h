#pragma once

#include <QWidget>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;
class QToolButton;

namespace vantor {

class MusicAssistantServerList;
class NetworkSpeaker;
class SpeakerFigures;

/// The preferences of this computer as a speaker of a music server: whether it is one, by which name, when it
/// is heard, how it stands, and how well it does. Main thread; borrows the speaker and the
/// servers.
class SpeakerPage : public QWidget {
    Q_OBJECT

  public:
    SpeakerPage(NetworkSpeaker &speaker, const MusicAssistantServerList &servers);

  Q_SIGNALS:
    /// There is no server yet, and the user wants one.
    void serverWanted();

  protected:
    void hideEvent(QHideEvent *event) override;

  private:
    [[nodiscard]] QWidget *makeStatus();
    [[nodiscard]] QWidget *makeDelay();
    void takeName();
    void showState();
    void showStatus();

    NetworkSpeaker &m_speaker;
    const MusicAssistantServerList &m_servers;
    QCheckBox *m_switch;
    QLabel *m_sign;
    QLabel *m_status;
    QPushButton *m_setUp;
    QLineEdit *m_name;
    QSpinBox *m_delay;
    QPushButton *m_click;
    QToolButton *m_disclosure;
    SpeakerFigures *m_figures;
};

} // namespace vantor
