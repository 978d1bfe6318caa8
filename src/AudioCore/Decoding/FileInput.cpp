#include "AudioCore/Decoding/FileInput.h"

#include "AudioCore/AudioCoreError.h"

#include <QFileInfo>

namespace vantor {

FileInput::FileInput(const QString &path) : m_file(path) {
    const QFileInfo file(path);
    if (file.exists() && !file.isFile()) // a folder; or a pipe or device: opening one may wait for ever
        throw AudioCoreError::openFailure();
    if (!m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        throw AudioCoreError::readFailure();
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
