#pragma once

#include <QList>
#include <QSslCertificate>
#include <QString>
#include <QUrl>

class QSettings;

namespace vantor {

/// Which museum is asked, whom it takes to trust it, and where what it sends is kept.
struct MuseumSetup {
    QUrl endpoint;                      ///< in https
    QList<QSslCertificate> authorities; ///< beside those of the system
    QString cacheFolder;
    QString version; ///< of the program, for the museum to see

    /// The museum, unless the environment (VANTOR_MUSEUM_ENDPOINT, VANTOR_MUSEUM_CA_FILE) or the settings
    /// (skins.museum.endpoint, skins.museum.caFile) name another one: a mirror, or one for tests. An address
    /// that is not in https or has no host is none; the log tells of it, and of a file without certificates.
    [[nodiscard]] static MuseumSetup chosen(const QSettings &settings);
};

} // namespace vantor
