#include "LibraryBrowser/LibraryBrowser.h"

#include <QPointer>

#include <algorithm>

namespace vantor {

QList<LibrarySection> librarySections(MusicBackendCapabilities capabilities) {
    using Capability = MusicBackendCapability;
    QList<LibrarySection> sections{LibrarySection::artists, LibrarySection::albums, LibrarySection::tracks};
    const std::pair<Capability, LibrarySection> offered[] = {
        {Capability::playlists, LibrarySection::playlists},
        {Capability::radio, LibrarySection::radios},
        {Capability::favorites, LibrarySection::favorites},
        {Capability::recommendations, LibrarySection::recommendations}};
    for (const auto &[capability, section] : offered) {
        if (capabilities.testFlag(capability))
            sections.append(section);
    }
    return sections;
}

LibraryBrowser::~LibraryBrowser() {
    if (m_backend)
        m_backend->disconnect();
}

void LibraryBrowser::setBackend(const std::shared_ptr<MusicBackend> &backend) {
    if (m_backend == backend && (backend || m_state == State::noSource))
        return;
    takeLeave(backend);
    connectBackend();
}

void LibraryBrowser::setUnavailable(const std::optional<LibraryFailure> &why) {
    takeLeave(nullptr);
    beginTurn(why ? State::failed : State::connecting, why);
}

void LibraryBrowser::takeLeave(const std::shared_ptr<MusicBackend> &next) {
    if (const auto before = std::exchange(m_backend, next))
        before->disconnect(); // goes on by itself
    m_chosenOutput.reset();
}

void LibraryBrowser::setInterrupted(bool isInterrupted) {
    if (std::exchange(m_isInterrupted, isInterrupted) != isInterrupted && m_state == State::connected)
        Q_EMIT interruptionChanged();
}

std::shared_ptr<MusicBackend> LibraryBrowser::connected() const {
    return m_state == State::connected ? m_backend : nullptr;
}

MusicBackendCapabilities LibraryBrowser::capabilities() const {
    return m_backend ? m_backend->capabilities() : MusicBackendCapabilities();
}

void LibraryBrowser::retry() {
    if (m_state != State::failed)
        return;
    if (m_backend)
        connectBackend();
    else
        Q_EMIT sourceAsked();
}

void LibraryBrowser::connectBackend() {
    beginTurn(m_backend ? State::connecting : State::noSource, {});
    if (m_backend && m_state == State::connecting)
        openConnection();
}

void LibraryBrowser::beginTurn(State state, const std::optional<LibraryFailure> &failure) {
    m_turn = std::make_shared<char>();
    m_changes = {};
    m_activityStream = {};
    m_activities.clear();
    m_loadsOutputs = false;
    m_outputsAreOld = false;
    m_outputs.clear();
    m_state = state;
    m_failure = failure;
    Q_EMIT sourceChanged();
    Q_EMIT outputsChanged();
    Q_EMIT stateChanged();
}

QCoro::Task<> LibraryBrowser::openConnection() {
    const std::weak_ptr<char> turn = m_turn;
    const std::shared_ptr<MusicBackend> backend = m_backend;
    std::optional<LibraryFailure> failure;
    try {
        co_await backend->connect();
    } catch (...) {
        failure = LibraryFailure::of(std::current_exception());
    }
    if (turn.expired())
        co_return;
    if (failure) {
        setState(State::failed, failure);
        co_return;
    }
    m_changes = backend->libraryChanges();
    followChanges();
    m_activityStream = backend->activities();
    followActivities();
    loadOutputs();
    setState(State::connected);
}

QCoro::Task<> LibraryBrowser::loadOutputs() {
    const std::weak_ptr<char> turn = m_turn;
    const std::shared_ptr<MusicBackend> backend = m_backend;
    if (m_loadsOutputs) {
        m_outputsAreOld = true;
        co_return;
    }
    m_loadsOutputs = true;
    QList<OutputDevice> outputs;
    std::optional<LibraryFailure> failure;
    try {
        outputs = co_await backend->outputs();
    } catch (...) {
        failure = LibraryFailure::of(std::current_exception());
    }
    if (turn.expired())
        co_return;
    m_loadsOutputs = false;
    if (std::exchange(m_outputsAreOld, false))
        loadOutputs();
    if (failure) {
        Q_EMIT failed(failure->sentence);
        co_return;
    }
    if (outputs == m_outputs)
        co_return;
    m_outputs = outputs;
    if (const auto told = output(); told && m_chosenOutput)
        m_chosenOutput = told;
    Q_EMIT outputsChanged();
}

QCoro::Task<> LibraryBrowser::followActivities() {
    const std::weak_ptr<char> turn = m_turn;
    while (true) {
        const std::optional<QList<OutputActivity>> activities = co_await m_activityStream.next();
        if (turn.expired() || !activities)
            co_return;
        m_activities = *activities;
        loadOutputs();
        Q_EMIT activitiesChanged();
    }
}

QCoro::Task<> LibraryBrowser::followChanges() {
    const std::weak_ptr<char> turn = m_turn;
    std::size_t missed = 0;
    while (true) {
        const std::optional<LibraryChange> change = co_await m_changes.next();
        if (turn.expired() || !change)
            co_return;
        if (m_changes.missed() != missed) {
            missed = m_changes.missed();
            Q_EMIT refreshed();
        }
        if (!turn.expired())
            Q_EMIT changed(*change);
        if (turn.expired())
            co_return;
    }
}

void LibraryBrowser::setState(State state, const std::optional<LibraryFailure> &failure) {
    m_state = state;
    m_failure = failure;
    Q_EMIT stateChanged();
}

std::optional<OutputDevice> LibraryBrowser::output() const {
    const OutputDevice::ID wanted = m_chosenOutput ? m_chosenOutput->id : OutputDevice::thisMacID();
    const auto found = std::ranges::find(m_outputs, wanted, &OutputDevice::id);
    if (found != m_outputs.end())
        return *found;
    // Music that was meant for one room is not played in another.
    if (m_chosenOutput) {
        OutputDevice missing = *m_chosenOutput;
        missing.isAvailable = false;
        return missing;
    }
    return m_outputs.isEmpty() ? std::nullopt : std::optional(m_outputs.first());
}

void LibraryBrowser::chooseOutput(const OutputDevice::ID &id, const QString &name) {
    OutputDevice chosen;
    chosen.id = id;
    chosen.name = name;
    chosen.kind = id == OutputDevice::thisMacID() ? OutputDevice::Kind::thisMac : OutputDevice::Kind::remote;
    const auto found = std::ranges::find(m_outputs, id, &OutputDevice::id);
    m_chosenOutput = found != m_outputs.end() ? *found : chosen;
    Q_EMIT outputChosen(*m_chosenOutput);
    Q_EMIT outputsChanged();
}

void LibraryBrowser::play(const PlayRequest &request) {
    // A source that has not told its outputs yet knows its own when it is asked.
    const OutputDevice on = output().value_or(OutputDevice::thisMac());
    Q_EMIT aboutToPlay(on);
    m_plays.push_back({m_backend, on, request});
    if (m_plays.size() == 1)
        playInTurn();
}

QCoro::Task<> LibraryBrowser::playInTurn() {
    const QPointer<LibraryBrowser> self(this);
    while (self && !m_plays.empty()) {
        const auto [backend, on, request] = m_plays.front();
        std::optional<LibraryFailure> failure;
        try {
            if (backend)
                co_await backend->play(request.items, on, request.mode);
        } catch (...) {
            failure = LibraryFailure::of(std::current_exception());
        }
        if (!self)
            co_return;
        m_plays.pop_front();
        if (failure)
            Q_EMIT failed(failure->sentence);
    }
}

void LibraryBrowser::setFavorite(const QList<MediaID> &ids, bool on) {
    if (m_backend)
        setFavorites(ids, on);
}

QCoro::Task<> LibraryBrowser::setFavorites(QList<MediaID> ids, bool on) {
    const QPointer<LibraryBrowser> self(this);
    const std::shared_ptr<MusicBackend> backend = m_backend;
    std::optional<LibraryFailure> failure;
    try {
        for (const MediaID &id : ids)
            co_await backend->setFavorite(id, on);
    } catch (...) {
        failure = LibraryFailure::of(std::current_exception());
    }
    if (self && failure)
        Q_EMIT failed(failure->sentence);
}

} // namespace vantor
