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
    Expected<bool> muted;
    LatestSender sender;
};

Speakers::Speakers(RemoteOutput &selected, QObject *parent) : QObject(parent), m_selected(selected) {
    connect(&selected, &RemoteOutput::changed, this, &Speakers::changed);
    connect(&selected, &RemoteOutput::selectionChanged, this, &Speakers::changed);
    if (LibraryBrowser *const browser = selected.browser()) {
        for (const auto signal : {&LibraryBrowser::stateChanged, &LibraryBrowser::outputsChanged})
            connect(browser, signal, this, &Speakers::watchAll);
        connect(browser, &LibraryBrowser::interruptionChanged, this, &Speakers::changed);
        connect(browser, &LibraryBrowser::activitiesChanged, this, &Speakers::takeControls);
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

void Speakers::takeControls() {
    for (const auto &[id, watch] : m_watches) {
        const auto controls = m_backend->controls({id});
        if (controls && watch->muted.value() == controls->isMuted)
            watch->muted.forget();
    }
    Q_EMIT changed();
}

bool Speakers::isSelected(const OutputDevice::ID &output) const {
    return m_selected.isSelected() && m_selected.device().id == output;
}

QList<Speakers::Row> Speakers::rows() const {
    const LibraryBrowser *const browser = m_selected.browser();
    if (!browser)
        return {};
    const std::optional<OutputDevice> chosen = browser->output();
    QList<Row> rows;
    for (const OutputDevice &output : m_selected.outputs()) {
        rows.append(rowOf(output));
        rows.last().isSelected = chosen && chosen->id == output.id;
    }
    return rows;
}

Speakers::Row Speakers::rowOf(const OutputDevice &output) const {
    Row row;
    row.device = output;
    row.isInterrupted = m_selected.browser()->isInterrupted();
    row.group = SpeakerGroup::of(output, *m_selected.browser());
    if (isSelected(output.id) && m_selected.isAvailable()) {
        row.playing = m_selected.nowPlaying();
        row.controls = m_selected.controls();
        return row;
    }
    const auto watch = m_watches.find(output.id.rawValue);
    if (watch == m_watches.end())
        return row;
    row.playing = watch->second->playing;
    if (const auto volume = watch->second->volume.value())
        row.playing.volume = volume;
    const auto told = m_backend->controls(output.id);
    row.controls = told.value_or(OutputControls{row.playing.volume.has_value(), {}});
    if (row.controls.isMuted)
        row.controls.isMuted = watch->second->muted.value().value_or(*row.controls.isMuted);
    return row;
}

QString Speakers::statusOf(const Row &row) {
    if (!row.device.isAvailable)
        return tr("Not available");
    if (row.isInterrupted && row.device.kind == OutputDevice::Kind::remote)
        return tr("Reconnecting…");
    if (row.group.leader)
        return tr("Plays along with %1").arg(row.group.leader->name);
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
    // What this computer plays of files, its source does not know.
    return row.device.kind == OutputDevice::Kind::thisMac ? QString() : tr("Silent");
}

// What is done

void Speakers::setVolume(const OutputDevice::ID &output, double volume) {
    if (isSelected(output)) {
        m_selected.transport(TransportCommand::setVolume(volume));
        return;
    }
    const auto watch = m_watches.find(output.rawValue);
    if (watch == m_watches.end())
        return;
    watch->second->volume.expect(volume);
    watch->second->sender.set(volume);
    const auto controls = m_backend->controls(output);
    if (controls && watch->second->muted.value().value_or(controls->isMuted.value_or(false)))
        setMuted(output, false);
    Q_EMIT changed();
}

void Speakers::setMuted(const OutputDevice::ID &output, bool isMuted) {
    if (isSelected(output)) {
        m_selected.setMuted(isMuted);
        return;
    }
    const auto watch = m_watches.find(output.rawValue);
    if (watch == m_watches.end())
        return;
    watch->second->muted.expect(isMuted);
    carryOut(m_backend->setMuted(output, isMuted), output);
    Q_EMIT changed();
}

QCoro::Task<> Speakers::sendVolume(OutputDevice::ID output, double volume) {
    auto operation = m_backend->transport(TransportCommand::setVolume(volume), output);
    co_await carryOut(std::move(operation), output);
}

QCoro::Task<> Speakers::carryOut(QCoro::Task<> operation, OutputDevice::ID output) {
    const QPointer<Speakers> self(this);
    std::exception_ptr error;
    try {
        co_await operation;
    } catch (...) {
        error = std::current_exception();
    }
    if (!self || !error)
        co_return;
    if (const auto watch = m_watches.find(output.rawValue); watch != m_watches.end()) {
        watch->second->volume.forget();
        watch->second->muted.forget();
    }
    m_selected.fail(error);
    Q_EMIT changed();
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
