#pragma once

#include "AudioCore/Equalizer/EQPreset.h"
#include "AudioCore/Playback/Player.h"

#include <QObject>
#include <QThreadPool>
#include <QTimer>

class QSettings;

namespace vantor {

/// The player's equalizer as the user has set it: kept in the settings, with the user's own presets and,
/// while Auto is on, with settings that belong to single tracks. Tracks without one of their own share the
/// common setting. Main thread. Borrows the player and the settings. Files are read and written on a worker
/// thread, in the order of the calls; what they fail with is told by noticed(). The destructor waits for what
/// is still to be written.
class EqualizerModel : public QObject {
    Q_OBJECT

  public:
    /// `folder`: where presets are kept.
    EqualizerModel(Player &player, QSettings &settings, const QString &folder, QObject *parent = nullptr);
    ~EqualizerModel() override;

    /// What sounds now.
    [[nodiscard]] const EQState &state() const { return m_player.eq(); }
    [[nodiscard]] bool isAuto() const { return m_auto; }

    void setEnabled(bool enabled);
    void setAuto(bool on);

    // Changes belong to the track that plays while Auto is on, else to the common setting. Decibels.
    void setPreamp(float gain);
    void setBand(int band, float gain);
    void setAllBands(float gain);
    void apply(const EQPreset &preset);

    /// The user's own, sorted by name.
    [[nodiscard]] const std::vector<EQPreset> &presets() const { return m_presets; }
    /// Keeps what sounds now under a name, in place of what had it.
    void savePreset(const QString &name);
    /// Does nothing but say so when another preset has the new name.
    void renamePreset(const QString &from, const QString &to);
    void removePreset(const QString &name);

    [[nodiscard]] bool hasTrack() const { return !m_track.isEmpty(); }
    [[nodiscard]] bool hasTrackSetting() const { return find(m_tracks, m_track) != m_tracks.end(); }
    /// Keeps what sounds now for the current track; it is used while Auto is on.
    void keepForTrack();
    void forgetTrack();

    /// Of the classic preset files, as a file dialog takes them.
    [[nodiscard]] static QStringList filePatterns();
    // These files. One preset is put to use; a library is added to the user's own.
    void loadFile(const QString &path);
    /// Writes what sounds now, under the file's name.
    void saveFile(const QString &path);
    void saveLibrary(const QString &path);

  Q_SIGNALS:
    void changed();         ///< anything above
    void settingReplaced(); ///< another track brought its own setting, or took it away
    void noticed(const QString &sentence);

  private:
    using Presets = std::vector<EQPreset>;

    [[nodiscard]] static Presets::const_iterator find(const Presets &presets, const QString &name);
    static void store(Presets &presets, const EQPreset &preset);
    void change(const EQState &state);
    void keep(const EQState &state);
    void followTrack();
    void useSetting();
    void addPresets(const Presets &added);
    void take(const Presets &loaded, const QString &fileName);
    void savePresets();
    void writeFile(const QString &path, const Presets &presets);
    void scheduleSave();
    void save();
    void restore();

    Player &m_player;
    QSettings &m_settings;
    const QString m_presetsPath;
    const QString m_tracksPath;
    PlayerEventToken m_observer;

    EQState m_common;
    bool m_auto = false;
    QString m_track; ///< names the current track in m_tracks; empty without one
    Presets m_presets;
    Presets m_tracks; ///< the one changed last comes last
    bool m_tracksChanged = false;
    QTimer m_saveTimer;
    QThreadPool m_files; ///< one thread: of two writes to a file the later one stays
};

} // namespace vantor
