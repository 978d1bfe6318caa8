#pragma once

#include <optional>

class QSettings;

namespace vantor {

class Player;

/// Where playback was when the program was closed. Main thread.
namespace ResumePoint {

/// Remembers it, or that nothing was played.
void save(QSettings &settings, const Player &player);
/// Plays on from there, in the queue that has been restored; nothing happens when nothing was played.
void resume(const QSettings &settings, Player &player);

} // namespace ResumePoint
} // namespace vantor
