#include "Vantor/Model/ResumePoint.h"

#include "AudioCore/Playback/Player.h"
#include "Vantor/Model/StoredValue.h"

#include <QSettings>

namespace vantor::ResumePoint {

namespace {

const QString key = QStringLiteral("resumeSeconds");
const QString pausedKey = QStringLiteral("resumePaused");
constexpr double longest = 1e7; // seconds

} // namespace

void save(QSettings &settings, const Player &player) {
    if (player.state() == PlaybackState::stopped) {
        settings.remove(key);
        settings.remove(pausedKey);
        return;
    }
    settings.setValue(key, player.currentTime());
    settings.setValue(pausedKey, player.state() == PlaybackState::paused);
}

void resume(const QSettings &settings, Player &player) {
    const double seconds = StoredValue::number(settings, key, -1, -1, longest);
    if (seconds < 0 || player.queue().count() == 0)
        return;
    player.play();
    player.seek(seconds);
    if (StoredValue::boolean(settings, pausedKey, false))
        player.pause();
}

} // namespace vantor::ResumePoint
