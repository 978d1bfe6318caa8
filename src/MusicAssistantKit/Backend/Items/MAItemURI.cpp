#include "MusicAssistantKit/Backend/Items/MAItemURI.h"

namespace vantor {

std::optional<MAItemURI> MAItemURI::parse(const QString &text) {
    const qsizetype colon = text.indexOf(QLatin1StringView("://"));
    const qsizetype slash = colon < 1 ? -1 : text.indexOf(QLatin1Char('/'), colon + 3);
    if (slash < 0 || slash == colon + 3 || slash + 1 == text.size())
        return std::nullopt;
    return MAItemURI{.provider = text.left(colon),
                     .mediaType = text.mid(colon + 3, slash - colon - 3),
                     .itemID = text.mid(slash + 1)};
}

QString MAItemURI::text() const {
    return provider + QLatin1StringView("://") + mediaType + QLatin1Char('/') + itemID;
}

} // namespace vantor
