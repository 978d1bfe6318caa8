#include "MusicAssistantKit/Servers/MusicAssistantAddressInput.h"

#include <QHostAddress>
#include <QStringList>

namespace vantor {

using namespace Qt::Literals::StringLiterals;

MusicAssistantAddressSecurity classifyAddress(const QUrl &url) {
    if (url.scheme() == "https"_L1 || url.scheme() == "wss"_L1) // QUrl makes schemes lower case
        return MusicAssistantAddressSecurity::encrypted;
    if (MusicAssistantAddressInput::isLocalHost(url.host()))
        return MusicAssistantAddressSecurity::local;
    if (MusicAssistantAddressInput::isTailscaleMagicDNS(url.host()))
        return MusicAssistantAddressSecurity::tailnet;
    return MusicAssistantAddressSecurity::requiresTLS;
}

namespace MusicAssistantAddressInput {

namespace {

/// Longer than any address that means something.
constexpr qsizetype maxTextLength = 2048;

/// `authority`: a host with or without a port. An IPv6 address may lack its brackets.
QString withScheme(const QString &text) {
    const qsizetype slash = text.indexOf(u'/');
    QString authority = slash < 0 ? text : text.first(slash);
    const QString rest = slash < 0 ? QString() : text.sliced(slash);
    if (authority.count(u':') > 1 && !authority.startsWith(u'[') &&
        QHostAddress(authority).protocol() == QAbstractSocket::IPv6Protocol)
        authority = u'[' + authority + u']';
    const QString host = QUrl(u"http://"_s + authority).host();
    const bool isPlain = isLocalHost(host) || isTailscaleMagicDNS(host);
    return (isPlain ? u"http://"_s : u"https://"_s) + authority + rest;
}

QString withoutEndSlash(QString path) {
    while (path.endsWith(u'/'))
        path.chop(1);
    return path;
}

} // namespace

QString proposedHost() {
    return u"homeassistant.local"_s;
}

QString message(Problem problem) {
    switch (problem) {
    case Problem::empty:
        return u"Enter the server's address."_s;
    case Problem::invalid:
        return u"That address isn't valid."_s;
    case Problem::unsupportedScheme:
        return u"Use an http or https address."_s;
    case Problem::credentialsNotAllowed:
        return u"Don't put a user name or password in the address."_s;
    case Problem::httpsRequired:
        break;
    }
    return u"Use https for this address; plain http works only on the local network or Tailscale."_s;
}

std::variant<QUrl, Problem> parse(const QString &text) {
    const QString typed = text.trimmed();
    if (typed.isEmpty())
        return Problem::empty;
    if (typed.size() > maxTextLength)
        return Problem::invalid;
    QUrl url(typed.contains("://"_L1) ? typed : withScheme(typed), QUrl::StrictMode);
    if (!url.isValid())
        return Problem::invalid;
    if (url.scheme() != "http"_L1 && url.scheme() != "https"_L1)
        return Problem::unsupportedScheme;
    if (url.authority().contains(u'@'))
        return Problem::credentialsNotAllowed;
    if (url.host().isEmpty() || url.port() == 0)
        return Problem::invalid;
    if (classifyAddress(url) == MusicAssistantAddressSecurity::requiresTLS)
        return Problem::httpsRequired;
    url = url.adjusted(QUrl::RemoveQuery | QUrl::RemoveFragment);
    url.setPath(withoutEndSlash(url.path()));
    if (url.scheme() == "http"_L1 && url.port() < 0)
        url.setPort(defaultPort);
    return url;
}

QString displayText(const QUrl &url) {
    const QString whole = url.toString();
    const QString bare = whole.sliced(url.scheme().size() + 3);
    const auto again = parse(bare);
    return std::holds_alternative<QUrl>(again) && std::get<QUrl>(again) == url ? bare : whole;
}

bool isLocalHost(const QString &host) {
    const QString name = host.trimmed().toLower();
    if (name.isEmpty())
        return false;
    return name.contains(u':') || ipv4Number(name) || name.endsWith(".local"_L1) || !name.contains(u'.');
}

bool isTailscaleMagicDNS(const QString &host) {
    static constexpr auto suffix = ".ts.net"_L1;
    const QString name = host.trimmed().toLower();
    const qsizetype before = name.size() - suffix.size();
    return name.endsWith(suffix) && before > 0 && name.at(before - 1) != u'.';
}

std::optional<quint32> ipv4Number(const QString &host) {
    const QStringList parts = host.split(u'.');
    if (parts.size() != 4)
        return std::nullopt;
    quint32 number = 0;
    for (const QString &part : parts) {
        const bool isDigits =
            std::all_of(part.begin(), part.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
        bool isNumber = false;
        const uint value = part.toUInt(&isNumber);
        if (!isDigits || !isNumber || value > 255)
            return std::nullopt;
        number = number << 8 | value;
    }
    return number;
}

} // namespace MusicAssistantAddressInput

} // namespace vantor
