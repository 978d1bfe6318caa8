#include "SkinLibrary/Ingest/FolderScanner.h"

#include "Platform/FileTime.h"
#include "Platform/NativePath.h"
#include "SkinLibrary/SkinLibraryError.h"

#include <QFile>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <memory>

namespace vantor::FolderScanner {

namespace {

struct FreeText {
    void operator()(char *text) const { std::free(text); }
};

struct CloseFolder {
    void operator()(DIR *folder) const { closedir(folder); }
};

SkinLibraryError notAFolder() {
    return SkinLibraryError::folderUnreadable(QStringLiteral("not a folder"));
}

SkinLibraryError cannotEnumerate() {
    return SkinLibraryError::folderUnreadable(QStringLiteral("cannot enumerate"));
}

/// Empty when it does not lead anywhere.
QByteArray resolved(const QByteArray &path) {
    const std::unique_ptr<char, FreeText> real(realpath(path.constData(), nullptr));
    return QByteArray(real.get());
}

QByteArray resolvedFolder(const QUrl &folder) {
    const QByteArray real = resolved(NativePath::bytes(folder.toLocalFile()));
    struct stat status;
    if (real.isEmpty() || stat(real.constData(), &status) != 0 || !S_ISDIR(status.st_mode))
        throw notAFolder();
    return real;
}

QString extensionOf(QByteArrayView name) {
    const qsizetype dot = name.lastIndexOf('.');
    return dot > 0 ? QString::fromUtf8(name.sliced(dot + 1)).toLower() : QString();
}

bool isPackage(QByteArrayView name) {
    static const QSet<QString> extensions{
        QStringLiteral("app"),       QStringLiteral("appex"),   QStringLiteral("bundle"),
        QStringLiteral("component"), QStringLiteral("dsym"),    QStringLiteral("framework"),
        QStringLiteral("kext"),      QStringLiteral("lproj"),   QStringLiteral("mpkg"),
        QStringLiteral("pkg"),       QStringLiteral("plugin"),  QStringLiteral("prefpane"),
        QStringLiteral("rtfd"),      QStringLiteral("service"), QStringLiteral("xcodeproj"),
        QStringLiteral("xpc"),
    };
    return extensions.contains(extensionOf(name));
}

/// One walk over a folder. Open files stay few however deep the folder is.
class Walk {
  public:
    Walk(QByteArray root, const QSet<QString> &extensions)
        : m_root(std::move(root)), m_extensions(extensions) {}

    std::vector<FileStamp> run() {
        struct stat before;
        if (stat(m_root.constData(), &before) != 0)
            throw notAFolder();
        m_pending.push_back(m_root);
        while (!m_pending.empty()) {
            const QByteArray path = std::move(m_pending.back());
            m_pending.pop_back();
            list(path);
        }
        // A disk that was pulled out looks like a folder that was emptied.
        struct stat after;
        if (stat(m_root.constData(), &after) != 0 || after.st_ino != before.st_ino ||
            after.st_dev != before.st_dev)
            throw notAFolder();
        if (m_hasLinks) {
            std::ranges::sort(m_stamps, {}, &FileStamp::path);
            const auto copies = std::ranges::unique(m_stamps, {}, &FileStamp::path);
            m_stamps.erase(copies.begin(), copies.end());
        }
        return std::move(m_stamps);
    }

  private:
    void list(const QByteArray &path);
    void take(int folder, const QByteArray &prefix, const dirent &entry);
    void takeLink(int folder, const QByteArray &prefix, const char *name);
    void keep(const QByteArray &path, const struct stat &status);

    const QByteArray m_root;
    const QSet<QString> &m_extensions;
    std::vector<QByteArray> m_pending;
    std::vector<FileStamp> m_stamps;
    bool m_hasLinks = false; ///< so that a file may have come twice
};

void Walk::list(const QByteArray &path) {
    const int descriptor = open(path.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    const std::unique_ptr<DIR, CloseFolder> folder(descriptor < 0 ? nullptr : fdopendir(descriptor));
    if (!folder) {
        const bool isForbidden = errno == EACCES || errno == EPERM || errno == ENAMETOOLONG;
        const bool isGone = errno == ENOENT || errno == ENOTDIR || errno == ELOOP;
        if (path == m_root || !(isForbidden || isGone))
            throw cannotEnumerate();
        return;
    }
    const QByteArray prefix = path.endsWith('/') ? path : path + '/';
    errno = 0;
    while (const dirent *entry = readdir(folder.get())) {
        take(descriptor, prefix, *entry);
        errno = 0;
    }
    if (errno != 0 && errno != ENOENT)
        throw cannotEnumerate();
}

void Walk::take(int folder, const QByteArray &prefix, const dirent &entry) {
    const QByteArrayView name(entry.d_name);
    if (name.startsWith('.'))
        return;
    const bool isWanted = m_extensions.contains(extensionOf(name));
    struct stat status;
    unsigned char type = entry.d_type;
    // Only what may matter is looked at closer; some file systems do not tell the type.
    if (type == DT_UNKNOWN || (type == DT_REG && isWanted)) {
        if (fstatat(folder, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) != 0)
            return;
        type = static_cast<unsigned char>(IFTODT(status.st_mode));
    }
    if (type == DT_DIR && !isPackage(name))
        m_pending.push_back(prefix + entry.d_name);
    else if (type == DT_REG && isWanted)
        keep(prefix + entry.d_name, status);
    else if (type == DT_LNK && isWanted)
        takeLink(folder, prefix, entry.d_name);
}

void Walk::takeLink(int folder, const QByteArray &prefix, const char *name) {
    struct stat status;
    if (fstatat(folder, name, &status, 0) != 0 || !S_ISREG(status.st_mode))
        return;
    const QByteArray real = resolved(prefix + name);
    if (real.isEmpty())
        return;
    if (!real.startsWith(m_root.endsWith('/') ? m_root : m_root + '/'))
        throw SkinLibraryError::folderUnreadable(QStringLiteral("unexpected path outside the folder"));
    m_hasLinks = true;
    keep(real, status);
}

void Walk::keep(const QByteArray &path, const struct stat &status) {
    m_stamps.push_back({NativePath::text(path), status.st_size, modificationTime(status)});
}

} // namespace

std::vector<FileStamp> list(const QUrl &folder, const QSet<QString> &extensions) {
    return Walk(resolvedFolder(folder), extensions).run();
}

QString realPath(const QUrl &folder) {
    return NativePath::text(resolvedFolder(folder));
}

FileStamp stamp(const QString &path) {
    const QByteArray bytes = NativePath::bytes(path);
    const QByteArray real = resolved(bytes);
    struct stat status;
    if (real.isEmpty() || stat(real.constData(), &status) != 0)
        return {.path = path};
    return {NativePath::text(real), status.st_size, modificationTime(status)};
}

} // namespace vantor::FolderScanner
