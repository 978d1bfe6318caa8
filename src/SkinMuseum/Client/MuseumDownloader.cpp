#include "SkinMuseum/Client/MuseumDownloader.h"

#include "Platform/NativePath.h"
#include "SkinLibrary/Ingest/SkinContentHash.h"
#include "SkinMuseum/Client/MuseumTransport.h"
#include "SkinMuseum/MuseumError.h"

#include <QCoroFuture>
#include <QFile>
#include <QScopeGuard>
#include <QUuid>
#include <QtConcurrentRun>

#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <system_error>

namespace vantor {

namespace {

namespace fs = std::filesystem;

using Result = MuseumDownloadResult;
using Saved = std::variant<Result, MuseumError>;

QString lastProblem() {
    return QString::fromStdString(std::generic_category().message(errno));
}

/// A file that goes when this goes.
class PartialFile {
  public:
    explicit PartialFile(const fs::path &folder)
        : m_path(folder / QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString()) {}
    ~PartialFile() {
        std::error_code ignored;
        fs::remove(m_path, ignored);
    }
    Q_DISABLE_COPY_MOVE(PartialFile)

    [[nodiscard]] const fs::path &path() const { return m_path; }

    // Not by QFile, which does not always know why a write fell short.
    void write(QByteArrayView bytes) const {
        const int file = ::open(m_path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (file < 0)
            throw MuseumError::notSaved(lastProblem());
        const auto close = qScopeGuard([file] { ::close(file); });
        while (!bytes.isEmpty()) {
            const ssize_t written = ::write(file, bytes.data(), static_cast<std::size_t>(bytes.size()));
            if (written < 0 && errno == EINTR)
                continue;
            if (written < 0)
                throw MuseumError::notSaved(lastProblem());
            bytes = bytes.sliced(written);
        }
    }

  private:
    const fs::path m_path;
};

/// Removes what a crash or a power cut has left, which nobody finishes.
void sweep(const fs::path &folder) {
    std::error_code error;
    for (fs::directory_iterator file(folder, error), end; !error && file != end; file.increment(error)) {
        std::error_code ignored;
        fs::remove(file->path(), ignored); // of this object's own downloads, one is saved at a time
    }
}

bool holds(const fs::path &path, const QByteArray &bytes) {
    QFile file(QFile::decodeName(path.c_str()));
    return file.size() == bytes.size() && file.open(QIODevice::ReadOnly) && file.readAll() == bytes;
}

QUrl url(const fs::path &path) {
    return NativePath::url(NativePath::text(QByteArrayView(path.native())));
}

/// Puts the file under the name, or that name with a number, without replacing any other file.
Result place(const PartialFile &partial, const fs::path &folder, const QString &name,
             const QByteArray &bytes) {
    const QString base = name.chopped(4);
    for (int number = 1;; ++number) {
        const QString numbered = number == 1 ? name : QStringLiteral("%1 (%2).wsz").arg(base).arg(number);
        const fs::path path = folder / numbered.toStdString();
        if (holds(path, bytes)) // which the index has not seen yet
            return {Result::Case::alreadyHad, url(path)};
        std::error_code error;
        fs::create_hard_link(partial.path(), path, error);
        if (error == std::errc::file_exists)
            continue;
        // Some file systems know no links.
        if (error && !fs::exists(fs::symlink_status(path)))
            fs::rename(partial.path(), path);
        else if (error)
            continue;
        return {Result::Case::added, url(path)};
    }
}

Result save(const MuseumSkin &skin, const QString &skins, const QByteArray &bytes) {
    if (SkinContentHash::digests(bytes).md5 != skin.md5)
        throw MuseumError::checksumMismatch();
    const fs::path root = fs::canonical(NativePath::bytes(skins).toStdString()); // as the index knows it
    const fs::path folder = root / MuseumDownloader::folderName;
    const fs::path partials = folder / MuseumDownloader::partialFolderName;
    fs::create_directories(partials);
    sweep(partials);
    const PartialFile partial(partials);
    partial.write(bytes);
    return place(partial, folder, MuseumDownloader::sanitizedFilename(skin.filename, skin.md5), bytes);
}

Saved saved(const MuseumSkin &skin, const QString &skins, const QByteArray &bytes) {
    try {
        return save(skin, skins, bytes);
    } catch (const MuseumError &error) {
        return error;
    } catch (const fs::filesystem_error &error) {
        return MuseumError::notSaved(QString::fromStdString(error.code().message()));
    }
}

QCoro::Task<QUrl> found(MuseumDownloader::Existing existing, QString md5) {
    QUrl file;
    try {
        const QFuture<QUrl> looking = existing(md5);
        file = co_await looking;
    } catch (...) {
        // An index that cannot be read tells the user itself. The file is downloaded, and no copy replaced.
    }
    co_return file;
}

/// The archive, or at least what came of it: its checksum tells.
QByteArray archive(HTTPAnswer answer) {
    if (answer.status == 0 || answer.end == HTTPAnswer::End::timedOut)
        throw MuseumError::offline();
    if (answer.status < 200 || answer.status > 299)
        throw MuseumError::http(answer.status);
    if (answer.end == HTTPAnswer::End::tooLong)
        throw MuseumError::tooLarge();
    return std::move(answer.body);
}

} // namespace

MuseumDownloader::MuseumDownloader(std::shared_ptr<MuseumTransport> transport, QByteArray userAgent,
                                   qint64 maxBytes)
    : m_transport(std::move(transport)), m_userAgent(std::move(userAgent)), m_maxBytes(maxBytes),
      m_pool(std::make_shared<QThreadPool>()) {
    m_pool->setMaxThreadCount(1);
}

QCoro::Task<MuseumDownloadResult> MuseumDownloader::download(MuseumSkin skin, QString folder,
                                                             Existing existing, Progress progress) {
    if (folder.isEmpty())
        throw MuseumError::noFolder();
    const std::shared_ptr<QThreadPool> pool = m_pool;
    const std::shared_ptr<MuseumTransport> transport = m_transport;
    const MuseumRequest request{
        .url = skin.downloadURL, .userAgent = m_userAgent, .maxBytes = m_maxBytes, .onProgress = progress};
    const QUrl file = co_await found(existing, skin.md5);
    if (!file.isEmpty())
        co_return MuseumDownloadResult{MuseumDownloadResult::Case::alreadyHad, file};
    HTTPAnswer answer = co_await transport->send(request);
    const QByteArray bytes = archive(std::move(answer));
    const QFuture<Saved> saving = QtConcurrent::run(pool.get(), &saved, skin, folder, bytes);
    const Saved outcome = co_await saving;
    if (const auto *error = std::get_if<MuseumError>(&outcome))
        throw *error;
    co_return std::get<MuseumDownloadResult>(outcome);
}

} // namespace vantor
