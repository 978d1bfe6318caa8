#include "LocalPlayback/Playlists/PlaylistParser.h"

#include <cstdlib>

using namespace vantor;

// The first byte chooses the extension; the rest is the file. -max_len=4096.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    constexpr size_t maxLines = 20;
    constexpr std::array extensions{"m3u", "pls", "xspf", "cue"};
    if (size == 0)
        return 0;
    const QByteArray bytes(reinterpret_cast<const char *>(data) + 1, static_cast<qsizetype>(size - 1));
    const auto format = PlaylistParser::formatOf(bytes, QLatin1String(extensions[data[0] % 4]));
    const PlaylistParser::Result result = PlaylistParser::parse(bytes, format, maxLines);
    if (result.lines.size() > maxLines ||
        (result.isCut && result.lines.size() != maxLines &&
         format != PlaylistParser::Format::pls)) // whose titles take room too
        std::abort();
    for (const PlaylistParser::Line &line : result.lines) {
        if (line.location.isEmpty() || line.location.contains(QLatin1Char('\0')))
            std::abort();
    }
    return 0;
}
