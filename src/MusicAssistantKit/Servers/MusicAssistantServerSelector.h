#pragma once

#include "MusicAssistantKit/Connection/MAHTTPTransport.h"
#include "MusicAssistantKit/Servers/MusicAssistantServerRanking.h"
#include "Platform/AsyncStream.h"

namespace vantor {

/// Asks all candidates at once who they are, and decides. Main thread.
class MusicAssistantServerSelector {
  public:
    struct Result {
        MusicAssistantServerRanking::Decision decision;
        MusicAssistantServerRanking::Outcomes outcomes;
    };

    /// Long enough for a sleeping network; a server on a waking one answers in milliseconds.
    static constexpr std::chrono::milliseconds standardProbeTimeout{4'000};

    /// `http` outlives every probe.
    explicit MusicAssistantServerSelector(MAHTTPTransport &http,
                                          std::chrono::milliseconds probeTimeout = standardProbeTimeout)
        : m_http(http), m_probeTimeout(probeTimeout) {}

    /// A result after every answer, so that a choice need not wait for what cannot change it; ends when all
    /// candidates have their outcome. Without candidates it gives the decision `none`.
    [[nodiscard]] AsyncStream<Result>
    resolve(std::vector<MusicAssistantServerRanking::Candidate> candidates) const;

  private:
    MAHTTPTransport &m_http;
    std::chrono::milliseconds m_probeTimeout;
};

} // namespace vantor
