#pragma once

#include "MusicAssistantKit/Servers/MusicAssistantServerConfiguration.h"

#include <QObject>

class QSettings;

namespace vantor {

/// The servers that the user has set up, in the user's order, kept in the settings. Main thread.
class MusicAssistantServerList : public QObject {
    Q_OBJECT
  public:
    /// `settings` outlive the list.
    explicit MusicAssistantServerList(QSettings &settings, QObject *parent = nullptr);

    [[nodiscard]] const std::vector<MusicAssistantServerConfiguration> &servers() const { return m_servers; }
    [[nodiscard]] std::optional<MusicAssistantServerConfiguration> server(const QUuid &id) const;

    void add(const MusicAssistantServerConfiguration &server);
    /// In the place of the one with the same ID; without effect when there is none.
    void update(const MusicAssistantServerConfiguration &server);
    void remove(const QUuid &id);
    /// The server goes to place `to`, counted without it.
    void move(const QUuid &id, int to);

  Q_SIGNALS:
    void changed();

  private:
    void load();
    void save();
    [[nodiscard]] std::vector<MusicAssistantServerConfiguration>::iterator find(const QUuid &id);

    QSettings &m_settings;
    std::vector<MusicAssistantServerConfiguration> m_servers;
};

} // namespace vantor
