#pragma once

#include <QString>

namespace vantor {

class SkinFileGatherer;

/// Offers the regular files below a folder to the gatherer in ascending order of their paths. Hidden files
/// and folders and symbolic links are passed over. Throws SkinError::unreadableArchive for a folder that
/// cannot be listed or holds far more than any skin does.
void gatherFolder(const QString &path, SkinFileGatherer &gatherer);

} // namespace vantor
