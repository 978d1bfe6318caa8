#pragma once

namespace vantor {

class NowPlayingCommandTarget;
struct LaunchOptions;
class PlayerModel;

/// Does to the player what a start of the program, this one or a later one, asks for: its skin, its files and
/// its command. Main thread.
void carryOut(const LaunchOptions &options, PlayerModel &model, NowPlayingCommandTarget &commands);

} // namespace vantor
