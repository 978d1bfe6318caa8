#include "SkinBrowser/ThumbnailFiles_p.h"

#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QTemporaryFile>

#include <algorithm>
#include <vector>

namespace vantor {

namespace {

constexpr int quickCompression = 80; ///< as a PNG's quality: deflate's first level
constexpr qint64 secondsPerDay = 86'400;

/// A time of use that is exact to the day is enough, and spares the disk.
void noteUse(const QFileInfo &info) {
    const QDateTime now = QDateTime::currentDateTime();
    if (info.lastModified().secsTo(now) < secondsPerDay)
        return;
    QFile file(info.filePath());
    if (file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly))
        file.setFileTime(now, QFileDevice::FileModificationTime);
}

struct KeptFile {
    QString path;
    qint64 size = 0;
    qint64 used = 0;    ///< milliseconds since 1970
    bool isOld = false; ///< of another version
};

} // namespace

ThumbnailFiles::ThumbnailFiles(const QString &folder, int version, QSize size)
    : m_folder(folder), m_pictures(QStringLiteral("%1/v%2/").arg(folder).arg(version)), m_size(size) {}

QString ThumbnailFiles::path(const QString &hash) const {
    return m_pictures + hash.first(2) + QLatin1Char('/') + hash + QStringLiteral(".png");
}

std::optional<QImage> ThumbnailFiles::load(const QString &hash) const {
    const QFileInfo info(path(hash));
    QImageReader reader(info.filePath(), "PNG");
    // Asked first, so that a wrong file cannot have a large picture unpacked.
    if (reader.size() != m_size)
        return std::nullopt;
    const QImage picture = reader.read();
    if (picture.isNull())
        return std::nullopt;
    noteUse(info);
    return picture.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

void ThumbnailFiles::save(const QString &hash, const QImage &picture) const {
    const QString target = path(hash);
    const QString folder = QFileInfo(target).path();
    QDir().mkpath(folder);
    // Not QSaveFile, which waits for the disk: a picture that a power cut damages is made again.
    QTemporaryFile file(folder + QStringLiteral("/XXXXXX.part"));
    if (!file.open() || !picture.save(&file, "PNG", quickCompression) || !file.flush())
        return;
    // QFile::rename() would not replace a damaged picture.
    if (std::rename(QFile::encodeName(file.fileName()).constData(), QFile::encodeName(target).constData()) ==
        0)
        file.setAutoRemove(false);
}

void ThumbnailFiles::trim(qint64 limit, const std::atomic_bool &stop) const {
    std::vector<KeptFile> files;
    qint64 total = 0;
    QDirIterator entries(m_folder, {QStringLiteral("*.png"), QStringLiteral("*.part")}, QDir::Files,
                         QDirIterator::Subdirectories);
    while (entries.hasNext() && !stop) {
        entries.next();
        const QFileInfo info = entries.fileInfo();
        const bool isOld = !info.filePath().startsWith(m_pictures);
        files.push_back({info.filePath(), info.size(), info.lastModified().toMSecsSinceEpoch(), isOld});
        total += info.size();
    }
    std::ranges::sort(files, [](const KeptFile &a, const KeptFile &b) {
        return std::tuple(!a.isOld, a.used) < std::tuple(!b.isOld, b.used);
    });
    for (const KeptFile &file : files) {
        if (stop || (!file.isOld && total <= limit))
            return;
        if (QFile::remove(file.path))
            total -= file.size;
    }
}

} // namespace vantor
