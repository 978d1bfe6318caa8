#include "MusicAssistantKit/Servers/MusicAssistantServerList.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSettings>

namespace vantor {

namespace {
const QString settingsKey = QStringLiteral("musicAssistant/servers");
}

MusicAssistantServerList::MusicAssistantServerList(QSettings &settings, QObject *parent)
    : QObject(parent), m_settings(settings) {
    load();
}

std::optional<MusicAssistantServerConfiguration> MusicAssistantServerList::server(const QUuid &id) const {
    const auto found =
        std::find_if(m_servers.begin(), m_servers.end(), [&](const auto &s) { return s.id == id; });
    return found == m_servers.end() ? std::nullopt : std::optional(*found);
}

void MusicAssistantServerList::add(const MusicAssistantServerConfiguration &server) {
    if (find(server.id) != m_servers.end())
        return;
    m_servers.push_back(server);
    save();
}

void MusicAssistantServerList::update(const MusicAssistantServerConfiguration &server) {
    const auto found = find(server.id);
    if (found == m_servers.end() || *found == server)
        return;
    *found = server;
    save();
}

void MusicAssistantServerList::remove(const QUuid &id) {
    const auto found = find(id);
    if (found == m_servers.end())
        return;
    m_servers.erase(found);
    save();
}

void MusicAssistantServerList::move(const QUuid &id, int to) {
    const auto found = find(id);
    if (found == m_servers.end())
        return;
    const auto server = *found;
    m_servers.erase(found);
    m_servers.insert(m_servers.begin() + std::clamp(to, 0, static_cast<int>(m_servers.size())), server);
    save();
}

void MusicAssistantServerList::load() {
    const auto document = QJsonDocument::fromJson(m_settings.value(settingsKey).toString().toUtf8());
    for (const QJsonValue entry : document.array()) {
        const auto server = MusicAssistantServerConfiguration::decode(entry.toObject());
        if (server && find(server->id) == m_servers.end())
            m_servers.push_back(*server);
    }
}

void MusicAssistantServerList::save() {
    QJsonArray entries;
    for (const auto &server : m_servers)
        entries.append(server.encode());
    m_settings.setValue(settingsKey,
                        QString::fromUtf8(QJsonDocument(entries).toJson(QJsonDocument::Compact)));
    Q_EMIT changed();
}

std::vector<MusicAssistantServerConfiguration>::iterator MusicAssistantServerList::find(const QUuid &id) {
    return std::find_if(m_servers.begin(), m_servers.end(), [&](const auto &s) { return s.id == id; });
}

} // namespace vantor
