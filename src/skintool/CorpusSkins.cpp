#include "skintool/CorpusSkins.h"

#include "Platform/NativePath.h"
#include "SkinLibrary/Ingest/FolderScanner.h"
#include "SkinLibrary/Ingest/SkinContentHash.h"
#include "SkinLibrary/SkinLibraryError.h"
#include "skintool/CorpusOptions.h"
#include "skintool/CorpusSample.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

namespace vantor::CorpusSkins {

namespace {

constexpr qint64 maxManifestLine = 65'536;

QUrl urlOf(const QString &folder) {
    return QUrl::fromLocalFile(QDir(folder).absolutePath());
}

CorpusError unreadable(const QString &file, const QString &reason) {
    return CorpusError(QStringLiteral("Could not read %1: %2").arg(file, reason));
}

QByteArray bytesOf(const CorpusSkin &skin) {
    return NativePath::bytes(skin.path);
}

std::vector<CorpusSkin> listed(const CorpusOptions &options, const QString &root) {
    const QString out = QFileInfo(options.out).canonicalFilePath();
    const QString below = out + QLatin1Char('/');
    std::vector<CorpusSkin> skins;
    for (const FileStamp &stamp : FolderScanner::list(urlOf(options.folder), {QStringLiteral("wsz")})) {
        if (out.isEmpty() || !stamp.path.startsWith(below))
            skins.push_back({stamp.path.mid(root.size()), stamp.size});
    }
    std::ranges::sort(skins, {}, bytesOf);
    return skins;
}

void checkPresence(const std::vector<CorpusSkin> &wanted, const std::vector<CorpusSkin> &present,
                   const QString &root) {
    QHash<QString, std::int64_t> sizes;
    for (const CorpusSkin &skin : present)
        sizes.insert(skin.path, skin.size);
    std::vector<CorpusSkin> amiss;
    std::ranges::copy_if(wanted, std::back_inserter(amiss),
                         [&](const CorpusSkin &skin) { return sizes.value(skin.path, -1) != skin.size; });
    if (amiss.empty())
        return;
    throw CorpusError(QStringLiteral("%1 of the manifest's %2 skins are missing from %3 or differ in size; "
                                     "the first is %4")
                          .arg(amiss.size())
                          .arg(wanted.size())
                          .arg(root, amiss.front().path));
}

} // namespace

QString root(const QString &folder) {
    try {
        const QString path = FolderScanner::realPath(urlOf(folder));
        return path.endsWith(QLatin1Char('/')) ? path : path + QLatin1Char('/');
    } catch (const SkinLibraryError &error) {
        throw CorpusError(error.description());
    }
}

std::vector<CorpusSkin> select(const CorpusOptions &options, const QString &root) {
    try {
        std::vector<CorpusSkin> skins = listed(options, root);
        if (options.manifest && QFileInfo::exists(*options.manifest)) {
            std::vector<CorpusSkin> wanted = readManifest(*options.manifest);
            checkPresence(wanted, skins, root);
            skins = std::move(wanted);
        }
        return options.sample ? CorpusSample::drawn(skins, *options.sample, options.seed, &CorpusSkin::path)
                              : skins;
    } catch (const SkinLibraryError &error) {
        throw CorpusError(error.description());
    }
}

std::vector<CorpusSkin> readManifest(const QString &name) {
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly))
        throw unreadable(name, file.errorString());
    std::vector<CorpusSkin> skins;
    QSet<QString> seen;
    for (int number = 1; !file.atEnd(); ++number) {
        const QJsonObject line = QJsonDocument::fromJson(file.readLine(maxManifestLine)).object();
        const CorpusSkin skin{line.value(QStringLiteral("path")).toString(),
                              line.value(QStringLiteral("size")).toInteger(-1),
                              line.value(QStringLiteral("hash")).toString()};
        const bool isHash = skin.hash.isEmpty() || SkinContentHash::isValid(skin.hash);
        if (skin.path.isEmpty() || skin.size < 0 || !isHash || seen.contains(skin.path))
            throw unreadable(name, QStringLiteral("line %1 does not name a skin").arg(number));
        seen.insert(skin.path);
        skins.push_back(skin);
    }
    if (file.error() != QFileDevice::NoError)
        throw unreadable(name, file.errorString());
    std::ranges::sort(skins, {}, bytesOf);
    return skins;
}

void writeManifest(const QString &name, std::vector<CorpusSkin> skins) {
    std::ranges::sort(skins, {}, bytesOf);
    QSaveFile file(name);
    bool isWritten = file.open(QIODevice::WriteOnly);
    for (const CorpusSkin &skin : skins) {
        const QJsonObject line{
            {QStringLiteral("path"), skin.path},
            {QStringLiteral("size"), static_cast<qint64>(skin.size)},
            {QStringLiteral("hash"), skin.hash.isEmpty() ? QJsonValue() : QJsonValue(skin.hash)}};
        isWritten = isWritten && file.write(QJsonDocument(line).toJson(QJsonDocument::Compact) + '\n') > 0;
    }
    if (!isWritten || !file.commit())
        throw CorpusError(QStringLiteral("Could not write %1: %2").arg(name, file.errorString()));
}

} // namespace vantor::CorpusSkins
