#include "Vantor/Model/EqualizerModel.h"

#include "AudioCore/Equalizer/EQFFile.h"
#include "Vantor/Model/EQPresetFile.h"
#include "Vantor/Model/InBackground.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QJsonDocument>
#include <QLoggingCategory>
#include <QSaveFile>
#include <QSettings>

#include <algorithm>
#include <variant>

Q_LOGGING_CATEGORY(equalizerLog, "co.kelvane.vantor.EqualizerModel")

namespace vantor {

namespace {

constexpr QLatin1StringView stateKey("equalizer");
constexpr QLatin1StringView autoKey("equalizerAuto");
constexpr QLatin1StringView versionKey("version");
constexpr int currentVersion = 1;
constexpr std::chrono::seconds saveDelay{1};  // a drag is many changes
constexpr qint64 maxLibraryBytes = 2'097'152; // of a preset file: some 7,800 presets
constexpr qsizetype maxNameLength = 256;

/// What a track's setting is kept under: its address, made short.
QString settingName(const std::optional<Track> &track) {
    if (!track)
        return {};
    const auto *url = std::get_if<QUrl>(&track->source);
    const QByteArray address =
        url != nullptr ? url->toEncoded() : std::get<MediaID>(track->source).description().toUtf8();
    return QString::fromLatin1(QCryptographicHash::hash(address, QCryptographicHash::Sha1).toHex());
}

EQPreset presetOf(const QString &name, const EQState &state) {
    return {name, state.preamp(), state.gains()};
}

/// Of a file that is too large, what fits; it then ends inside an entry.
std::optional<QByteArray> contents(const QString &path) {
    QFile file(path);
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.read(maxLibraryBytes);
}

/// The presets, or the sentence that says why there are none.
std::variant<std::vector<EQPreset>, QString> read(const QString &path) {
    const QString name = QFileInfo(path).fileName();
    try {
        const std::optional<QByteArray> bytes = contents(path);
        if (bytes)
            return EQFFile::parse(*bytes);
        return EqualizerModel::tr("Could not read %1").arg(name);
    } catch (const EQFFile::ParseError &error) {
        qCWarning(equalizerLog, "could not read %s: %s", qUtf8Printable(name), error.what());
        return error.description();
    }
}

bool write(const QString &path, const std::vector<EQPreset> &presets) {
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(EQFFile::serialize(presets)) >= 0 && file.commit())
        return true;
    qCWarning(equalizerLog, "could not write %s: %s", qUtf8Printable(path),
              qUtf8Printable(file.errorString()));
    return false;
}

bool keepIn(const QString &path, const std::vector<EQPreset> &presets) {
    if (EQPresetFile::save(path, presets))
        return true;
    qCWarning(equalizerLog, "could not write %s", qUtf8Printable(path));
    return false;
}

} // namespace

EqualizerModel::EqualizerModel(Player &player, QSettings &settings, const QString &folder, QObject *parent)
    : QObject(parent), m_player(player), m_settings(settings),
      m_presetsPath(folder + QStringLiteral("/equalizer-presets.json")),
      m_tracksPath(folder + QStringLiteral("/equalizer-tracks.json")) {
    m_files.setMaxThreadCount(1);
    restore();
    m_saveTimer.setSingleShot(true);
    m_saveTimer.setInterval(saveDelay);
    connect(&m_saveTimer, &QTimer::timeout, this, &EqualizerModel::save);
    connect(&player, &Player::eqChanged, this, &EqualizerModel::changed);
    connect(&player, &Player::queueChanged, this, &EqualizerModel::followTrack);
    m_observer = player.addEventObserver([this](const PlayerEvent &event) {
        if (std::holds_alternative<PlayerEvents::TrackChanged>(event))
            followTrack();
    });
}

EqualizerModel::~EqualizerModel() {
    m_player.removeEventObserver(m_observer);
    if (m_saveTimer.isActive())
        save();
    m_files.waitForDone();
}

EqualizerModel::Presets::const_iterator EqualizerModel::find(const Presets &presets, const QString &name) {
    return std::ranges::find(presets, name, &EQPreset::name);
}

// Setting

void EqualizerModel::setEnabled(bool enabled) {
    m_common.setEnabled(enabled);
    EQState state = m_player.eq();
    state.setEnabled(enabled);
    m_player.setEq(state);
    scheduleSave();
}

void EqualizerModel::setAuto(bool on) {
    m_auto = on;
    useSetting();
    scheduleSave();
    Q_EMIT changed();
}

void EqualizerModel::setPreamp(float gain) {
    EQState state = m_player.eq();
    state.setPreamp(gain);
    change(state);
}

void EqualizerModel::setBand(int band, float gain) {
    EQState state = m_player.eq();
    state.setBand(band, gain);
    change(state);
}

void EqualizerModel::setAllBands(float gain) {
    EQState::Gains gains{};
    gains.fill(gain);
    EQState state = m_player.eq();
    state.setGains(gains);
    change(state);
}

void EqualizerModel::apply(const EQPreset &preset) {
    change(m_player.eq().applying(preset));
}

void EqualizerModel::change(const EQState &state) {
    if (state == m_player.eq())
        return;
    if (m_auto && hasTrack())
        keep(state);
    else
        m_common = state;
    m_player.setEq(state);
    scheduleSave();
}

// Presets

void EqualizerModel::store(Presets &presets, const EQPreset &preset) {
    if (const auto old = find(presets, preset.name()); old != presets.end())
        presets.erase(old);
    presets.push_back(preset);
}

void EqualizerModel::savePreset(const QString &name) {
    const QString kept = name.simplified().left(maxNameLength);
    if (kept.isEmpty())
        return;
    addPresets({presetOf(kept, m_player.eq())});
}

// What is kept is what the file will hold.
void EqualizerModel::addPresets(const Presets &added) {
    for (const EQPreset &preset : added)
        store(m_presets, preset);
    if (m_presets.size() > EQPresetFile::maxPresets) {
        m_presets.erase(m_presets.begin() + EQPresetFile::maxPresets, m_presets.end());
        Q_EMIT noticed(tr("There is no room for so many presets"));
    }
    savePresets();
}

void EqualizerModel::renamePreset(const QString &from, const QString &to) {
    const QString name = to.simplified().left(maxNameLength);
    const auto old = find(m_presets, from);
    if (old == m_presets.end() || name.isEmpty() || name == from)
        return;
    if (find(m_presets, name) != m_presets.end()) {
        Q_EMIT noticed(tr("There is a preset named %1 already").arg(name));
        return;
    }
    const EQPreset renamed(name, old->preamp(), old->gains());
    m_presets.erase(old);
    m_presets.push_back(renamed);
    savePresets();
}

void EqualizerModel::removePreset(const QString &name) {
    const auto old = find(m_presets, name);
    if (old == m_presets.end())
        return;
    m_presets.erase(old);
    savePresets();
}

void EqualizerModel::savePresets() {
    std::ranges::sort(m_presets, [](const EQPreset &one, const EQPreset &other) {
        return QString::localeAwareCompare(one.name(), other.name()) < 0;
    });
    const auto work = [path = m_presetsPath, presets = m_presets] { return keepIn(path, presets); };
    inBackground(m_files, this, work, [this](bool isKept) {
        if (!isKept)
            Q_EMIT noticed(tr("Could not save the equalizer presets"));
    });
    Q_EMIT changed();
}

// Tracks

void EqualizerModel::keepForTrack() {
    if (!hasTrack())
        return;
    keep(m_player.eq());
    scheduleSave();
    Q_EMIT changed();
}

void EqualizerModel::keep(const EQState &state) {
    store(m_tracks, presetOf(m_track, state));
    if (m_tracks.size() > EQPresetFile::maxPresets)
        m_tracks.erase(m_tracks.begin());
    m_tracksChanged = true;
}

void EqualizerModel::forgetTrack() {
    const auto old = find(m_tracks, m_track);
    if (old == m_tracks.end())
        return;
    m_tracks.erase(old);
    m_tracksChanged = true;
    useSetting();
    scheduleSave();
    Q_EMIT changed();
}

void EqualizerModel::followTrack() {
    const QString track = settingName(m_player.queue().current());
    if (track == m_track)
        return;
    m_track = track;
    useSetting();
}

/// The track's own setting if Auto is on and there is one, else the common one.
void EqualizerModel::useSetting() {
    const auto own = m_auto ? find(m_tracks, m_track) : m_tracks.end();
    const EQState state = own != m_tracks.end() ? m_common.applying(*own) : m_common;
    if (state == m_player.eq())
        return;
    m_player.setEq(state);
    Q_EMIT settingReplaced();
}

// Files

QStringList EqualizerModel::filePatterns() {
    return {QStringLiteral("*.eqf"), QStringLiteral("*.q1"), QStringLiteral("*.q2")};
}

void EqualizerModel::loadFile(const QString &path) {
    const auto work = [path] { return read(path); };
    inBackground(m_files, this, work, [this, path](const std::variant<Presets, QString> &outcome) {
        if (const auto *failure = std::get_if<QString>(&outcome))
            Q_EMIT noticed(*failure);
        else
            take(std::get<Presets>(outcome), QFileInfo(path).fileName());
    });
}

void EqualizerModel::take(const Presets &loaded, const QString &fileName) {
    if (loaded.empty()) {
        Q_EMIT noticed(tr("There are no presets in %1").arg(fileName));
    } else if (loaded.size() == 1) {
        apply(loaded.front());
    } else {
        addPresets(loaded);
        Q_EMIT noticed(tr("Added %n presets", nullptr, static_cast<int>(loaded.size())));
    }
}

void EqualizerModel::saveFile(const QString &path) {
    writeFile(path, {presetOf(QFileInfo(path).completeBaseName(), m_player.eq())});
}

void EqualizerModel::saveLibrary(const QString &path) {
    writeFile(path, m_presets);
}

void EqualizerModel::writeFile(const QString &path, const Presets &presets) {
    const auto work = [path, presets] { return write(path, presets); };
    inBackground(m_files, this, work, [this, path](bool isWritten) {
        if (!isWritten)
            Q_EMIT noticed(tr("Could not write %1").arg(QFileInfo(path).fileName()));
    });
}

// Settings

void EqualizerModel::scheduleSave() {
    m_saveTimer.start();
}

void EqualizerModel::save() {
    QJsonObject object = m_common.toJson();
    object.insert(versionKey, currentVersion);
    m_settings.setValue(stateKey, QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)));
    m_settings.setValue(autoKey, m_auto);
    if (std::exchange(m_tracksChanged, false))
        m_files.start([path = m_tracksPath, tracks = m_tracks] { keepIn(path, tracks); });
}

void EqualizerModel::restore() {
    const QByteArray stored = m_settings.value(stateKey).toString().toUtf8();
    m_common = EQState::fromJson(QJsonDocument::fromJson(stored).object()).value_or(EQState::flat());
    m_auto = m_settings.value(autoKey).toBool();
    m_presets = EQPresetFile::load(m_presetsPath);
    m_tracks = EQPresetFile::load(m_tracksPath);
    m_track = settingName(m_player.queue().current());
    useSetting();
}

} // namespace vantor
