#include "SkinKit/Decoding/CursorParser.h"

#include "SkinKit/Decoding/AniParser.h"
#include "SkinKit/Decoding/CursorBitmap.h"

namespace vantor::CursorParser {

std::optional<SkinCursor> parse(QByteArrayView data) {
    if (data.startsWith("RIFF"))
        return AniParser::parse(data);
    const auto frame = CursorBitmap::decode(data);
    return frame ? std::optional(SkinCursor{.frames = {*frame}, .steps = {{}}}) : std::nullopt;
}

} // namespace vantor::CursorParser
