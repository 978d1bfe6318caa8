#include "MusicAssistantKit/Connection/MAEndpoints.h"

namespace vantor {

using namespace Qt::Literals::StringLiterals;

QUrl endpointURL(const QUrl &baseURL, const QString &path) {
    QUrl url = baseURL.adjusted(QUrl::StripTrailingSlash | QUrl::RemoveQuery | QUrl::RemoveFragment);
    url.setPath((url.path() == "/"_L1 ? QString() : url.path()) + path);
    return url;
}

QUrl webSocketURL(const QUrl &baseURL, const QString &path) {
    QUrl url = endpointURL(baseURL, path);
    url.setScheme(baseURL.scheme() == "https"_L1 ? u"wss"_s : u"ws"_s);
    return url;
}

bool isServerURL(const QUrl &baseURL) {
    const bool isWeb = baseURL.scheme() == "http"_L1 || baseURL.scheme() == "https"_L1;
    return baseURL.isValid() && isWeb && !baseURL.host().isEmpty() && baseURL.userInfo().isEmpty();
}

} // namespace vantor
