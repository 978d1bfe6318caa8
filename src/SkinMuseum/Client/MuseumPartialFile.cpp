#include "SkinMuseum/Client/MuseumPartialFile.h"

#include "Platform/NativePath.h"
#include "SkinMuseum/Client/MuseumDownloader.h"
#include "SkinMuseum/MuseumError.h"

#include <QFile>
#include <QUuid>

#include <fcntl.h>
#include <unistd.h>

#include <system_error>

namespace vantor {

namespace {

namespace fs = std::filesystem;

using Result = MuseumDownloadResult;

constexpr std::chrono::hours sweepAge{1}; // longer than any download takes

MuseumError problem(const std::error_code &error) {
    return MuseumError::notSaved(QString::fromStdString(error.message()));
}

MuseumError lastProblem() {
    return problem({errno, std::generic_category()});
}

/// Not through a link, which may lead anywhere.
void makeFolder(const fs::path &path) {
    std::error_code error;
    fs::create_directory(path, error);
    std::error_code ignored;
    if (fs::is_directory(fs::symlink_status(path, ignored)))
        return;
    const bool isTaken = !error || error == std::errc::file_exists;
    throw problem(isTaken ? std::make_error_code(std::errc::not_a_directory) : error);
}

fs::path museumFolder(const QString &skins) {
    std::error_code error;
    const fs::path root = fs::canonical(NativePath::bytes(skins).toStdString(), error); // as the index has it
    if (error)
        throw problem(error);
    const fs::path folder = root / MuseumDownloader::folderName;
    makeFolder(folder);
    makeFolder(folder / MuseumDownloader::partialFolderName);
    return folder;
}

/// Removes what a crash or a power cut has left, which nobody finishes, and nothing else.
void sweep(const fs::path &folder) {
    std::error_code error;
    const auto before = fs::file_time_type::clock::now() - sweepAge;
    for (fs::directory_iterator file(folder, error), end; !error && file != end; file.increment(error)) {
        const std::string name = file->path().filename().string();
        std::error_code unknown;
        const bool isLeft = name.size() == 36 && !QUuid::fromString(QLatin1String(name.c_str())).isNull() &&
                            fs::is_regular_file(file->symlink_status(unknown)) &&
                            file->last_write_time(unknown) < before;
        if (isLeft && !unknown)
            fs::remove(file->path(), unknown);
    }
}

fs::path freshPath(const fs::path &folder) {
    const fs::path partials = folder / MuseumDownloader::partialFolderName;
    sweep(partials);
    return partials / QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString();
}

bool holds(const fs::path &path, const QByteArray &bytes) {
    QFile file(QFile::decodeName(path.c_str()));
    return file.size() == bytes.size() && file.open(QIODevice::ReadOnly) && file.readAll() == bytes;
}

QUrl url(const fs::path &path) {
    return NativePath::url(NativePath::text(QByteArrayView(path.native())));
}

} // namespace

// Not by QFile, which does not always know why a write fell short.
MuseumPartialFile::MuseumPartialFile(const QString &skins)
    : m_folder(museumFolder(skins)), m_path(freshPath(m_folder)),
      m_file(::open(m_path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666)) {
    if (m_file < 0)
        throw lastProblem();
}

MuseumPartialFile::~MuseumPartialFile() {
    discard();
}

void MuseumPartialFile::discard() {
    if (m_file >= 0)
        ::close(std::exchange(m_file, -1));
    ::unlink(m_path.c_str()); // no longer there once it was moved
}

void MuseumPartialFile::write(QByteArrayView bytes) {
    while (!bytes.isEmpty()) {
        const ssize_t written = ::write(m_file, bytes.data(), static_cast<std::size_t>(bytes.size()));
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            throw lastProblem();
        bytes = bytes.sliced(written);
    }
    if (::fsync(m_file) != 0 || ::close(std::exchange(m_file, -1)) != 0)
        throw lastProblem();
}

/// False when there is such a file.
bool MuseumPartialFile::move(const fs::path &to) const {
    if (::renameat2(AT_FDCWD, m_path.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return true;
    // Some file systems move without looking only, and know links instead.
    const bool isUnknown = errno == EINVAL || errno == ENOSYS;
    if (isUnknown && ::link(m_path.c_str(), to.c_str()) == 0)
        return true;
    if (errno != EEXIST)
        throw lastProblem();
    return false;
}

Result MuseumPartialFile::save(const QByteArray &bytes, const QString &name) {
    write(bytes);
    const QString base = name.chopped(4);
    for (int number = 1;; ++number) {
        const QString numbered = number == 1 ? name : QStringLiteral("%1 (%2).wsz").arg(base).arg(number);
        const fs::path path = m_folder / numbered.toStdString();
        if (holds(path, bytes)) // which the index has not seen yet
            return {Result::Case::alreadyHad, url(path)};
        if (move(path))
            return {Result::Case::added, url(path)};
    }
}

} // namespace vantor
