#include "SkinMuseum/Wire/MuseumPage.h"

#include "SkinMuseum/MuseumError.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace vantor {

namespace {

constexpr qsizetype maxName = 1000; // characters
constexpr qsizetype maxAddress = 2048;
constexpr qsizetype md5Digits = 32;

QUrl address(const QJsonValue &value) {
    const QString text = value.toString();
    return text.size() <= maxAddress ? QUrl(text, QUrl::StrictMode) : QUrl();
}

bool isSecure(const QUrl &url) {
    return url.isValid() && url.scheme() == QLatin1String("https") && !url.host().isEmpty();
}

MuseumSkin skin(const QJsonValue &row) {
    return {.md5 = row[QLatin1String("md5")].toString(),
            .filename = row[QLatin1String("filename")].toString().left(maxName),
            .screenshotURL = address(row[QLatin1String("screenshot_url")]),
            .downloadURL = address(row[QLatin1String("download_url")]),
            .museumURL = address(row[QLatin1String("museum_url")]),
            .nsfw = row[QLatin1String("nsfw")].toBool()};
}

std::optional<int> total(const QJsonValue &count) {
    const double number = count.toDouble(-1);
    if (number < 0 || number > MuseumPage::maxTotal)
        return std::nullopt;
    return static_cast<int>(number);
}

/// The data of an answer without errors.
QJsonValue data(const QByteArray &body) {
    const QJsonDocument document = QJsonDocument::fromJson(body);
    if (!document.isObject())
        throw MuseumError::decoding();
    const QJsonArray errors = document[QLatin1String("errors")].toArray();
    if (!errors.isEmpty())
        throw MuseumError::graphQL(errors.first()[QLatin1String("message")].toString().simplified());
    return document[QLatin1String("data")];
}

} // namespace

bool MuseumSkin::isAcceptable() const {
    const auto isDigit = [](QChar c) { return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f'); };
    return md5.size() == md5Digits && std::ranges::all_of(md5, isDigit) && isSecure(screenshotURL) &&
           isSecure(downloadURL) && isSecure(museumURL);
}

QString MuseumSkin::title() const {
    const QString name = filename.simplified();
    return name.endsWith(QLatin1String(".wsz"), Qt::CaseInsensitive) ? name.chopped(4) : name;
}

MuseumPage decodePage(const QByteArray &body, const MuseumQuery &query) {
    const QJsonValue answer = data(body);
    const QJsonValue skins =
        answer[query.text() ? QLatin1String("search_classic_skins") : QLatin1String("skins")];
    const QJsonValue rows = query.text() ? skins : skins[QLatin1String("nodes")];
    if (!rows.isArray())
        throw MuseumError::decoding();
    const QJsonArray array = rows.toArray();
    const qsizetype count = std::min<qsizetype>(array.size(), query.first());
    MuseumPage page;
    page.skins.reserve(count);
    for (qsizetype i = 0; i < count; ++i) {
        if (MuseumSkin candidate = skin(array[i]); candidate.isAcceptable())
            page.skins.append(std::move(candidate));
    }
    if (!query.text())
        page.total = total(skins[QLatin1String("count")]);
    // Without a count, a page that is full has one after it. An empty one has none, whatever the count says.
    const bool isFull = count >= query.first();
    const int end = query.offset() + query.first();
    page.hasMore = count > 0 && (page.total ? end < *page.total : isFull && end < MuseumPage::maxTotal);
    return page;
}

} // namespace vantor
