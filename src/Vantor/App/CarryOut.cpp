#include "Vantor/App/CarryOut.h"

#include "AudioCore/NowPlaying/NowPlayingCommandTarget.h"
#include "Vantor/App/LaunchOptions.h"
#include "Vantor/Model/PlayerModel.h"

namespace vantor {

static void carryOut(LaunchCommand command, NowPlayingCommandTarget &player) {
    switch (command) {
    case LaunchCommand::play:
        player.play();
        break;
    case LaunchCommand::pause:
        player.pause();
        break;
    case LaunchCommand::toggle:
        player.togglePlayPause();
        break;
    case LaunchCommand::stop:
        player.stop();
        break;
    case LaunchCommand::next:
        player.next();
        break;
    case LaunchCommand::previous:
        player.previous();
        break;
    case LaunchCommand::enqueue:
        break; // only says how the files are meant
    }
}

void carryOut(const LaunchOptions &options, PlayerModel &model, NowPlayingCommandTarget &commands) {
    if (options.skin)
        model.wear(*options.skin);
    if (options.command == LaunchCommand::enqueue)
        model.enqueue(options.files);
    else if (!options.files.isEmpty())
        model.open(options.files);
    else if (options.command)
        carryOut(*options.command, commands);
}

} // namespace vantor
