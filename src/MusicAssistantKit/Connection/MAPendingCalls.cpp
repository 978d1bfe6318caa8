#include "MusicAssistantKit/Connection/MAPendingCalls_p.h"

namespace vantor {

namespace {

constexpr qint64 authenticationRequired = 20;
/// Of one result, however many pieces it comes in.
constexpr qsizetype maxItems = 2'000'000;

/// The entries of arrays one after another; what is none takes the place of what was there.
MAJSON joined(MAJSON first, const MAJSON &second) {
    if (first.kind() != MAJSON::Kind::array || second.kind() != MAJSON::Kind::array)
        return second;
    QJsonArray all = first.value().toArray();
    first = MAJSON(); // so that `all` has no other owner and grows in place
    for (const QJsonValue entry : second.value().toArray())
        all.append(entry);
    return MAJSON(all);
}

} // namespace

AsyncStream<MAPendingCalls::Outcome> MAPendingCalls::add(const QString &messageID, const QString &command,
                                                         std::chrono::milliseconds timeout) {
    auto [producer, stream] = AsyncStream<Outcome>::make(latestValueOnly);
    const auto expire = [this, messageID] {
        const auto call = m_calls.find(messageID);
        end(call, MusicAssistantError::timeout(call->second.command));
    };
    m_calls[messageID] = {.command = command,
                          .producer = std::move(producer),
                          .gathered = {},
                          .timer = m_clock.after(timeout, expire)};
    return std::move(stream);
}

void MAPendingCalls::take(const MAEnvelope::Result &result) {
    const auto call = m_calls.find(result.messageID);
    if (call == m_calls.end())
        return;
    auto &gathered = call->second.gathered;
    const bool addsNothing = gathered && result.result.isNull() && !result.partial;
    if (!gathered)
        gathered = result.result;
    else if (!addsNothing)
        gathered = joined(std::exchange(*gathered, MAJSON()), result.result);
    if (gathered->size() > maxItems)
        end(call,
            MusicAssistantError::decoding(call->second.command, QStringLiteral("corrupt data at result")));
    else if (!result.partial)
        end(call, std::move(*gathered));
}

void MAPendingCalls::take(const MAEnvelope::Error &error) {
    const auto call = m_calls.find(error.messageID);
    if (call == m_calls.end())
        return;
    if (error.code == authenticationRequired)
        end(call, MusicAssistantError::unauthenticated());
    else
        end(call, MusicAssistantError::server(error.code, error.details));
}

void MAPendingCalls::failAll(const MusicAssistantError &error) {
    while (!m_calls.empty())
        end(m_calls.begin(), error);
}

void MAPendingCalls::end(Calls::iterator call, Outcome outcome) {
    auto ended = m_calls.extract(call);
    ended.mapped().producer.yield(std::move(outcome));
    ended.mapped().producer.finish();
}

} // namespace vantor
