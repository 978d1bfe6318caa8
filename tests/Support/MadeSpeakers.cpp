#include "MadeSpeakers.h"

#include "MusicBackendKit/MusicBackendError.h"

#include <QDateTime>

namespace vantor {

namespace {

double now() {
    return static_cast<double>(QDateTime::currentMSecsSinceEpoch()) / 1000;
}

} // namespace

MadeSpeakers::MadeSpeakers() {
    using Capability = MusicBackendCapability;
    offers = Capability::search | Capability::remoteOutputs | Capability::queueEditing |
             Capability::favorites | Capability::playlistEditing | Capability::playlists;
}

MadeSpeakers::Speaker &MadeSpeakers::addSpeaker(const QString &id, const QString &name, int items,
                                                std::optional<double> volume) {
    OutputDevice device;
    device.id = {id};
    device.name = name;
    device.groupableWith = QSet<OutputDevice::ID>();
    for (OutputDevice &other : speakers) {
        if (other.kind == OutputDevice::Kind::remote) {
            device.groupableWith->insert(other.id);
            other.groupableWith->insert(device.id);
        }
    }
    speakers.append(device);
    Speaker &speaker = m_speakers[id];
    speaker.playing = NowPlaying::idle({id}, now());
    speaker.playing.volume = volume;
    for (int i = 0; i < items; ++i) {
        RemoteQueueItem item;
        item.id = QStringLiteral("%1-%2").arg(id).arg(i);
        item.title = QStringLiteral("%1 %2").arg(name).arg(i + 1);
        item.duration = 200;
        item.item = MediaID{MediaKind::track, item.id};
        speaker.items.append(item);
    }
    if (items > 0)
        setCurrent(speaker, 0, false);
    tellActivities();
    return speaker;
}

void MadeSpeakers::removeSpeaker(const QString &id) {
    speakers.removeIf([&](const OutputDevice &device) { return device.id.rawValue == id; });
    m_speakers.erase(id);
    tellActivities();
}

QStringList MadeSpeakers::titles(const QString &id) const {
    QStringList titles;
    for (const RemoteQueueItem &item : m_speakers.at(id).items)
        titles.append(item.title);
    return titles;
}

RemoteQueueSnapshot MadeSpeakers::snapshot(const QString &id) const {
    const Speaker &speaker = m_speakers.at(id);
    RemoteQueueSnapshot queue = RemoteQueueSnapshot::empty({id});
    queue.total = static_cast<int>(speaker.items.size());
    queue.isComplete = queue.total <= window;
    const int first = queue.isComplete ? 0 : speaker.current.value_or(0);
    for (int row = first; row < std::min(queue.total, first + window); ++row) {
        queue.items.append(speaker.items[row]);
        queue.items.last().index = row;
    }
    queue.currentIndex = speaker.current;
    queue.isShuffled = speaker.isShuffled;
    queue.repeats = speaker.repeats;
    return queue;
}

void MadeSpeakers::tell(const QString &id) {
    Speaker &speaker = m_speakers.at(id);
    for (auto &producer : speaker.playings)
        producer.yield(speaker.playing);
    for (auto &producer : speaker.queues)
        producer.yield(snapshot(id));
}

void MadeSpeakers::tellActivities() {
    QList<OutputActivity> rows;
    for (const OutputDevice &device : speakers) {
        const auto speaker = m_speakers.find(device.id.rawValue);
        if (speaker != m_speakers.end())
            rows.append({device.id, device.name, speaker->second.playing.state, speaker->second.leader, {}});
    }
    m_activities.yield(rows);
}

MadeSpeakers::Speaker &MadeSpeakers::find(const OutputDevice::ID &on) {
    const auto found = m_speakers.find(on.rawValue);
    if (found == m_speakers.end())
        throw MusicBackendError::unknownOutput(on);
    return found->second;
}

AsyncStream<NowPlaying> MadeSpeakers::nowPlaying(OutputDevice::ID on) {
    auto [producer, stream] = AsyncStream<NowPlaying>::make(latestValueOnly);
    if (const auto found = m_speakers.find(on.rawValue); found != m_speakers.end()) {
        producer.yield(found->second.playing);
        found->second.playings.push_back(std::move(producer));
    }
    return std::move(stream);
}

AsyncStream<RemoteQueueSnapshot> MadeSpeakers::queue(OutputDevice::ID on) {
    auto [producer, stream] = AsyncStream<RemoteQueueSnapshot>::make(latestValueOnly);
    if (const auto found = m_speakers.find(on.rawValue); found != m_speakers.end()) {
        producer.yield(snapshot(on.rawValue));
        found->second.queues.push_back(std::move(producer));
    }
    return std::move(stream);
}

AsyncStream<QList<OutputActivity>> MadeSpeakers::activities() {
    auto [producer, stream] = AsyncStream<QList<OutputActivity>>::make(latestValueOnly);
    m_activities = std::move(producer);
    tellActivities();
    return std::move(stream);
}

QCoro::Task<QList<RemoteQueueItem>> MadeSpeakers::queueItems(OutputDevice::ID on, PageRequest page) {
    co_await answer(QStringLiteral("queue %1+%2").arg(page.offset).arg(page.limit), delay);
    co_return find(on).items.mid(page.offset, page.limit);
}

// What is done

void MadeSpeakers::setCurrent(Speaker &speaker, std::optional<int> row, bool plays) {
    NowPlaying &playing = speaker.playing;
    speaker.current = row;
    playing.elapsed = 0;
    playing.updatedAt = now();
    playing.state = plays && row ? NowPlaying::State::playing : NowPlaying::State::stopped;
    const RemoteQueueItem item = row ? speaker.items[*row] : RemoteQueueItem();
    playing.title = row ? std::optional(item.title) : std::nullopt;
    playing.duration = item.duration;
    playing.item = item.item;
}

void MadeSpeakers::carryOut(Speaker &speaker, const TransportCommand &command) {
    using Kind = TransportCommand::Kind;
    NowPlaying &playing = speaker.playing;
    const auto count = static_cast<int>(speaker.items.size());
    playing.elapsed = playing.elapsedAt(now());
    playing.updatedAt = now();
    switch (command.kind) {
    case Kind::play:
        playing.state = NowPlaying::State::playing;
        break;
    case Kind::pause:
        playing.state = NowPlaying::State::paused;
        break;
    case Kind::stop:
        playing.state = NowPlaying::State::stopped;
        playing.elapsed = 0;
        break;
    case Kind::seek:
        playing.elapsed = command.value;
        break;
    case Kind::setVolume:
        playing.volume = command.value;
        break;
    case Kind::setShuffle:
        speaker.isShuffled = command.isOn;
        break;
    case Kind::setRepeat:
        speaker.repeats = command.isOn;
        break;
    case Kind::next:
        setCurrent(speaker, std::min(speaker.current.value_or(0) + 1, count - 1), true);
        break;
    case Kind::previous:
        setCurrent(speaker, std::max(speaker.current.value_or(0) - 1, 0), true);
        break;
    case Kind::setBalance:
    case Kind::togglePlayPause:
        throw MusicBackendError::unsupported(MusicBackendCapability::remoteOutputs);
    }
}

QCoro::Task<> MadeSpeakers::transport(TransportCommand command, OutputDevice::ID on) {
    const auto self = shared_from_this();
    commands.append({command, on.rawValue});
    peakCommands = std::max(peakCommands, ++m_underWay);
    std::exception_ptr error;
    try {
        co_await answer(QStringLiteral("transport"), delay);
        carryOut(find(on), command);
        tell(on.rawValue);
        tellActivities();
    } catch (...) {
        error = std::current_exception();
    }
    --m_underWay;
    if (error)
        std::rethrow_exception(error);
}

std::optional<OutputControls> MadeSpeakers::controls(const OutputDevice::ID &on) const {
    const auto found = m_speakers.find(on.rawValue);
    if (found == m_speakers.end())
        return std::nullopt;
    return OutputControls{found->second.playing.volume.has_value(), found->second.isMuted};
}

QCoro::Task<> MadeSpeakers::setMuted(OutputDevice::ID on, bool isMuted) {
    const auto self = shared_from_this();
    co_await answer(QStringLiteral("mute"), delay);
    find(on).isMuted = isMuted;
    tellActivities();
}

QCoro::Task<> MadeSpeakers::play(QList<MediaID> items, OutputDevice on, PlayMode mode) {
    co_await answer(QStringLiteral("play"), delay);
    played.append({{items, mode}, on.id});
    Speaker &speaker = find(on.id);
    const bool replaces = mode.kind == PlayMode::Kind::replace;
    if (replaces)
        speaker.items.clear();
    for (const MediaID &id : items) {
        RemoteQueueItem item;
        item.id = QStringLiteral("added-%1").arg(id.rawValue);
        item.title = id.rawValue;
        item.item = id;
        speaker.items.append(item);
    }
    if (replaces)
        setCurrent(speaker, mode.startIndex, true);
    tell(on.id.rawValue);
}

void MadeSpeakers::carryOut(Speaker &speaker, const QueueEdit &edit) {
    const auto place = [&](const QString &id) {
        if (buffered.contains(id))
            throw QueueEditError::buffered();
        const auto found = std::ranges::find(speaker.items, id, &RemoteQueueItem::id);
        if (found == speaker.items.end())
            throw MusicBackendError::backend(QStringLiteral("No such item."));
        return static_cast<int>(found - speaker.items.begin());
    };
    const QString current = speaker.current ? speaker.items[*speaker.current].id : QString();
    switch (edit.kind) {
    case QueueEdit::Kind::play:
        return setCurrent(speaker, edit.index, true);
    case QueueEdit::Kind::clear:
        speaker.items.clear();
        return setCurrent(speaker, std::nullopt, false);
    case QueueEdit::Kind::remove:
        for (const QString &id : edit.items)
            speaker.items.removeAt(place(id));
        break;
    case QueueEdit::Kind::move: {
        const int from = place(edit.itemID);
        speaker.items.move(from, from + edit.shift);
        break;
    }
    }
    const auto found = std::ranges::find(speaker.items, current, &RemoteQueueItem::id);
    speaker.current = found == speaker.items.end()
                          ? std::nullopt
                          : std::optional(static_cast<int>(found - speaker.items.begin()));
}

QCoro::Task<> MadeSpeakers::edit(QueueEdit edit, OutputDevice::ID on) {
    co_await answer(QStringLiteral("edit"), delay);
    edits.append(edit);
    carryOut(find(on), edit);
    tell(on.rawValue);
}

QCoro::Task<> MadeSpeakers::saveQueueAsPlaylist(OutputDevice::ID, QString name) {
    co_await answer(QStringLiteral("save"), delay);
    if (name.isEmpty())
        throw MusicBackendError::backend(QStringLiteral("A playlist needs a name."));
    savedQueues.append(name);
}

QCoro::Task<> MadeSpeakers::favoriteCurrentTrack(OutputDevice::ID on) {
    co_await answer(QStringLiteral("favourite"), delay);
    favoriteTracks.append(find(on).playing.title.value_or(QString()));
}

QCoro::Task<> MadeSpeakers::transfer(OutputDevice::ID from, OutputDevice::ID to, bool autoPlay) {
    co_await answer(QStringLiteral("transfer"), delay);
    Speaker &source = find(from);
    Speaker &target = find(to);
    target.items = std::exchange(source.items, {});
    setCurrent(target, source.current, autoPlay);
    setCurrent(source, std::nullopt, false);
    tell(from.rawValue);
    tell(to.rawValue);
}

QCoro::Task<> MadeSpeakers::setGroupMembers(OutputDevice::ID leader, QList<OutputDevice::ID> adding,
                                            QList<OutputDevice::ID> removing) {
    const auto self = shared_from_this();
    co_await answer(QStringLiteral("group"), delay);
    for (const OutputDevice::ID &id : adding)
        find(id).leader = leader;
    for (const OutputDevice::ID &id : removing)
        find(id).leader.reset();
    tellActivities();
}

} // namespace vantor
