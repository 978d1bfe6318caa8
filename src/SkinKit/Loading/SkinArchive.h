#pragma once

#include <QByteArray>
#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <cstdint>
#include <exception>
#include <optional>

namespace vantor {

/// A skin's files as a flat map: the key is the last path component in lower case, folders do not matter, and
/// of two files with one key the first wins. A value; any thread.
class SkinArchive {
  public:
    /// What is taken out of an archive at most. Sizes are of uncompressed bytes.
    struct Limits {
        std::int64_t maxEntryBytes = 8'388'608;  ///< 8 MiB
        std::int64_t maxTotalBytes = 67'108'864; ///< 64 MiB over all kept entries
        QSet<QString> allowedExtensions = defaultExtensions();

        [[nodiscard]] static QSet<QString> defaultExtensions(); ///< bmp, png, txt, cur, ani, ini, xml
        static const Limits default_;

        bool operator==(const Limits &) const = default;
    };

    /// Raised and caught inside the reader while a file outgrows the limits; never leaves it.
    class LimitExceeded : public std::exception {};

    /// Reads a ZIP file or a folder of the local file system. Entries that are too large, of another kind,
    /// corrupt or encrypted are left out silently. Throws SkinError::unreadableArchive when nothing can be
    /// opened.
    explicit SkinArchive(const QUrl &url, const Limits &limits = Limits::default_);

    /// Reads a ZIP file that is in memory; otherwise as above. `data` is only read during the call.
    [[nodiscard]] static SkinArchive fromZip(const QByteArray &data, const Limits &limits = Limits::default_);

    /// Takes files as they are, whatever their extension. Of names that collide, the first in map order wins.
    explicit SkinArchive(const QMap<QString, QByteArray> &files);

    [[nodiscard]] const QMap<QString, QByteArray> &files() const { return m_files; }

    /// The first of name.extension, in the order of `extensions`, that exists. Case does not matter.
    [[nodiscard]] std::optional<QByteArray> file(const QString &name, const QStringList &extensions) const;

  private:
    SkinArchive() = default;

    QMap<QString, QByteArray> m_files;
};

} // namespace vantor
