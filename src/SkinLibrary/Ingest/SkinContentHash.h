#pragma once

#include <QByteArrayView>
#include <QString>

#include <memory>

namespace vantor {

/// Of an archive's bytes, in lower-case hexadecimal digits.
struct SkinDigests {
    QString sha256; ///< 64 digits: the skin's identity
    QString md5;    ///< 32 digits; empty where the system offers no MD5

    bool operator==(const SkinDigests &) const = default;
};

/// The content hashes of skins. Any thread.
namespace SkinContentHash {

/// Takes the bytes piece by piece. One thread.
class Digester {
  public:
    Digester();
    ~Digester();

    void add(QByteArrayView bytes);
    /// Once, at the end.
    [[nodiscard]] SkinDigests finish();

  private:
    struct Contexts;
    std::unique_ptr<Contexts> m_contexts;
};

[[nodiscard]] SkinDigests digests(QByteArrayView bytes);
/// Lower-case hexadecimal.
[[nodiscard]] QString hex(QByteArrayView digest);
/// Whether this could be a skin's hash: 64 lower-case hexadecimal digits.
[[nodiscard]] bool isValid(const QString &hash);
/// Stands in for the hash of a file whose bytes are out of reach.
[[nodiscard]] QString ofUnreadable(const QString &path);

} // namespace SkinContentHash
} // namespace vantor
