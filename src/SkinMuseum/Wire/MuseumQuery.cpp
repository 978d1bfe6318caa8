#include "SkinMuseum/Wire/MuseumQuery.h"

namespace vantor {

namespace {

const QString searchQuery = QStringLiteral(
    "query MuseumSearch($query: String!, $first: Int!, $offset: Int!, $nsfw: Boolean) {\n"
    "  search_classic_skins(query: $query, first: $first, offset: $offset, nsfw: $nsfw) { %1 }\n}");
const QString browseQuery =
    QStringLiteral("query MuseumBrowse($first: Int!, $offset: Int!, $filter: SkinsFilterOption) {\n"
                   "  skins(first: $first, offset: $offset, filter: $filter) { count nodes { %1 } }\n}");
const QString fields =
    QStringLiteral("__typename md5 filename(normalize_extension: true, include_museum_id: true) "
                   "screenshot_url download_url museum_url nsfw");

} // namespace

MuseumQuery MuseumQuery::search(const QString &text, bool includeNSFW, int first, int offset) {
    return {text, includeNSFW, first, offset};
}

MuseumQuery MuseumQuery::browse(bool includeNSFW, int first, int offset) {
    return {std::nullopt, includeNSFW, first, offset};
}

MuseumQuery MuseumQuery::at(int offset) const {
    MuseumQuery query = *this;
    query.m_offset = offset;
    return query;
}

QString MuseumQuery::cacheKey() const {
    const QString values = QStringLiteral("%1 %2 %3").arg(m_includeNSFW ? 1 : 0).arg(m_first).arg(m_offset);
    return m_text ? QStringLiteral("search ") + values + QLatin1Char(' ') + *m_text
                  : QStringLiteral("browse ") + values;
}

GraphQLRequest MuseumQuery::request() const {
    GraphQLRequest request{.operationName =
                               m_text ? QStringLiteral("MuseumSearch") : QStringLiteral("MuseumBrowse"),
                           .query = (m_text ? searchQuery : browseQuery).arg(fields),
                           .variables = {{QStringLiteral("first"), qint64(m_first)},
                                         {QStringLiteral("offset"), qint64(m_offset)}}};
    if (m_text)
        request.variables.insert(QStringLiteral("query"), *m_text);
    if (!m_includeNSFW && m_text)
        request.variables.insert(QStringLiteral("nsfw"), false);
    else if (!m_includeNSFW)
        request.variables.insert(QStringLiteral("filter"), GraphQLEnum{QStringLiteral("APPROVED")});
    return request;
}

} // namespace vantor
