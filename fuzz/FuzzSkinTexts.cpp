#include "SkinKit/Texts/PlaylistStyle.h"
#include "SkinKit/Texts/SkinRegion.h"
#include "SkinKit/Texts/VisColors.h"

#include <cstdlib>

using namespace vantor;

// The three texts on the same bytes; -max_len=2048.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const QByteArrayView bytes(data, static_cast<qsizetype>(size));

    const PlaylistStyleParser::Result playlist = PlaylistStyleParser::parse(bytes);
    if (playlist.style.font.isEmpty() || playlist.messages.size() > 4)
        std::abort();

    const VisColorParser::Result colors = VisColorParser::parseCounted(bytes);
    if (colors.parsedCount < 0 || colors.parsedCount > 24)
        std::abort();
    for (auto index = static_cast<size_t>(colors.parsedCount); index < colors.colors.size(); ++index) {
        if (colors.colors[index] != defaultVisColors[index])
            std::abort();
    }

    const SkinRegion region = RegionParser::parse(bytes);
    for (const QList<SkinRegion::Polygon> &polygons : region.sections) {
        if (polygons.isEmpty())
            std::abort();
        for (const SkinRegion::Polygon &polygon : polygons) {
            // A point takes four characters at the least.
            if (polygon.isEmpty() || static_cast<size_t>(polygon.size()) > size / 3)
                std::abort();
        }
    }
    return 0;
}
