#pragma once

namespace vantor {

struct LaunchOptions;
class PlayerModel;

/// Does to the player what a start of the program, this one or a later one, asks for: its skin, its files and
/// its command. Main thread.
void carryOut(const LaunchOptions &options, PlayerModel &model);

} // namespace vantor
