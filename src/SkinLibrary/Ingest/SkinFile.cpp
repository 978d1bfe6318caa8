#include "Platform/FileTime.h"
#include "Platform/NativePath.h"
#include "SkinLibrary/Ingest/SkinFile_p.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace vantor {

namespace {

[[noreturn]] void fail(int error) {
    throw std::system_error(error, std::generic_category());
}

} // namespace

SkinFile::SkinFile(const QString &path)
    : m_descriptor(open(NativePath::bytes(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {
    if (m_descriptor < 0)
        fail(errno);
    struct stat status;
    const bool isKnown = fstat(m_descriptor, &status) == 0;
    const int error = !isKnown                  ? errno
                      : S_ISDIR(status.st_mode) ? EISDIR
                      : S_ISREG(status.st_mode) ? 0
                                                : EINVAL;
    if (error != 0) {
        close(m_descriptor);
        fail(error);
    }
    m_size = status.st_size;
    m_mtime = modificationTime(status);
}

SkinFile::~SkinFile() {
    close(m_descriptor);
}

std::size_t SkinFile::read(std::span<char> buffer) {
    for (;;) {
        const ssize_t count = ::read(m_descriptor, buffer.data(), buffer.size());
        if (count >= 0)
            return static_cast<std::size_t>(count);
        if (errno != EINTR)
            fail(errno);
    }
}

QByteArray SkinFile::readAll() {
    QByteArray bytes(m_size, Qt::Uninitialized);
    qsizetype used = 0;
    while (used < bytes.size()) {
        const std::size_t count = read({bytes.data() + used, static_cast<std::size_t>(bytes.size() - used)});
        if (count == 0)
            break;
        used += static_cast<qsizetype>(count);
    }
    bytes.truncate(used);
    return bytes;
}

QString SkinFile::alias() const {
    return QStringLiteral("/dev/fd/%1").arg(m_descriptor);
}

} // namespace vantor
