#include "Vantor/Museum/MuseumSetup.h"

#include "Platform/AppPaths.h"
#include "SkinMuseum/Client/MuseumClient.h"

#include <QLoggingCategory>
#include <QSettings>

Q_LOGGING_CATEGORY(museumLog, "co.kelvane.vantor.Museum")

namespace vantor {

namespace {

QString chosenText(const char *variable, const QSettings &settings, const QString &key) {
    const QString text = qEnvironmentVariable(variable);
    return text.isEmpty() ? settings.value(key).toString() : text;
}

} // namespace

MuseumSetup MuseumSetup::chosen(const QSettings &settings) {
    MuseumSetup setup{.endpoint = QUrl(QLatin1String(MuseumClient::defaultEndpoint)),
                      .authorities = {},
                      .cacheFolder = AppPaths::cacheFolder() + QStringLiteral("/museum"),
                      .version = QStringLiteral(VANTOR_VERSION)};
    const QString address =
        chosenText("VANTOR_MUSEUM_ENDPOINT", settings, QStringLiteral("skins.museum.endpoint"));
    const QUrl url(address, QUrl::StrictMode);
    if (url.scheme() == QLatin1String("https") && !url.host().isEmpty())
        setup.endpoint = url;
    else if (!address.isEmpty())
        qCWarning(museumLog, "The museum's address is not one in https with a host, and is not used: %s",
                  qUtf8Printable(address));
    const QString file = chosenText("VANTOR_MUSEUM_CA_FILE", settings, QStringLiteral("skins.museum.caFile"));
    if (!file.isEmpty())
        setup.authorities =
            QSslCertificate::fromPath(file, QSsl::Pem, QSslCertificate::PatternSyntax::FixedString);
    if (!file.isEmpty() && setup.authorities.isEmpty())
        qCWarning(museumLog, "There are no certificates in the file to trust for the museum: %s",
                  qUtf8Printable(file));
    return setup;
}

} // namespace vantor
