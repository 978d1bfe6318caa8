#include "Platform/NativePath.h"
#include "SkinBrowser/SkinTrash_p.h"
#include "SkinLibrary/SkinLibraryError.h"

#include <QFile>

namespace vantor {

namespace {

/// Why the file is still where it was; none when it is not.
std::optional<QString> failureToTrash(const QString &path) {
    QFile file(path);
    // Otherwise Qt would look for another name, which may be another file's.
    if (QFile::encodeName(path) != NativePath::bytes(path))
        return QStringLiteral("The Trash cannot keep a file whose name is in an unknown encoding.");
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
