#pragma once

namespace vantor {

/// Builds the player, its model and its window, and runs them. The exit status of the process.
[[nodiscard]] int runProgram(int argc, char **argv);

} // namespace vantor
