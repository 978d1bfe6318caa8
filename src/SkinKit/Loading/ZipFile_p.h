#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <memory>

struct zip;

namespace vantor {

class SkinFileGatherer;
class ZipEntryReader;

/// A ZIP file opened for reading. Opening throws SkinError::unreadableArchive.
class ZipFile {
  public:
    [[nodiscard]] static ZipFile open(const QString &path);
    /// `data` must outlive the object.
    [[nodiscard]] static ZipFile view(const QByteArray &data);

    /// Offers every sound, plain file of the archive to the gatherer, in archive order.
    void gather(SkinFileGatherer &gatherer) const;

  private:
    struct Discard {
        void operator()(zip *archive) const;
    };

    ZipFile() = default;

    void gatherEntry(std::uint64_t index, ZipEntryReader &reader, SkinFileGatherer &gatherer) const;

    std::unique_ptr<zip, Discard> m_archive;
    std::int64_t m_bytes = 0; ///< of the whole file
};

} // namespace vantor
