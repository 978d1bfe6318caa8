#include "SkinLibrary/Ingest/SkinIngester.h"

#include "SkinKit/Loading/SkinError.h"
#include "SkinKit/Loading/SkinParser.h"
#include "SkinKit/Loading/SkinPreviewPage.h"
#include "SkinLibrary/Ingest/SkinFile_p.h"

#include <array>
#include <system_error>

namespace vantor {

namespace {

constexpr std::size_t chunkBytes = 65'536;
/// Archives up to this size are read in one go, which is quicker; skins are far smaller.
constexpr std::int64_t maxBytesInMemory = 4'194'304;

} // namespace

SkinDigests SkinIngester::digests(const QString &path) const {
    SkinFile file(path);
    SkinContentHash::Digester digester;
    std::array<char, chunkBytes> chunk;
    while (const std::size_t count = file.read(chunk))
        digester.add({chunk.data(), static_cast<qsizetype>(count)});
    return digester.finish();
}

SkinInspection SkinIngester::inspect(const QString &path) const {
    SkinInspection inspection;
    try {
        const SkinArchive files = archive(path);
        inspection.readme = SkinPreviewPage::readme(files);
        inspection.warnings = SkinParser::warnings(files);
        inspection.status = inspection.warnings.isEmpty() ? SkinStatus::ok : SkinStatus::partial;
    } catch (const SkinError &error) {
        inspection.status = SkinStatus::failed;
        inspection.warnings = QStringList{error.description()};
    }
    return inspection;
}

SkinArchive SkinIngester::archive(const QString &path) {
    try {
        SkinFile file(path);
        if (file.size() <= maxBytesInMemory)
            return SkinArchive::fromZip(file.readAll());
        return SkinArchive(QUrl::fromLocalFile(file.alias()));
    } catch (const std::system_error &error) {
        throw SkinError::unreadableArchive(QString::fromLocal8Bit(error.code().message().c_str()));
    }
}

} // namespace vantor
