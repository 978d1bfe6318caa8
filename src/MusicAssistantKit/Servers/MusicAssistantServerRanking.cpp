#include "MusicAssistantKit/Servers/MusicAssistantServerRanking.h"

#include "MusicAssistantKit/Servers/MusicAssistantAddressInput.h"

namespace vantor::MusicAssistantServerRanking {

using namespace Qt::Literals::StringLiterals;

bool isTailscale(const QUrl &url) {
    QString host = url.host().toLower();
    if (host.endsWith(u'.'))
        host.chop(1);
    if (MusicAssistantAddressInput::isTailscaleMagicDNS(host) || host.startsWith("fd7a:115c:a1e0:"_L1))
        return true;
    const auto address = MusicAssistantAddressInput::ipv4Number(host);
    return address && *address >> 22 == (100U << 24 | 64U << 16) >> 22; // 100.64.0.0/10
}

std::vector<Candidate> candidates(const std::vector<MusicAssistantServerConfiguration> &servers,
                                  const std::optional<QString> &ssid) {
    const QString network = ssid.value_or(QString()).trimmed();
    const auto prefers = [&](const MusicAssistantServerConfiguration &server) {
        return !network.isEmpty() &&
               std::any_of(server.networks.begin(), server.networks.end(),
                           [&](const QString &name) { return name.trimmed() == network; });
    };
    std::vector<Candidate> preferred;
    std::vector<Candidate> others;
    for (const auto &server : servers) {
        if (!server.address.isVerified())
            continue;
        if (prefers(server))
            preferred.push_back({.server = server, .network = network});
        else
            others.push_back({.server = server, .network = {}});
    }
    preferred.insert(preferred.end(), others.begin(), others.end());
    return preferred;
}

Decision decide(const std::vector<Candidate> &candidates, const Outcomes &outcomes) {
    for (const Candidate &candidate : candidates) {
        const auto outcome = outcomes.constFind(candidate.server.id);
        if (outcome == outcomes.constEnd())
            return {.kind = Decision::Kind::undecided, .candidate = {}};
        if (*outcome == Outcome::reachable)
            return {.kind = Decision::Kind::chosen, .candidate = candidate};
    }
    return {.kind = Decision::Kind::none, .candidate = {}};
}

} // namespace vantor::MusicAssistantServerRanking
