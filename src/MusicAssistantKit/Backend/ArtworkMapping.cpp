#include "MusicAssistantKit/Backend/LibraryMapping.h"

#include <QUrl>
#include <QUrlQuery>

namespace vantor::malibrary {

using namespace Qt::Literals::StringLiterals;

namespace {

const QString proxyPath = u"/imageproxy"_s;
constexpr qsizetype proxyIDLength = 64;

/// Lower-case hexadecimal, so that nothing else can become a path on the server.
bool isProxyID(const QString &text) {
    return text.size() == proxyIDLength && std::all_of(text.begin(), text.end(), [](QChar c) {
               return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f');
           });
}

QString percentEncoded(const QString &text) {
    return QString::fromLatin1(QUrl::toPercentEncoding(text));
}

} // namespace

std::optional<ArtworkRef> artwork(const MAMediaItemImage &image) {
    if (image.proxyID && isProxyID(*image.proxyID))
        return ArtworkRef{proxyPath + u'/' + *image.proxyID};
    if (image.path.isEmpty())
        return std::nullopt;
    // Such servers decode the path once more than the rest of the query.
    return ArtworkRef{u"%1?path=%2&provider=%3"_s.arg(proxyPath, percentEncoded(percentEncoded(image.path)),
                                                      percentEncoded(image.provider))};
}

std::optional<ArtworkRef> artwork(const MAMetadata &metadata) {
    return metadata.images.isEmpty() ? std::nullopt : artwork(metadata.images.first());
}

std::optional<ArtworkRef> artwork(const MATrack &track) {
    const auto own = artwork(track.metadata);
    return own || !track.album || !track.album->image ? own : artwork(*track.album->image);
}

std::optional<ArtworkRef> artwork(const QString &imageURL) {
    const QUrl url(imageURL, QUrl::StrictMode);
    const QString path = url.path(QUrl::FullyEncoded);
    const qsizetype start = path.lastIndexOf(proxyPath);
    if (start < 0)
        return std::nullopt;
    QUrlQuery query(url);
    for (const QString &own : {u"size"_s, u"fmt"_s, u"checksum"_s})
        query.removeAllQueryItems(own);
    const QString rest = query.toString(QUrl::FullyEncoded);
    return ArtworkRef{path.mid(start) + (rest.isEmpty() ? QString() : u'?' + rest)};
}

} // namespace vantor::malibrary
