#include "Vantor/Mpris/MprisPlayer.h"

#include "Vantor/Model/PlayerModel.h"
#include "Vantor/Windows/Commands.h"

#include <QCryptographicHash>

#include <cmath>

namespace vantor {

namespace {

constexpr double microseconds = 1e6; // per second

qlonglong inMicroseconds(double seconds) {
    return std::llround(seconds * microseconds);
}

QDBusObjectPath pathOf(const Track &track) {
    return QDBusObjectPath(QStringLiteral("/co/kelvane/vantor/track/") + track.id.toString(QUuid::Id128));
}

constexpr std::array<std::pair<RepeatMode, const char *>, 3> loopNames{
    {{RepeatMode::off, "None"}, {RepeatMode::one, "Track"}, {RepeatMode::all, "Playlist"}}};

} // namespace

MprisPlayer::MprisPlayer(QObject *service, PlayerModel &model, Commands &commands,
                         const QString &artworkFolder, Tell tell)
    : QDBusAbstractAdaptor(service), m_model(model), m_programCommands(commands),
      m_artworkFiles(artworkFolder), m_tell(std::move(tell)) {
    m_telling.setSingleShot(true);
    m_telling.setInterval(0);
    connect(&m_telling, &QTimer::timeout, this, &MprisPlayer::tellChanges);
    Player &player = model.player();
    for (const auto signal : {&Player::queueChanged, &Player::stateChanged, &Player::volumeChanged})
        connect(&player, signal, &m_telling, qOverload<>(&QTimer::start));
    connect(&model, &PlayerModel::streamChanged, this, &MprisPlayer::showArtwork);
    connect(&model.remote(), &RemoteOutput::selectionChanged, this, &MprisPlayer::showArtwork);
    connect(&model.remote(), &RemoteOutput::changed, this, &MprisPlayer::showArtwork);
    connect(&model.remote(), &RemoteOutput::seeked, this,
            [this](double seconds) { Q_EMIT Seeked(inMicroseconds(seconds)); });
    m_observer = player.addEventObserver([this](const PlayerEvent &event) { handle(event); });
    m_told = properties();
}

MprisPlayer::~MprisPlayer() {
    m_model.player().removeEventObserver(m_observer);
}

void MprisPlayer::publish(const NowPlayingInfo &info) {
    m_info = info;
    showArtwork();
}

void MprisPlayer::clear() {
    m_info.reset();
    showArtwork();
}

void MprisPlayer::setHandler(NowPlayingCommand command, Handler handler) {
    m_commands[command].handler = std::move(handler);
    m_telling.start();
}

void MprisPlayer::setEnabled(NowPlayingCommand command, bool enabled) {
    m_commands[command].enabled = enabled;
    m_telling.start();
}

void MprisPlayer::showArtwork() {
    const RemoteOutput &remote = m_model.remote();
    const bool isLocal = m_info && !m_model.showsStream();
    takeArtwork(remote.isSelected() ? remote.artwork() : isLocal ? m_info->artwork : QImage());
    m_telling.start();
}

void MprisPlayer::takeArtwork(const QImage &artwork) {
    const qint64 key = artwork.isNull() ? 0 : artwork.cacheKey();
    if (key == m_artworkKey)
        return;
    m_artworkKey = key;
    m_artworkPath.clear();
    if (key == 0)
        return;
    m_artworkFiles.write(artwork, [this, key](const QString &path) {
        if (key != m_artworkKey)
            return; // another track came meanwhile
        m_artworkPath = path;
        m_telling.start();
    });
}

// Telling what has changed

void MprisPlayer::handle(const PlayerEvent &event) {
    const auto *const seeked = std::get_if<PlayerEvents::Seeked>(&event);
    if (seeked && !m_model.remote().isSelected())
        Q_EMIT Seeked(inMicroseconds(seeked->time));
}

QVariantMap MprisPlayer::properties() const {
    return {{QStringLiteral("PlaybackStatus"), playbackStatus()},
            {QStringLiteral("LoopStatus"), loopStatus()},
            {QStringLiteral("Shuffle"), isShuffled()},
            {QStringLiteral("Metadata"), metadata()},
            {QStringLiteral("Volume"), volume()},
            {QStringLiteral("CanGoNext"), canGoNext()},
            {QStringLiteral("CanGoPrevious"), canGoPrevious()},
            {QStringLiteral("CanPlay"), canPlay()},
            {QStringLiteral("CanPause"), canPause()},
            {QStringLiteral("CanSeek"), canSeek()}};
}

void MprisPlayer::tellChanges() {
    const QVariantMap present = properties();
    QVariantMap changed;
    for (auto property = present.cbegin(); property != present.cend(); ++property) {
        if (m_told.value(property.key()) != property.value())
            changed.insert(property.key(), property.value());
    }
    m_told = present;
    if (!changed.isEmpty())
        m_tell(changed);
}

// Properties

// What is loading counts as what will come of it: between two tracks nothing stops.
QString MprisPlayer::playbackStatus() const {
    const PlaybackView view = m_model.target().view();
    if (view.state == PlaybackState::stopped)
        return QStringLiteral("Stopped");
    return view.wantsToPlay ? QStringLiteral("Playing") : QStringLiteral("Paused");
}

QString MprisPlayer::loopStatus() const {
    const auto *const named = std::ranges::find(loopNames, m_model.target().view().repeat,
                                                &std::pair<RepeatMode, const char *>::first);
    return QLatin1String(named->second);
}

void MprisPlayer::setLoopStatus(const QString &status) {
    for (const auto &[mode, name] : loopNames) {
        if (status == QLatin1String(name))
            m_model.setRepeatMode(mode);
    }
}

// There is one rate, and zero is another word for pausing.
void MprisPlayer::setRate(double rate) {
    if (rate == 0)
        Pause();
}

bool MprisPlayer::isShuffled() const {
    return m_model.target().view().isShuffled;
}

void MprisPlayer::setShuffled(bool on) {
    if (on != isShuffled())
        m_programCommands.trigger(Commands::Id::shuffle);
}

QVariantMap MprisPlayer::metadata() const {
    if (m_model.showsStream())
        return {{QStringLiteral("mpris:trackid"), QVariant::fromValue(trackPath())},
                {QStringLiteral("xesam:title"), m_model.streamName()}};
    QVariantMap map = m_model.remote().isSelected() ? remoteMetadata() : localMetadata();
    if (!map.isEmpty() && !m_artworkPath.isEmpty())
        map[QStringLiteral("mpris:artUrl")] = QUrl::fromLocalFile(m_artworkPath).toString(QUrl::FullyEncoded);
    return map;
}

/// What plays now; an empty one while nothing does.
QDBusObjectPath MprisPlayer::trackPath() const {
    if (m_model.showsStream())
        return QDBusObjectPath(QStringLiteral("/co/kelvane/vantor/stream"));
    if (!m_model.remote().isSelected()) {
        const std::optional<Track> track = m_model.player().queue().current();
        return track ? pathOf(*track) : QDBusObjectPath();
    }
    const NowPlaying playing = m_model.remote().nowPlaying();
    if (!playing.title)
        return {};
    const QString place = QString::number(m_model.remote().queue().currentIndex.value_or(0));
    const QString name = playing.item ? playing.item->description() : playing.title.value_or(QString());
    const QByteArray word = (place + QLatin1Char('/') + name).toUtf8();
    const QByteArray hash = QCryptographicHash::hash(word, QCryptographicHash::Md5).toHex();
    return QDBusObjectPath(QStringLiteral("/co/kelvane/vantor/remote/") + QString::fromLatin1(hash));
}

QVariantMap MprisPlayer::remoteMetadata() const {
    const NowPlaying playing = m_model.remote().nowPlaying();
    if (!playing.title)
        return {};
    QVariantMap map{{QStringLiteral("mpris:trackid"), QVariant::fromValue(trackPath())},
                    {QStringLiteral("xesam:title"), *playing.title}};
    if (const double duration = m_model.target().view().duration; duration > 0)
        map[QStringLiteral("mpris:length")] = inMicroseconds(duration);
    if (playing.artist && !playing.artist->isEmpty())
        map[QStringLiteral("xesam:artist")] = QStringList{*playing.artist};
    if (playing.album)
        map[QStringLiteral("xesam:album")] = *playing.album;
    return map;
}

QVariantMap MprisPlayer::localMetadata() const {
    const std::optional<Track> track = m_model.player().queue().current();
    if (!m_info || !track)
        return {};
    QVariantMap map{{QStringLiteral("mpris:trackid"), QVariant::fromValue(trackPath())},
                    {QStringLiteral("xesam:title"), m_info->title}};
    if (m_info->playbackDuration > 0)
        map[QStringLiteral("mpris:length")] = inMicroseconds(m_info->playbackDuration);
    if (!m_info->artist.isEmpty())
        map[QStringLiteral("xesam:artist")] = QStringList{m_info->artist};
    if (m_info->albumTitle)
        map[QStringLiteral("xesam:album")] = *m_info->albumTitle;
    if (const QUrl *const url = std::get_if<QUrl>(&track->source))
        map[QStringLiteral("xesam:url")] = url->toString(QUrl::FullyEncoded);
    return map;
}

double MprisPlayer::volume() const {
    return m_model.target().view().volume.value_or(1);
}

void MprisPlayer::setVolume(double volume) {
    if (std::isfinite(volume))
        m_model.setVolume(volume);
}

qlonglong MprisPlayer::position() const {
    return inMicroseconds(m_model.target().view().elapsed);
}

bool MprisPlayer::canGoNext() const {
    return offers(NowPlayingCommand::nextTrack) && m_model.target().view().hasNext;
}

// Where there is no track before, it goes back to the beginning of this one.
bool MprisPlayer::canGoPrevious() const {
    return offers(NowPlayingCommand::previousTrack) && !trackPath().path().isEmpty();
}

bool MprisPlayer::canPlay() const {
    return offers(NowPlayingCommand::play) && !m_model.target().view().isEmpty;
}

bool MprisPlayer::canPause() const {
    return offers(NowPlayingCommand::pause) && !m_model.target().view().isEmpty;
}

bool MprisPlayer::canSeek() const {
    return offers(NowPlayingCommand::changePlaybackPosition) && m_model.target().view().isSeekable();
}

// Commands

bool MprisPlayer::offers(NowPlayingCommand command) const {
    const auto found = m_commands.find(command);
    return found != m_commands.end() && found->second.enabled && found->second.handler;
}

void MprisPlayer::run(NowPlayingCommand command, double seconds) {
    if (offers(command))
        m_commands.at(command).handler(seconds);
}

void MprisPlayer::Next() {
    run(NowPlayingCommand::nextTrack);
}

void MprisPlayer::Previous() {
    run(NowPlayingCommand::previousTrack);
}

void MprisPlayer::Pause() {
    run(NowPlayingCommand::pause);
}

void MprisPlayer::PlayPause() {
    run(NowPlayingCommand::togglePlayPause);
}

void MprisPlayer::Stop() {
    run(NowPlayingCommand::stop);
}

void MprisPlayer::Play() {
    run(NowPlayingCommand::play);
}

void MprisPlayer::Seek(qlonglong Offset) {
    if (!canSeek())
        return;
    const PlaybackView view = m_model.target().view();
    const double target = view.elapsed + static_cast<double>(Offset) / microseconds;
    if (target > view.duration)
        Next();
    else
        run(NowPlayingCommand::changePlaybackPosition, std::max(0.0, target));
}

void MprisPlayer::SetPosition(const QDBusObjectPath &TrackId, qlonglong Position) {
    const double target = static_cast<double>(Position) / microseconds;
    const bool inside = target >= 0 && target <= m_model.target().view().duration;
    if (canSeek() && inside && TrackId == trackPath())
        run(NowPlayingCommand::changePlaybackPosition, target);
}

void MprisPlayer::OpenUri(const QString &Uri) {
    if (const QUrl url(Uri, QUrl::StrictMode); url.isValid() && !url.isRelative())
        m_model.open({url});
}

} // namespace vantor
