#include "Vantor/Model/ResumePoint.h"

#include "AudioCore/Playback/Player.h"
#include "Vantor/Model/StoredValue.h"

#include <QSettings>

namespace vantor::ResumePoint {

namespace {

const QString key = QStringLiteral("resumeSeconds");
constexpr double longest = 1e7; // seconds

} // namespace

void save(QSettings &settings, const Player &player) {
    if (player.state() == PlaybackState::playing || player.state() == PlaybackState::loading)
        settings.setValue(key, player.currentTime());
    else
        settings.remove(key);
}

void resume(const QSettings &settings, Player &player) {
    const double seconds = StoredValue::number(settings, key, -1, -1, longest);
    if (seconds < 0 || player.queue().count() == 0)
        return;
    player.play();
    player.seek(seconds);
}

} // namespace vantor::ResumePoint
