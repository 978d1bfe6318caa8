#include "Vantor/Remote/Speakers.h"

#include "MusicBackendKit/MarqueeText.h"

#include <QPointer>

#include <algorithm>

namespace vantor {

/// What is known of one output, by its stream.
struct Speakers::Watch {
    Watch(const LatestSender::Send &send, AsyncStream<NowPlaying> playings)
        : stream(std::move(playings)), sender(send) {}

    AsyncStream<NowPlaying> stream;
    NowPlaying playing;
    Expected<double> volume;
    LatestSender sender;
};

Speakers::Speakers(RemoteOutput &selected, QObject *parent) : QObject(parent), m_selected(selected) {
    connect(&selected, &RemoteOutput::changed, this, &Speakers::changed);
    connect(&selected, &RemoteOutput::selectionChanged, this, &Speakers::changed);
    if (LibraryBrowser *const browser = selected.browser()) {
        for (const auto signal : {&LibraryBrowser::stateChanged, &LibraryBrowser::outputsChanged})
            connect(browser, signal, this, &Speakers::watchAll);
        connect(browser, &LibraryBrowser::activitiesChanged, this, &Speakers::changed);
    }
    watchAll();
}

Speakers::~Speakers() = default;

std::shared_ptr<MusicBackend> Speakers::backend() const {
    return m_selected.browser() ? m_selected.browser()->connected() : nullptr;
}

void Speakers::watchAll() {
    const std::shared_ptr<MusicBackend> before = std::exchange(m_backend, backend());
    if (m_backend != before)
        m_watches.clear();
    const QList<OutputDevice> outputs = m_backend ? m_selected.browser()->outputs() : QList<OutputDevice>();
    std::erase_if(m_watches, [&](const auto &watch) {
        return std::ranges::none_of(outputs, [&](const OutputDevice &output) {
            return output.isAvailable && output.id.rawValue == watch.first;
        });
    });
    for (const OutputDevice &output : outputs) {
        if (!output.isAvailable || m_watches.contains(output.id.rawValue))
            continue;
        const auto send = [this, id = output.id](double volume) { return sendVolume(id, volume); };
        const auto watch = std::make_shared<Watch>(send, m_backend->nowPlaying(output.id));
        m_watches.emplace(output.id.rawValue, watch);
        follow(watch);
    }
    Q_EMIT changed();
}

QCoro::Task<> Speakers::follow(std::weak_ptr<Watch> alive) {
    Watch *const watch = alive.lock().get();
    while (true) {
        const std::optional<NowPlaying> told = co_await watch->stream.next();
        if (alive.expired() || !told)
            co_return;
        watch->playing = *told;
        Q_EMIT changed();
        if (alive.expired())
            co_return;
    }
}

QList<Speakers::Row> Speakers::rows() const {
    const LibraryBrowser *const browser = m_selected.browser();
    if (!browser)
        return {};
    QList<OutputDevice> outputs = browser->outputs();
    const std::optional<OutputDevice> chosen = browser->output();
    const auto find = [&](const OutputDevice::ID &id) -> std::optional<OutputDevice> {
        const auto found = std::ranges::find(outputs, id, &OutputDevice::id);
        return found != outputs.end() ? std::optional(*found) : std::nullopt;
    };
    if (chosen && !find(chosen->id))
        outputs.append(*chosen);
    QList<Row> rows;
    for (const OutputDevice &output : outputs) {
        Row &row = rows.emplace_back();
        row.device = output;
        row.isSelected = chosen && chosen->id == output.id;
        if (const auto watch = m_watches.find(output.id.rawValue); watch != m_watches.end()) {
            row.playing = watch->second->playing;
            if (const auto volume = watch->second->volume.value())
                row.playing.volume = volume;
        }
        if (row.isSelected && m_selected.isAvailable())
            row.playing = m_selected.nowPlaying();
        for (const OutputActivity &activity : browser->activities()) {
            const std::optional<OutputDevice> other = find(activity.output);
            if (activity.output == output.id && activity.leader && *activity.leader != output.id)
                row.leader = find(*activity.leader);
            else if (activity.leader == output.id && activity.output != output.id && other)
                row.members.append(*other);
        }
        for (const OutputDevice &other : outputs) {
            const bool mayJoin = output.groupableWith && output.groupableWith->contains(other.id);
            if (other.id != output.id && other.isAvailable && (mayJoin || row.members.contains(other)))
                row.joinable.append(other);
        }
    }
    return rows;
}

QString Speakers::statusOf(const Row &row) {
    if (!row.device.isAvailable)
        return tr("Not available");
    if (row.leader)
        return tr("Plays along with %1").arg(row.leader->name);
    const QString name =
        MarqueeText::name(row.playing.artist.value_or(QString()), row.playing.title.value_or(QString()));
    switch (row.playing.state) {
    case NowPlaying::State::playing:
        return name.isEmpty() ? tr("Playing") : tr("Playing %1").arg(name);
    case NowPlaying::State::paused:
        return name.isEmpty() ? tr("Paused") : tr("Paused at %1").arg(name);
    case NowPlaying::State::loading:
        return MarqueeText::buffering();
    case NowPlaying::State::stopped:
        break;
    }
    return tr("Silent");
}

// What is done

void Speakers::setVolume(const OutputDevice::ID &output, double volume) {
    if (m_selected.isSelected() && m_selected.device().id == output) {
        m_selected.transport(TransportCommand::setVolume(volume));
        return;
    }
    const auto watch = m_watches.find(output.rawValue);
    if (watch == m_watches.end())
        return;
    watch->second->volume.expect(volume);
    watch->second->sender.set(volume);
    Q_EMIT changed();
}

QCoro::Task<> Speakers::sendVolume(OutputDevice::ID output, double volume) {
    const QPointer<Speakers> self(this);
    const std::shared_ptr<MusicBackend> backend = m_backend;
    std::exception_ptr error;
    try {
        if (backend)
            co_await backend->transport(TransportCommand::setVolume(volume), output);
    } catch (...) {
        error = std::current_exception();
    }
    if (!self || !error)
        co_return;
    if (const auto watch = m_watches.find(output.rawValue); watch != m_watches.end())
        watch->second->volume.forget();
    m_selected.fail(error);
    Q_EMIT changed();
}

void Speakers::setMember(const OutputDevice::ID &leader, const OutputDevice::ID &member, bool isMember) {
    changeGroup(leader, member, isMember);
}

QCoro::Task<> Speakers::changeGroup(OutputDevice::ID leader, OutputDevice::ID member, bool isMember) {
    const QPointer<RemoteOutput> selected(&m_selected);
    const std::shared_ptr<MusicBackend> backend = m_backend;
    QList<OutputDevice::ID> adding;
    QList<OutputDevice::ID> removing;
    (isMember ? adding : removing).append(member);
    std::exception_ptr error;
    try {
        if (backend)
            co_await backend->setGroupMembers(leader, adding, removing);
    } catch (...) {
        error = std::current_exception();
    }
    if (selected && error)
        selected->fail(error);
}

bool Speakers::canTakeMusic(const OutputDevice &output) const {
    return m_selected.isAvailable() && output.isAvailable && m_selected.device().id != output.id;
}

void Speakers::takeMusic(const OutputDevice &output) {
    if (canTakeMusic(output))
        transfer(output);
}

QCoro::Task<> Speakers::transfer(OutputDevice output) {
    const QPointer<RemoteOutput> selected(&m_selected);
    const std::shared_ptr<MusicBackend> backend = m_backend;
    const OutputDevice::ID from = m_selected.device().id;
    const bool plays = m_selected.view().wantsToPlay;
    std::exception_ptr error;
    try {
        co_await backend->transfer(from, output.id, plays);
    } catch (...) {
        error = std::current_exception();
    }
    if (!selected)
        co_return;
    if (error)
        selected->fail(error);
    else if (selected->isSelected() && selected->device().id == from)
        selected->select(output); // the user goes along with the music
}

} // namespace vantor
