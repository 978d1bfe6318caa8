#pragma once

#include "SkinLibrary/Index/SkinRecord.h"

#include <QSet>
#include <QUrl>

#include <vector>

/// Finds the archives of a skins folder. Any thread.
namespace vantor::FolderScanner {

/// The regular files below the folder whose lower-cased extension is one of these, in no particular order,
/// each once, under their real paths.
///
/// Passed over: what is hidden (its name begins with a dot), packages (folders that the desktop they come
/// from shows as one file: .app, .bundle, .framework and the like, see FolderScanner.cpp), subfolders that
/// may not be read, and links to folders. A link to a file stands for that file. Throws
/// SkinLibraryError::folderUnreadable when the folder cannot be listed completely, and when a link leads out
/// of it.
[[nodiscard]] std::vector<FileStamp> list(const QUrl &folder, const QSet<QString> &extensions);

/// The folder with every link resolved, in NativePath's form. Throws as list() does.
[[nodiscard]] QString realPath(const QUrl &folder);

/// The stamp of one file under its real path; size and time are 0 when it cannot be read.
[[nodiscard]] FileStamp stamp(const QString &path);

} // namespace vantor::FolderScanner
