#pragma once

#include "MusicAssistantKit/Connection/MusicAssistantError.h"
#include "MusicAssistantKit/Wire/MAEnvelope.h"
#include "Platform/AsyncStream.h"
#include "Platform/Scheduler.h"

#include <map>
#include <variant>

namespace vantor {

/// The commands that wait for their answers, by message ID. Main thread.
class MAPendingCalls {
  public:
    using Outcome = std::variant<MAJSON, MusicAssistantError>;

    explicit MAPendingCalls(Scheduler &clock) : m_clock(clock) {}

    /// The stream gives one outcome.
    [[nodiscard]] AsyncStream<Outcome> add(const QString &messageID, const QString &command,
                                           std::chrono::milliseconds timeout);
    void take(const MAEnvelope::Result &result);
    void take(const MAEnvelope::Error &error);
    void failAll(const MusicAssistantError &error);
    [[nodiscard]] int count() const { return static_cast<int>(m_calls.size()); }

  private:
    struct Call {
        QString command;
        AsyncStreamProducer<Outcome> producer;
        std::optional<MAJSON> gathered; ///< of the pieces so far
        std::unique_ptr<Scheduler::Pending> timer;
    };
    using Calls = std::map<QString, Call>;

    void end(Calls::iterator call, Outcome outcome);

    Scheduler &m_clock;
    Calls m_calls;
};

} // namespace vantor
