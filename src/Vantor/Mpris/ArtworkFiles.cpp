#include "Vantor/Mpris/ArtworkFiles.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

namespace vantor {

namespace {

QString nameOf(const QImage &picture) {
    QCryptographicHash hash(QCryptographicHash::Sha1);
    const int size[] = {picture.width(), picture.height(), picture.format()};
    hash.addData(QByteArrayView(reinterpret_cast<const char *>(size), sizeof size));
    for (int line = 0; line < picture.height(); ++line)
        hash.addData(QByteArrayView(picture.constScanLine(line), picture.bytesPerLine()));
    const QLatin1String ending(picture.hasAlphaChannel() ? ".png" : ".jpg");
    return QString::fromLatin1(hash.result().toHex()) + ending;
}

void removeOldest(const QDir &folder) {
    const QFileInfoList files = folder.entryInfoList(QDir::Files, QDir::Time); // the newest first
    for (qsizetype old = ArtworkFiles::mostFiles; old < files.size(); ++old)
        QFile::remove(files[old].filePath());
}

QString writeTo(const QString &path, const QImage &picture) {
    const QDir folder(path);
    if (!folder.mkpath(QStringLiteral(".")))
        return {};
    const auto onlyMine = QFile::ReadOwner | QFile::WriteOwner;
    QFile::setPermissions(path, onlyMine | QFile::ExeOwner);
    const QString filePath = folder.filePath(nameOf(picture));
    if (QFile present(filePath); present.open(QIODevice::ReadWrite | QIODevice::ExistingOnly)) {
        present.setFileTime(QDateTime::currentDateTime(), QFile::FileModificationTime);
        return filePath;
    }
    QSaveFile file(filePath);
    constexpr int quality = 90;
    const char *const kind = picture.hasAlphaChannel() ? "PNG" : "JPG";
    if (!file.open(QIODevice::WriteOnly) || !file.setPermissions(onlyMine) ||
        !picture.save(&file, kind, picture.hasAlphaChannel() ? -1 : quality) || !file.commit())
        return {};
    removeOldest(folder);
    return filePath;
}

} // namespace

ArtworkFiles::ArtworkFiles(QString folder) : m_folder(std::move(folder)) {
    m_pool.setMaxThreadCount(1);
}

ArtworkFiles::~ArtworkFiles() = default;

void ArtworkFiles::write(const QImage &picture, std::function<void(const QString &)> written) {
    m_pool.start([this, folder = m_folder, picture, written = std::move(written)] {
        const QString path = writeTo(folder, picture);
        QMetaObject::invokeMethod(this, [written, path] { written(path); }, Qt::QueuedConnection);
    });
}

} // namespace vantor
