#include "Platform/NativePath.h"

#include <QFile>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <memory>

namespace vantor::NativePath {

namespace {

constexpr char16_t escape = 0xDC00; ///< plus the byte

/// The length of the sound character at the front, 0 if there is none.
qsizetype characterLength(QByteArrayView bytes) {
    for (qsizetype length = 1; length <= std::min<qsizetype>(bytes.size(), 4); ++length) {
        if (bytes.first(length).isValidUtf8())
            return length;
    }
    return 0;
}

struct CloseFolder {
    void operator()(DIR *folder) const { closedir(folder); }
};

bool isEscape(QChar unit) {
    return unit.unicode() >= escape + 0x80 && unit.unicode() <= escape + 0xFF;
}

} // namespace

QString text(QByteArrayView bytes) {
    if (bytes.isValidUtf8())
        return QString::fromUtf8(bytes);
    QString result;
    while (!bytes.isEmpty()) {
        const qsizetype length = characterLength(bytes);
        if (length > 0)
            result += QString::fromUtf8(bytes.first(length));
        else
            result += QChar(static_cast<char16_t>(escape + static_cast<unsigned char>(bytes.front())));
        bytes = bytes.sliced(std::max<qsizetype>(length, 1));
    }
    return result;
}

QByteArray bytes(const QString &text) {
    if (text.isValidUtf16())
        return text.toUtf8();
    QByteArray result;
    for (qsizetype at = 0; at < text.size();) {
        const QChar unit = text[at];
        const bool isPair = unit.isHighSurrogate() && at + 1 < text.size() && text[at + 1].isLowSurrogate();
        if (isEscape(unit))
            result += static_cast<char>(unit.unicode() - escape);
        else
            result += text.mid(at, isPair ? 2 : 1).toUtf8();
        at += isPair ? 2 : 1;
    }
    return result;
}

QUrl url(const QString &text) {
    if (text.isValidUtf16())
        return QUrl::fromLocalFile(text);
    return QUrl::fromEncoded("file://" + bytes(text).toPercentEncoding("/"));
}

QString fromUrl(const QUrl &url) {
    return text(QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1()));
}

QByteArray read(const QString &path, qint64 maxBytes) {
    const int descriptor = open(bytes(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0)
        return {};
    struct stat status;
    QFile file;
    const bool isFile = fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
    if (!isFile || !file.open(descriptor, QIODevice::ReadOnly, QFile::AutoCloseHandle)) {
        close(descriptor);
        return {};
    }
    const QByteArray found = status.st_size <= maxBytes ? file.read(maxBytes + 1) : QByteArray();
    return found.size() <= maxBytes ? found : QByteArray(); // it may have grown meanwhile
}

QStringList files(const QString &folder) {
    QStringList names;
    const std::unique_ptr<DIR, CloseFolder> entries(opendir(bytes(folder).constData()));
    while (const dirent *const entry = entries ? readdir(entries.get()) : nullptr) {
        struct stat status;
        if (entry->d_name[0] != '.' && fstatat(dirfd(entries.get()), entry->d_name, &status, 0) == 0 &&
            S_ISREG(status.st_mode))
            names.append(text(entry->d_name));
    }
    std::ranges::sort(names);
    return names;
}

} // namespace vantor::NativePath
