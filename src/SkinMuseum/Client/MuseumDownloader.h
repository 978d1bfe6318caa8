#pragma once

#include "SkinMuseum/Wire/MuseumPage.h"

#include <QCoroTask>
#include <QFuture>

#include <functional>
#include <memory>

namespace vantor {

class MuseumTransport;

/// Where a skin is now.
struct MuseumDownloadResult {
    enum class Case { added, alreadyHad };

    Case outcome = Case::added;
    QUrl file;

    bool operator==(const MuseumDownloadResult &) const = default;
};

/// Fetches skins into the museum's folder inside the skins folder. Main thread; files are a worker's.
///
/// A file is there when it is whole, has the museum's checksum and is called like nothing else in the folder;
/// before that nothing of it can be seen, and what fails leaves nothing behind. One and the same object has
/// to be asked for all skins of a folder.
class MuseumDownloader {
  public:
    static constexpr qint64 defaultMaxBytes = 16LL << 20;
    static constexpr const char *folderName = "Museum";
    static constexpr const char *partialFolderName = ".partial";

    /// Tells where a skin is, by its MD5, if the user has it; an empty address otherwise.
    using Existing = std::function<QFuture<QUrl>(const QString &md5)>;
    using Progress = std::function<void(qint64 received, qint64 total)>;

    MuseumDownloader(std::shared_ptr<MuseumTransport> transport, QByteArray userAgent,
                     qint64 maxBytes = defaultMaxBytes);
    /// Waits for the file that is being saved. What is still being fetched fails, and leaves nothing.
    ~MuseumDownloader();
    Q_DISABLE_COPY_MOVE(MuseumDownloader)

    /// `folder`: the skins folder, in NativePath's form; empty when none was chosen. Throws MuseumError:
    /// `noFolder`, `offline`, `http`, `tooLarge`, `checksumMismatch`, `notSaved`. When
    /// `existing` throws, it is asked once more, and then counts as none. Told to stop, on the main thread,
    /// it fails as soon as it can, unless the skin is being saved already.
    [[nodiscard]] QCoro::Task<MuseumDownloadResult> download(MuseumSkin skin, QString folder,
                                                             Existing existing, Progress progress = {},
                                                             std::stop_token stop = {});

    /// A name for a file, ending in ".wsz": what a file system or another system forbids in names, and what
    /// cannot be seen, is replaced, what leads out of a folder or hides a file goes, and what is too long is
    /// cut. `fallback` when nothing is left.
    [[nodiscard]] static QString sanitizedFilename(const QString &name, const QString &fallback);

  private:
    struct Work;

    [[nodiscard]] static QCoro::Task<QUrl> found(std::shared_ptr<Work> work, Existing existing, QString md5);

    const std::shared_ptr<MuseumTransport> m_transport;
    const QByteArray m_userAgent;
    const qint64 m_maxBytes;
    const std::shared_ptr<Work> m_work;
};

} // namespace vantor
