#include "SkinLibrary/Ingest/SkinContentHash.h"

#include "Platform/NativePath.h"

#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <new>

namespace vantor::SkinContentHash {

namespace {

/// libcrypto's, because it uses the processor's own instructions for them.
class Digest {
  public:
    explicit Digest(const EVP_MD *kind) : m_context(EVP_MD_CTX_new(), EVP_MD_CTX_free) {
        if (!m_context)
            throw std::bad_alloc();
        m_works = EVP_DigestInit_ex(m_context.get(), kind, nullptr) == 1;
    }

    void add(QByteArrayView bytes) {
        m_works = m_works && EVP_DigestUpdate(m_context.get(), bytes.data(),
                                              static_cast<std::size_t>(bytes.size())) == 1;
    }

    QString finish() {
        std::array<unsigned char, EVP_MAX_MD_SIZE> digest;
        unsigned size = 0;
        if (!m_works || EVP_DigestFinal_ex(m_context.get(), digest.data(), &size) != 1)
            return QStringLiteral("");
        return hex(QByteArrayView(digest.data(), size));
    }

  private:
    std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> m_context;
    bool m_works = false;
};

} // namespace

struct Digester::Contexts {
    Digest sha256{EVP_sha256()};
    Digest md5{EVP_md5()};
};

Digester::Digester() : m_contexts(new Contexts) {}
Digester::~Digester() = default;

void Digester::add(QByteArrayView bytes) {
    m_contexts->sha256.add(bytes);
    m_contexts->md5.add(bytes);
}

SkinDigests Digester::finish() {
    return {m_contexts->sha256.finish(), m_contexts->md5.finish()};
}

SkinDigests digests(QByteArrayView bytes) {
    Digester digester;
    digester.add(bytes);
    return digester.finish();
}

QString hex(QByteArrayView digest) {
    return QString::fromLatin1(digest.toByteArray().toHex());
}

bool isValid(const QString &hash) {
    const auto isDigit = [](QChar c) { return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f'); };
    return hash.size() == 64 && std::ranges::all_of(hash, isDigit);
}

QString ofUnreadable(const QString &path) {
    return digests("unreadable file: " + NativePath::bytes(path)).sha256;
}

} // namespace vantor::SkinContentHash
