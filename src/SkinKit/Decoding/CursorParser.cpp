#include "SkinKit/Decoding/CursorParser.h"

#include "SkinKit/Decoding/AniParser.h"
#include "SkinKit/Decoding/CursorBitmap.h"

namespace vantor::CursorParser {

std::optional<SkinCursor> parse(QByteArrayView data, std::int64_t pixelBudget) {
    if (data.startsWith("RIFF"))
        return AniParser::parse(data, pixelBudget);
    const auto frame = CursorBitmap::decode(data);
    if (frame && std::int64_t{frame->image.width()} * frame->image.height() > pixelBudget)
        return std::nullopt;
    return frame ? std::optional(SkinCursor{.frames = {*frame}, .steps = {{}}}) : std::nullopt;
}

} // namespace vantor::CursorParser
