#include "Archive.h"

#include <QFile>

#include <zip.h>

namespace vantor::art {

namespace {

constexpr zip_uint16_t entryTime = 12U << 11U;                            ///< 12:00:00, as ZIP writes it
constexpr zip_uint16_t entryDate = (2026U - 1980U) << 9U | 1U << 5U | 1U; ///< 2026-01-01

bool add(zip_t *archive, const SkinFile &file) {
    zip_source_t *source =
        zip_source_buffer(archive, file.bytes.constData(), static_cast<zip_uint64_t>(file.bytes.size()), 0);
    if (source == nullptr)
        return false;
    const zip_int64_t index = zip_file_add(archive, file.name.constData(), source, ZIP_FL_ENC_UTF_8);
    if (index < 0) {
        zip_source_free(source);
        return false;
    }
    const auto entry = static_cast<zip_uint64_t>(index);
    // A time in DOS form, because the other call converts with the local time zone.
    return zip_set_file_compression(archive, entry, ZIP_CM_DEFLATE, 9) == 0 &&
           zip_file_set_dostime(archive, entry, entryTime, entryDate, 0) == 0;
}

} // namespace

QString writeArchive(const QString &path, const std::vector<SkinFile> &files) {
    int code = 0;
    zip_t *archive = zip_open(QFile::encodeName(path).constData(), ZIP_CREATE | ZIP_TRUNCATE, &code);
    if (archive == nullptr)
        return QStringLiteral("cannot create %1 (error %2)").arg(path).arg(code);
    for (const SkinFile &file : files)
        if (!add(archive, file)) {
            const QString reason = QString::fromUtf8(zip_strerror(archive));
            zip_discard(archive);
            return QStringLiteral("cannot add %1: %2").arg(QString::fromLatin1(file.name), reason);
        }
    if (zip_close(archive) != 0) {
        const QString reason = QString::fromUtf8(zip_strerror(archive));
        zip_discard(archive);
        return QStringLiteral("cannot write %1: %2").arg(path, reason);
    }
    return {};
}

} // namespace vantor::art
