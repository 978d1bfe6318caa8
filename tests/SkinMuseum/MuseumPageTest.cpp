#include "SkinMuseum/Wire/MuseumPage.h"

#include "SkinMuseum/MuseumError.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

using namespace vantor;

namespace {

const MuseumQuery browse = MuseumQuery::browse(false, 2, 0);
const MuseumQuery search = MuseumQuery::search(u"amber"_qs, true, 2, 0);

QByteArray row(const QByteArray &md5, const QByteArray &screenshot = "https://s/1.png",
               const QByteArray &download = "https://d/1.wsz", const QByteArray &museum = "https://m/1") {
    return R"({"__typename":"ClassicSkin","md5":")" + md5 + R"(","filename":"A b.wsz","screenshot_url":")" +
           screenshot + R"(","download_url":")" + download + R"(","museum_url":")" + museum +
           R"(","nsfw":true})";
}
const QByteArray md5 = "0123456789abcdef0123456789abcdef";

QByteArray found(const QByteArray &rows) {
    return R"({"data":{"search_classic_skins":[)" + rows + "]}}";
}
QByteArray browsed(const QByteArray &count, const QByteArray &rows) {
    return R"({"data":{"skins":{"count":)" + count + R"(,"nodes":[)" + rows + "]}}}";
}

std::optional<MuseumError> refusal(const QByteArray &body, const MuseumQuery &query) {
    try {
        [[maybe_unused]] const MuseumPage page = decodePage(body, query);
    } catch (const MuseumError &error) {
        return error;
    }
    return std::nullopt;
}

} // namespace

TEST(MuseumPageTest, ARowIsKeptOnlyWithASoundDigestAndSecureAddresses) {
    const MuseumSkin whole{.md5 = QString::fromLatin1(md5),
                           .filename = u"A b.wsz"_qs,
                           .screenshotURL = QUrl(u"https://s/1.png"_qs),
                           .downloadURL = QUrl(u"https://d/1.wsz"_qs),
                           .museumURL = QUrl(u"https://m/1"_qs),
                           .nsfw = true};
    EXPECT_EQ(decodePage(found(row(md5)), search).skins, QList{whole});
    const QByteArray ok = "https://x/y";
    const QByteArray bad[] = {row(md5.toUpper()),
                              row(md5.chopped(1)),
                              row(md5 + '0'),
                              row(md5.chopped(1) + "g"),
                              row("../../../../etc/passwd0123456789a"),
                              row(md5, "http://x/y"),
                              row(md5, ok, "http://x/y"),
                              row(md5, ok, ok, "http://x/y"),
                              row(md5, "file:///etc/passwd"),
                              row(md5, "https://"),
                              row(md5, ""),
                              row(md5, "https://x/" + QByteArray(3000, 'a')),
                              row(md5, "https://x y/"),
                              R"({"md5":")" + md5 + R"("})",
                              "null",
                              "7",
                              "[]"};
    for (const QByteArray &candidate : bad)
        EXPECT_EQ(decodePage(found(candidate + ',' + row(md5)), search).skins, QList{whole})
            << candidate.data();
}

TEST(MuseumPageTest, TellsWhetherThereIsMore) {
    const QByteArray one = row(md5);
    const QByteArray two = one + ',' + one;
    struct Row {
        const char *name;
        QByteArray body;
        MuseumQuery query;
        std::optional<int> total;
        bool hasMore;
    };
    const Row rows[] = {
        {"a full page without a count", found(two), search, {}, true},
        {"a page that is not full", found(one), search, {}, false},
        {"a full page of rows that are dropped", found("1,2"), search, {}, true},
        {"no rows", found(""), search, {}, false},
        {"more rows than asked for", found(two + ',' + one), search, {}, true},
        {"the last but one", browsed("5", two), browse.at(2), 5, true},
        {"the last", browsed("4", two), browse.at(2), 4, false},
        {"a count that cannot be, and no rows", browsed("500", ""), browse, 500, false},
        {"an enormous count", browsed("1e300", two), browse, {}, true},
        {"a negative count", browsed("-1", two), browse, {}, true},
        {"no count", browsed("null", one), browse, {}, false},
        {"beyond every museum", found(two), search.at(2'000'000'000), {}, false},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        const MuseumPage page = decodePage(row.body, row.query);
        EXPECT_EQ(page.total, row.total);
        EXPECT_EQ(page.hasMore, row.hasMore);
        EXPECT_LE(page.skins.size(), row.query.first());
    }
}

TEST(MuseumPageTest, RefusesWhatIsNoAnswer) {
    const MuseumError decoding = MuseumError::decoding();
    const MuseumError dusty = MuseumError::graphQL(u"Dusty shelves"_qs);
    const std::pair<QByteArray, std::optional<MuseumError>> rows[] = {
        {"", decoding},
        {"[]", decoding},
        {R"({"data":)", decoding},
        {R"({"data":null})", decoding},
        {R"({"data":{"skins":{"nodes":{}}}})", decoding},
        {R"({"data":{"search_classic_skins":[]}})", decoding}, // of the other query
        {R"({"errors":[{"message":"Dusty\n shelves"},{"message":"b"}],"data":null})", dusty},
        {R"({"errors":[{"message":"Dusty shelves"}],"data":{"skins":{"count":0,"nodes":[]}}})", dusty},
        {R"({"errors":[],"data":{"skins":{"count":0,"nodes":[]}}})", std::nullopt},
        {R"({"errors":[7]})", MuseumError::graphQL(QString())},
        {QByteArray(100'000, '['), decoding},
    };
    for (const auto &[body, expected] : rows)
        EXPECT_EQ(refusal(body, browse), expected) << body.left(80).data();
}

TEST(MuseumPageTest, HasASentenceForEveryFailure) {
    const std::pair<MuseumError, const char *> rows[] = {
        {MuseumError::offline(), "The Winamp Skin Museum can't be reached. Check your internet connection."},
        {MuseumError::http(404), "The Winamp Skin Museum returned an error (HTTP 404)."},
        {MuseumError::graphQL(u"Dust"_qs), "The Winamp Skin Museum reported an error: Dust"},
        {MuseumError::decoding(), "The Winamp Skin Museum sent a response Vantor doesn't understand."},
        {MuseumError::checksumMismatch(), "The download was corrupted."},
        {MuseumError::tooLarge(), "The skin is too large to download."},
        {MuseumError::noFolder(), "Choose a skins folder to download skins into."},
    };
    for (const auto &[error, sentence] : rows) {
        EXPECT_EQ(error.description(), QString::fromUtf8(sentence));
        EXPECT_STREQ(error.what(), sentence);
    }
    const QString words = u"seven or so "_qs.repeated(26); // 312
    EXPECT_EQ(MuseumError::graphQL(words), MuseumError::graphQL(words.first(299) + u'…'));
    const QString one = QString(299, u'x') + u"🎵 and more"_qs;
    EXPECT_TRUE(MuseumError::graphQL(one).description().endsWith(u"xx…"_qs));
}

TEST(MuseumPageTest, AsksWithTheMuseumsWords) {
    const auto variables = [](const MuseumQuery &query) {
        const QJsonObject object = QJsonDocument::fromJson(query.request().encoded()).object();
        EXPECT_EQ(object.keys(), (QStringList{u"operationName"_qs, u"query"_qs, u"variables"_qs}));
        return QString::fromUtf8(
            QJsonDocument(object[u"variables"].toObject()).toJson(QJsonDocument::Compact));
    };
    EXPECT_EQ(variables(MuseumQuery::browse(false)),
              u"{\"filter\":\"APPROVED\",\"first\":60,\"offset\":0}"_qs);
    EXPECT_EQ(variables(MuseumQuery::browse(true, 20, 40)), u"{\"first\":20,\"offset\":40}"_qs);
    EXPECT_EQ(variables(MuseumQuery::search(u"\"a\" $b"_qs, false)),
              u"{\"first\":60,\"nsfw\":false,\"offset\":0,\"query\":\"\\\"a\\\" $b\"}"_qs);
    EXPECT_EQ(variables(MuseumQuery::search(u"a"_qs, true)),
              u"{\"first\":60,\"offset\":0,\"query\":\"a\"}"_qs);
    const GraphQLRequest browsing = MuseumQuery::browse(true).request();
    const GraphQLRequest searching = MuseumQuery::search(u"a"_qs, true).request();
    EXPECT_EQ(browsing.operationName, u"MuseumBrowse"_qs);
    EXPECT_EQ(searching.operationName, u"MuseumSearch"_qs);
    EXPECT_EQ(searching.query,
              u"query MuseumSearch($query: String!, $first: Int!, $offset: Int!, $nsfw: Boolean) {\n"
              "  search_classic_skins(query: $query, first: $first, offset: $offset, nsfw: $nsfw) { "
              "__typename md5 filename(normalize_extension: true, include_museum_id: true) screenshot_url "
              "download_url museum_url nsfw }\n}"_qs);
    EXPECT_EQ(browsing.query,
              u"query MuseumBrowse($first: Int!, $offset: Int!, $filter: SkinsFilterOption) {\n"
              "  skins(first: $first, offset: $offset, filter: $filter) { count nodes { __typename md5 "
              "filename(normalize_extension: true, include_museum_id: true) screenshot_url download_url "
              "museum_url nsfw } }\n}"_qs);

    QSet<QString> keys;
    const QList<MuseumQuery> queries{browse,
                                     browse.at(60),
                                     MuseumQuery::browse(true, 2, 0),
                                     search,
                                     MuseumQuery::search(u"amber"_qs, false, 2, 0),
                                     search.at(60),
                                     MuseumQuery::search(u"amber 60"_qs, true, 2, 0)};
    for (const MuseumQuery &query : queries)
        keys.insert(query.cacheKey());
    EXPECT_EQ(keys.size(), queries.size());
}
