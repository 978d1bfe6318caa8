#include "SkinKit/Loading/SkinArchive.h"

#include "SkinKit/Loading/SkinError.h"
#include "SkinKit/Loading/SkinFileGatherer_p.h"
#include "SkinKit/Loading/SkinFolder_p.h"
#include "SkinKit/Loading/ZipFile_p.h"

#include <QFileInfo>

#include <new>

namespace vantor {

const SkinArchive::Limits SkinArchive::Limits::default_{};

QSet<QString> SkinArchive::Limits::defaultExtensions() {
    return {QStringLiteral("bmp"), QStringLiteral("png"), QStringLiteral("txt"), QStringLiteral("cur"),
            QStringLiteral("ani"), QStringLiteral("ini"), QStringLiteral("xml")};
}

SkinArchive::SkinArchive(const QUrl &url, const Limits &limits) try {
    if (!url.isLocalFile())
        throw SkinError::unreadableArchive(QStringLiteral("Not a local file"));
    const QString path = url.toLocalFile();
    const QFileInfo info(path);
    SkinFileGatherer gatherer(limits, m_files);
    if (info.isDir())
        gatherFolder(path, gatherer);
    else if (info.exists() && !info.isFile()) // opening a pipe would wait for ever
        throw SkinError::unreadableArchive(QStringLiteral("Not a regular file"));
    else
        ZipFile::open(path).gather(gatherer);
} catch (const std::bad_alloc &) {
    throw SkinError::notEnoughMemory();
}

SkinArchive SkinArchive::fromZip(const QByteArray &data, const Limits &limits) try {
    SkinArchive archive;
    SkinFileGatherer gatherer(limits, archive.m_files);
    ZipFile::view(data).gather(gatherer);
    return archive;
} catch (const std::bad_alloc &) {
    throw SkinError::notEnoughMemory();
}

SkinArchive::SkinArchive(const QMap<QString, QByteArray> &files) {
    for (auto it = files.cbegin(); it != files.cend(); ++it) {
        const QString key = skinFileKey(it.key());
        if (!key.isEmpty() && !m_files.contains(key))
            m_files.insert(key, it.value());
    }
}

std::optional<QByteArray> SkinArchive::file(const QString &name, const QStringList &extensions) const {
    for (const QString &extension : extensions) {
        const auto found = m_files.constFind(name.toLower() + QLatin1Char('.') + extension.toLower());
        if (found != m_files.cend())
            return *found;
    }
    return std::nullopt;
}

} // namespace vantor
