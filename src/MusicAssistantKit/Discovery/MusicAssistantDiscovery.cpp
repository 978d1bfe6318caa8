#include "MusicAssistantKit/Discovery/MusicAssistantDiscovery.h"

#include "MusicAssistantKit/Connection/MusicAssistantClient.h"
#include "MusicAssistantKit/Servers/MusicAssistantAddressInput.h"

#include <QPointer>

namespace vantor {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr std::chrono::seconds longestLook{6};
constexpr std::chrono::seconds probeTimeout{4};
/// Anybody in the network can announce hosts.
constexpr std::size_t maxHosts = 64;

/// By its name, which stays when its address changes, then by its address.
std::vector<QUrl> addressesOf(const MusicAssistantDiscoveredHost &host) {
    std::vector<QUrl> urls;
    for (const QString &name : {host.host, host.address}) {
        QUrl url;
        url.setScheme(u"http"_s);
        url.setHost(name.endsWith(u'.') ? name.chopped(1) : name);
        url.setPort(host.port.value_or(MusicAssistantAddressInput::defaultPort));
        if (!url.host().isEmpty())
            urls.push_back(url);
    }
    return urls;
}

} // namespace

QString MusicAssistantDiscovery::buttonText() {
    return u"Find Servers on This Network"_s;
}

MusicAssistantDiscovery::MusicAssistantDiscovery(const Collaborators &collaborators, QObject *parent)
    : QObject(parent), m_with(collaborators) {
    connect(&m_with.browser, &MusicAssistantServiceBrowser::hostFound, this,
            [this](const MusicAssistantDiscoveredHost &host) { take(host); });
    connect(&m_with.browser, &MusicAssistantServiceBrowser::settled, this, [this] {
        m_browserSettled = true;
        settleIfDone();
    });
}

void MusicAssistantDiscovery::start() {
    stop();
    m_hosts.clear();
    m_servers.clear();
    m_answers = 0;
    m_looking = true;
    m_limit = m_with.clock.after(longestLook, [this] {
        m_looking = false;
        Q_EMIT changed();
    });
    Q_EMIT changed();
    m_with.browser.start();
}

void MusicAssistantDiscovery::stop() {
    ++m_round;
    m_probes = 0;
    m_browserSettled = false;
    m_looking = false;
    m_limit.reset();
    m_with.browser.stop();
}

QString MusicAssistantDiscovery::statusText() const {
    if (!m_servers.empty())
        return {};
    if (m_looking)
        return u"Looking for Music Assistant servers…"_s;
    if (!m_hosts.empty() && m_answers == 0)
        return u"No Music Assistant server reachable on this network."_s;
    return u"No servers found."_s;
}

void MusicAssistantDiscovery::take(const MusicAssistantDiscoveredHost &host) {
    const bool isKnown = std::find(m_hosts.begin(), m_hosts.end(), host) != m_hosts.end();
    if (isKnown || m_hosts.size() >= maxHosts)
        return;
    m_hosts.push_back(host);
    probe(host);
}

QCoro::Task<> MusicAssistantDiscovery::probe(MusicAssistantDiscoveredHost host) {
    const QPointer self(this);
    const int round = m_round;
    ++m_probes;
    const auto urls = addressesOf(host);
    for (const QUrl &url : urls) {
        std::optional<MAServerInfo> info;
        try {
            info = co_await MusicAssistantClient::serverInfo(url, m_with.http, probeTimeout);
        } catch (const MusicAssistantError &) {
            // Most hosts that announce something are no such server.
        }
        if (!self || m_round != round)
            co_return;
        if (info) {
            take(*info, url);
            break;
        }
    }
    --m_probes;
    settleIfDone();
}

void MusicAssistantDiscovery::take(const MAServerInfo &info, const QUrl &url) {
    ++m_answers;
    const MusicAssistantServerConfiguration *configured = nullptr;
    for (const auto &server : m_with.list.servers()) {
        if (server.address.serverID != info.serverID)
            continue;
        if (server.address.baseURL == url)
            return;
        configured = configured ? configured : &server;
    }
    if (configured) {
        const auto moved = *configured; // the list may change while it is told
        if (onConfiguredServerMoved)
            onConfiguredServerMoved(moved, url);
        return;
    }
    const auto isSame = [&](const MusicAssistantDiscoveredServer &server) {
        return server.id == info.serverID;
    };
    if (std::any_of(m_servers.begin(), m_servers.end(), isSame))
        return;
    m_servers.push_back({.id = info.serverID, .url = url, .name = info.name});
    Q_EMIT changed();
}

void MusicAssistantDiscovery::settleIfDone() {
    if (!m_looking || !m_browserSettled || m_probes > 0)
        return;
    m_looking = false;
    m_limit.reset();
    Q_EMIT changed();
}

} // namespace vantor
