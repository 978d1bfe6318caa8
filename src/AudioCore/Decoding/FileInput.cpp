#include "AudioCore/Decoding/FileInput.h"

#include "AudioCore/AudioCoreError.h"
#include "Platform/NativePath.h"

#include <QFileInfo>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vantor {

FileInput::FileInput(const QString &path) : m_file(path) {
    // By the bytes of its name, which need not be text; and without waiting, since it may be a pipe.
    const int descriptor = open(NativePath::bytes(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    struct stat status;
    if (descriptor < 0 || fstat(descriptor, &status) != 0)
        throw AudioCoreError::readFailure();
    if (!S_ISREG(status.st_mode)) { // a folder, a pipe or a device
        close(descriptor);
        throw AudioCoreError::openFailure();
    }
    if (!m_file.open(descriptor, QIODevice::ReadOnly | QIODevice::Unbuffered, QFile::AutoCloseHandle)) {
        close(descriptor);
        throw AudioCoreError::readFailure();
    }
}

std::size_t FileInput::read(std::span<char> bytes) {
    const qint64 count = m_file.read(bytes.data(), static_cast<qint64>(bytes.size()));
    if (count < 0)
        throw AudioCoreError::readFailure();
    return static_cast<std::size_t>(count);
}

QString FileInput::name() const {
    return QFileInfo(m_file.fileName()).fileName();
}

} // namespace vantor
