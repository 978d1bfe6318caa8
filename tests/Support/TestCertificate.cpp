#include "tests/Support/TestCertificate.h"

#include <QSslKey>

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <memory>

namespace vantor {

namespace {

template <typename T, void (*release)(T *)>
struct Releaser {
    void operator()(T *object) const { release(object); }
};
using Key = std::unique_ptr<EVP_PKEY, Releaser<EVP_PKEY, EVP_PKEY_free>>;
using Certificate = std::unique_ptr<X509, Releaser<X509, X509_free>>;
using Extension = std::unique_ptr<X509_EXTENSION, Releaser<X509_EXTENSION, X509_EXTENSION_free>>;

template <typename Write>
QByteArray pem(Write write) {
    const std::unique_ptr<BIO, Releaser<BIO, BIO_free_all>> out(BIO_new(BIO_s_mem()));
    write(out.get());
    char *bytes = nullptr;
    const long size = BIO_ctrl(out.get(), BIO_CTRL_INFO, 0, &bytes);
    return {bytes, size};
}

void addExtension(X509 *certificate, int kind, const QByteArray &value) {
    const Extension extension(X509V3_EXT_conf_nid(nullptr, nullptr, kind, value.constData()));
    X509_add_ext(certificate, extension.get(), -1);
}

} // namespace

TestCertificate::TestCertificate(const QString &host) {
    const Key key(EVP_EC_gen("P-256"));
    const Certificate certificate(X509_new());
    X509_set_version(certificate.get(), 2);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), 1);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -3600);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), 86'400);
    X509_set_pubkey(certificate.get(), key.get());
    X509_NAME *name = X509_get_subject_name(certificate.get());
    const QByteArray commonName = "Made for a test";
    X509_NAME_add_entry_by_NID(name, NID_commonName, MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char *>(commonName.constData()), -1, -1, 0);
    X509_set_issuer_name(certificate.get(), name);
    addExtension(certificate.get(), NID_subject_alt_name, "DNS:" + host.toLatin1());
    addExtension(certificate.get(), NID_basic_constraints, "critical,CA:TRUE");
    X509_sign(certificate.get(), key.get(), EVP_sha256());
    m_certificate = QSslCertificate(pem([&](BIO *out) { PEM_write_bio_X509(out, certificate.get()); }));
    m_key = pem(
        [&](BIO *out) { PEM_write_bio_PrivateKey(out, key.get(), nullptr, nullptr, 0, nullptr, nullptr); });
}

QSslConfiguration TestCertificate::serverConfiguration() const {
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setLocalCertificate(m_certificate);
    configuration.setPrivateKey(QSslKey(m_key, QSsl::Ec));
    configuration.setPeerVerifyMode(QSslSocket::VerifyNone);
    return configuration;
}

} // namespace vantor
