#include "MusicAssistantKit/Backend/Items/MAPlayers.h"
#include "MusicAssistantKit/Backend/LibraryMapping.h"
#include "MusicAssistantKit/Backend/MAServerCommands.h"
#include "MusicAssistantKit/Backend/PlayerMapping.h"
#include "MusicAssistantKit/Backend/PlaylistMove.h"

#include <cstdlib>

using namespace vantor;

namespace {

/// Either a record, the same every time, or a place where something is wrong.
template <typename Record>
void decode(const MAJSON &json, Record (*read)(const MAReader &)) {
    try {
        const MAReader reader(json);
        if (!(read(reader) == read(reader)))
            std::abort();
    } catch (const MADecodingError &error) {
        if (error.detail().isEmpty())
            std::abort();
    }
}

} // namespace

// Whatever a server sends as an item, a player or a queue becomes records or is refused. -max_len=65536.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const auto json = MAJSON::parse(bytes);
    if (!json)
        return 0;
    decode(*json, &malibrary::readArtist);
    decode(*json, &malibrary::readAlbum);
    decode(*json, &malibrary::readTrack);
    decode(*json, &malibrary::readPlaylist);
    decode(*json, &malibrary::readRadio);
    decode(*json, &malibrary::recommendation);
    decode(*json, &MARecommendationFolder::decode);
    decode(*json, &MAPlayer::decode);
    decode(*json, &MAPlayerQueue::decode);
    decode(*json, &MAQueueItem::decode);
    try {
        if (maplayer::queueItems(*json, 3).size() != json->size())
            std::abort();
    } catch (const MADecodingError &) {
        // No page of a queue.
    }
    const auto commands = MAServerCommands::decode(*json);
    (void)playlistMoveArguments(commands.parameters(playlistMoveCommand()), QStringLiteral("1"), 1, 2);
    return 0;
}
