#pragma once

#include "MusicAssistantKit/Servers/MusicAssistantServerConfiguration.h"

#include <QHash>

namespace vantor {

/// In which order servers are tried, and which one wins. Pure functions over values.
namespace MusicAssistantServerRanking {

struct Candidate {
    MusicAssistantServerConfiguration server;
    std::optional<QString> network; ///< the Wi-Fi network that speaks for it; none: its place in the list
    bool operator==(const Candidate &) const = default;
};

enum class Outcome { reachable, unreachable, timedOut, mismatch, schemaUnsupported };
using Outcomes = QHash<QUuid, Outcome>; ///< by the configuration's ID

struct Decision {
    enum class Kind { chosen, undecided, none };
    Kind kind = Kind::undecided;
    std::optional<Candidate> candidate; ///< of `chosen`
    bool operator==(const Decision &) const = default;
};

/// Whether the host is a machine in the user's Tailscale network.
[[nodiscard]] bool isTailscale(const QUrl &url);

/// The verified servers: first those that prefer the Wi-Fi network `ssid`, then the others, each in list
/// order.
[[nodiscard]] std::vector<Candidate> candidates(const std::vector<MusicAssistantServerConfiguration> &servers,
                                                const std::optional<QString> &ssid);

/// The first reachable one, once nothing better can still answer.
[[nodiscard]] Decision decide(const std::vector<Candidate> &candidates, const Outcomes &outcomes);

} // namespace MusicAssistantServerRanking

} // namespace vantor
