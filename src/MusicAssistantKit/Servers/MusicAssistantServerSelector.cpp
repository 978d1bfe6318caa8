#include "MusicAssistantKit/Servers/MusicAssistantServerSelector.h"

#include "MusicAssistantKit/Connection/MusicAssistantClient.h"

namespace vantor {

using namespace MusicAssistantServerRanking;

namespace {

/// Of one call of resolve(); its probes share it and the last of them ends the stream.
struct Resolution {
    std::vector<Candidate> candidates;
    Outcomes outcomes;
    AsyncStreamProducer<MusicAssistantServerSelector::Result> producer;
};

QCoro::Task<Outcome> outcomeOf(MusicAssistantServerAddress address, MAHTTPTransport *http,
                               std::chrono::milliseconds timeout) {
    try {
        const MAServerInfo info = co_await MusicAssistantClient::serverInfo(address.baseURL, *http, timeout);
        if (info.serverID != address.serverID)
            co_return Outcome::mismatch;
        co_return MusicAssistantClient::schemaProblem(info) ? Outcome::schemaUnsupported : Outcome::reachable;
    } catch (const MusicAssistantError &error) {
        co_return error.errorCase() == MusicAssistantError::Case::timeout ? Outcome::timedOut
                                                                          : Outcome::unreachable;
    }
}

QCoro::Task<> probe(std::shared_ptr<Resolution> resolution, std::size_t index, MAHTTPTransport *http,
                    std::chrono::milliseconds timeout) {
    const auto server = resolution->candidates[index].server;
    const Outcome outcome = co_await outcomeOf(server.address, http, timeout);
    resolution->outcomes.insert(server.id, outcome);
    resolution->producer.yield(
        {.decision = decide(resolution->candidates, resolution->outcomes), .outcomes = resolution->outcomes});
}

} // namespace

AsyncStream<MusicAssistantServerSelector::Result>
MusicAssistantServerSelector::resolve(std::vector<Candidate> candidates) const {
    auto [producer, stream] = AsyncStream<Result>::make(latestValueOnly);
    const auto resolution = std::make_shared<Resolution>();
    resolution->candidates = std::move(candidates);
    resolution->producer = std::move(producer);
    if (resolution->candidates.empty())
        resolution->producer.yield({.decision = decide({}, {}), .outcomes = {}});
    for (std::size_t i = 0; i < resolution->candidates.size(); ++i)
        probe(resolution, i, &m_http, m_probeTimeout);
    return std::move(stream);
}

} // namespace vantor
