#include "MusicAssistantKit/Servers/MusicAssistantSelectionController.h"

#include <QPointer>

namespace vantor {

using namespace Qt::Literals::StringLiterals;
using namespace MusicAssistantServerRanking;

namespace {

QString reasonFor(const Candidate &candidate) {
    if (candidate.network)
        return u"Preferred on the Wi-Fi network “%1”"_s.arg(*candidate.network);
    return u"First reachable server in the list"_s;
}

QString textOf(Outcome outcome) {
    switch (outcome) {
    case Outcome::reachable:
        return u"Reachable"_s;
    case Outcome::unreachable:
        return u"Not reachable"_s;
    case Outcome::timedOut:
        return u"No answer"_s;
    case Outcome::mismatch:
        return u"A different server answered"_s;
    case Outcome::schemaUnsupported:
        break;
    }
    return u"Unsupported server version"_s;
}

} // namespace

MusicAssistantSelectionController::MusicAssistantSelectionController(
    const MusicAssistantServerList &list, const WiFiNetworkProvider &wifi,
    const MusicAssistantServerSelector &selector, Scheduler &clock)
    : m_list(list), m_wifi(wifi), m_selector(selector), m_clock(clock) {
    connect(&list, &MusicAssistantServerList::changed, this, &MusicAssistantSelectionController::resolve);
    connect(&wifi, &WiFiNetworkProvider::networkChanged, this,
            [this] { m_later = m_clock.after(networkDebounce, [this] { resolve(); }); });
    resolve();
}

QString MusicAssistantSelectionController::libraryName() const {
    return m_current && !m_current->name.isEmpty() ? m_current->name : u"Music Assistant"_s;
}

QString MusicAssistantSelectionController::outcomeText(const QUuid &id) const {
    const auto outcome = m_outcomes.constFind(id);
    return outcome == m_outcomes.constEnd() ? u"Not checked yet"_s : textOf(*outcome);
}

void MusicAssistantSelectionController::resolve() {
    m_later.reset();
    ++m_round;
    auto all = candidates(m_list.servers(), m_wifi.ssid());
    const auto isCurrent = [this](const Candidate &candidate) {
        return candidate.server.id == m_current->id && candidate.server.address == m_current->address;
    };
    if (m_current && std::none_of(all.begin(), all.end(), isCurrent))
        m_current.reset(); // it was removed or is elsewhere now
    m_isFinding = !all.empty();
    if (!m_isFinding) {
        m_results = {};
        m_outcomes.clear();
        m_reason = u"No Music Assistant server tested yet"_s;
    } else {
        m_reason = u"Finding a server…"_s;
        m_results = m_selector.resolve(std::move(all));
        follow();
    }
    Q_EMIT changed();
}

QCoro::Task<> MusicAssistantSelectionController::follow() {
    const QPointer self(this);
    const int round = m_round;
    while (true) {
        const auto result = co_await m_results.next();
        if (!result || !self || m_round != round)
            co_return;
        take(*result);
    }
}

void MusicAssistantSelectionController::take(const MusicAssistantServerSelector::Result &result) {
    m_outcomes = result.outcomes;
    settle(result.decision);
    Q_EMIT changed();
}

void MusicAssistantSelectionController::settle(const Decision &decision) {
    switch (decision.kind) {
    case Decision::Kind::undecided:
        return;
    case Decision::Kind::chosen:
        m_current = decision.candidate->server;
        m_reason = reasonFor(*decision.candidate);
        break;
    case Decision::Kind::none:
        m_current.reset();
        m_reason = u"No Music Assistant server reachable"_s;
        m_later = m_clock.after(retryInterval, [this] { resolve(); });
        break;
    }
    m_isFinding = false;
}

} // namespace vantor
