#include "SkinKit/Loading/SkinError.h"
#include "SkinKit/Loading/SkinFileGatherer_p.h"
#include "SkinKit/Loading/SkinFolder_p.h"

#include <QFile>

#include <filesystem>
#include <system_error>

namespace vantor {

namespace {

namespace fs = std::filesystem;

// Somebody's home folder must not be read for minutes because it was named by mistake. What was found this
// far is the skin then.
constexpr int maxVisited = 5'000;

SkinError unlistable(const std::error_code &error) {
    return SkinError::unreadableArchive(QString::fromLocal8Bit(error.message().c_str()));
}

std::vector<std::string> regularFiles(const fs::path &folder) {
    std::error_code error;
    fs::recursive_directory_iterator entry(folder, fs::directory_options::skip_permission_denied, error);
    if (error)
        throw unlistable(error);
    std::vector<std::string> paths;
    for (int visited = 0; visited < maxVisited && entry != fs::end(entry);
         entry.increment(error), ++visited) {
        const bool hidden = entry->path().filename().native().starts_with('.');
        std::error_code ignored; // the file may be gone by now
        if (hidden)
            entry.disable_recursion_pending();
        else if (entry->symlink_status(ignored).type() == fs::file_type::regular)
            paths.push_back(entry->path().native());
    }
    std::ranges::sort(paths);
    return paths;
}

} // namespace

void gatherFolder(const QString &path, SkinFileGatherer &gatherer) {
    for (const std::string &filePath : regularFiles(QFile::encodeName(path).toStdString())) {
        if (gatherer.isFull())
            return;
        QFile file(QFile::decodeName(filePath.c_str()));
        const QString key = gatherer.wantedKey(file.fileName(), file.size());
        if (key.isEmpty() || !file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
            continue;
        gatherer.take(key, file.size(),
                      [&](char *buffer, std::int64_t size) { return file.read(buffer, size); });
    }
}

} // namespace vantor
