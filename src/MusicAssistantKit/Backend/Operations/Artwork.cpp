#include "MusicAssistantKit/Backend/MusicAssistantBackend_p.h"
#include "MusicAssistantKit/Connection/MAEndpoints.h"

#include <array>

namespace vantor {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr qint64 maxPictureBytes = 16 << 20;
constexpr auto pictureTimeout = 20s; // the server may have to fetch it first
/// The only ones that newer servers make.
constexpr std::array sizes{80, 160, 256, 512, 1024};

int sizeWithin(int maxPixels) {
    const auto above = std::upper_bound(sizes.begin(), sizes.end(), maxPixels);
    return above == sizes.begin() ? sizes.front() : *std::prev(above);
}

QUrl pictureURL(const QUrl &baseURL, const ArtworkRef &ref, int maxPixels) {
    const qsizetype question = ref.rawValue.indexOf(u'?');
    const bool isLegacy = question >= 0;
    // The older form does not know "jpg", which keeps what is transparent.
    const QString wanted =
        u"size=%1&fmt=%2"_s.arg(QString::number(sizeWithin(maxPixels)), isLegacy ? u"jpeg"_s : u"jpg"_s);
    QUrl url = endpointURL(baseURL, isLegacy ? ref.rawValue.left(question) : ref.rawValue);
    url.setQuery(isLegacy ? ref.rawValue.mid(question + 1) + u'&' + wanted : wanted, QUrl::StrictMode);
    return url;
}

} // namespace

QCoro::Task<QByteArray> MusicAssistantBackend::artwork(ArtworkRef ref, int maxPixels) {
    const auto self = shared_from_this();
    if (!d->client)
        throw MusicBackendError(std::get<MusicBackendError>(d->server.settings));
    if (!ref.rawValue.startsWith(u'/'))
        throw MusicAssistantBackendErrors::noArtwork();
    const QUrl url = pictureURL(d->client->baseURL(), ref, maxPixels);
    MAHTTPAnswer answer;
    try {
        answer = co_await d->with.http.get(url, maxPictureBytes, pictureTimeout);
    } catch (const MusicAssistantError &) {
        throw MusicAssistantBackendErrors::noArtwork();
    }
    if (answer.status == 400)
        throw MusicAssistantBackendErrors::artworkSizeRefused();
    if (answer.status != 200 || answer.body.isEmpty())
        throw MusicAssistantBackendErrors::noArtwork();
    co_return answer.body;
}

} // namespace vantor
