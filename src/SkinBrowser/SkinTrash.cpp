#include "Platform/NativePath.h"
#include "SkinBrowser/SkinTrash_p.h"
#include "SkinLibrary/SkinLibraryError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryFile>

namespace vantor {

namespace {

/// Why the user's Trash takes no file of this name; none when it does. Qt tries again for ever, under ever
/// new names, when it cannot write there what it notes of a file.
std::optional<QString> failureOfTrash(const QString &path) {
    constexpr qsizetype longestName = 255 - 24; // bytes: what is noted, and the number, make it longer
    if (QFile::encodeName(QFileInfo(path).fileName()).size() > longestName)
        return QStringLiteral("Its name is too long for the Trash.");
    const QString trash =
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/Trash/");
    for (const char *part : {"files", "info"}) {
        const QString folder = trash + QLatin1String(part);
        QTemporaryFile probe(folder + QStringLiteral("/vantor-XXXXXX"));
        if (!QDir().mkpath(folder) || !probe.open() || probe.write(folder.toUtf8()) < 0 || !probe.flush())
            return QStringLiteral("%1: %2").arg(folder, probe.errorString());
    }
    return std::nullopt;
}

/// Why the file is still where it was; none when it is not.
std::optional<QString> failureToTrash(const QString &path) {
    QFile file(path);
    // Otherwise Qt would look for another name, which may be another file's.
    if (QFile::encodeName(path) != NativePath::bytes(path))
        return QStringLiteral("The Trash cannot keep a file whose name is in an unknown encoding.");
    if (const std::optional<QString> failure = failureOfTrash(path))
        return failure;
    if (!file.moveToTrash())
        return file.errorString();
    return std::nullopt;
}

/// None when the index does not know the file.
std::optional<QString> hashAt(SharedSkinIndex &index, const QString &path) {
    try {
        const auto skin = index.use([&](SkinIndexStore &store) { return store.skinAtPath(path); });
        return skin ? std::optional(skin->hash) : std::nullopt;
    } catch (const SkinLibraryError &) {
        return std::nullopt; // that the index fails is said when the file has gone
    }
}

} // namespace

QString moveSkinToTrash(SharedSkinIndex &index, const QString &path, const QString &name) {
    // With the hash, so that another file that takes the path meanwhile stays in the index.
    const std::optional<QString> hash = hashAt(index, path);
    if (const std::optional<QString> failure = failureToTrash(path))
        return QStringLiteral("Couldn’t move “") + name + QStringLiteral("” to the Trash. ") + *failure;
    try {
        index.use([&](SkinIndexStore &store) { store.removeFile(path, hash); });
    } catch (const SkinLibraryError &error) {
        return u'“' + name +
               QStringLiteral("” was moved to the Trash, but the index could not be updated. ") +
               error.description();
    }
    return {};
}

} // namespace vantor
