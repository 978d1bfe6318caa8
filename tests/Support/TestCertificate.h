#pragma once

#include <QSslCertificate>
#include <QSslConfiguration>

namespace vantor {

/// A certificate made for a test, signed by itself and trusted by nobody, for one host name.
class TestCertificate {
  public:
    explicit TestCertificate(const QString &host);

    [[nodiscard]] const QSslCertificate &certificate() const { return m_certificate; }
    /// For the side that shows it.
    [[nodiscard]] QSslConfiguration serverConfiguration() const;

  private:
    QSslCertificate m_certificate;
    QByteArray m_key; ///< PEM
};

} // namespace vantor
