#include "SkinKit/Loading/SkinError.h"
#include "SkinKit/Loading/SkinFileGatherer_p.h"
#include "SkinKit/Loading/ZipEntryReader_p.h"
#include "SkinKit/Loading/ZipFile_p.h"

#include <QFile>

#include <sys/stat.h>
#include <zip.h>

namespace vantor {

namespace {

struct ErrorText {
    zip_error_t error;

    ErrorText() { zip_error_init(&error); }
    ~ErrorText() { zip_error_fini(&error); }
    ErrorText(const ErrorText &) = delete;
    ErrorText &operator=(const ErrorText &) = delete;

    SkinError asSkinError() {
        return SkinError::unreadableArchive(QString::fromLocal8Bit(zip_error_strerror(&error)));
    }
};

zip_t *openSource(zip_source_t *source, ErrorText &error) {
    if (!source)
        throw error.asSkinError();
    zip_stat_t stat;
    if (zip_source_stat(source, &stat) == 0 && (stat.valid & ZIP_STAT_SIZE) && stat.size == 0) {
        zip_source_free(source);
        zip_error_set(&error.error, ZIP_ER_NOZIP, 0); // libzip takes nothing at all for an empty archive
        throw error.asSkinError();
    }
    zip_t *archive = zip_open_from_source(source, ZIP_RDONLY, &error.error);
    if (!archive) {
        zip_source_free(source); // still ours when opening fails
        throw error.asSkinError();
    }
    return archive;
}

bool isRegularFile(zip_t *archive, zip_uint64_t index, const QString &path) {
    if (path.endsWith(QLatin1Char('/')))
        return false;
    zip_uint8_t system = 0;
    zip_uint32_t attributes = 0;
    if (zip_file_get_external_attributes(archive, index, 0, &system, &attributes) != 0)
        return true;
    if (system == ZIP_OPSYS_UNIX || system == ZIP_OPSYS_OS_X) {
        const zip_uint32_t type = (attributes >> 16) & S_IFMT;
        return type == 0 || type == S_IFREG; // packers that know no modes leave them zero
    }
    constexpr zip_uint32_t dosDirectory = 0x10;
    return (attributes & dosDirectory) == 0;
}

} // namespace

void ZipFile::Discard::operator()(zip *archive) const {
    zip_discard(archive);
}

ZipFile ZipFile::open(const QString &path) {
    ErrorText error;
    return ZipFile(
        openSource(zip_source_file_create(QFile::encodeName(path).constData(), 0, -1, &error.error), error));
}

ZipFile ZipFile::view(const QByteArray &data) {
    ErrorText error;
    return ZipFile(openSource(
        zip_source_buffer_create(data.constData(), static_cast<zip_uint64_t>(data.size()), 0, &error.error),
        error));
}

void ZipFile::gather(SkinFileGatherer &gatherer) const {
    ZipEntryReader reader;
    const zip_int64_t count = zip_get_num_entries(m_archive.get(), 0);
    for (zip_int64_t index = 0; index < count && !gatherer.isFull(); ++index)
        gatherEntry(static_cast<zip_uint64_t>(index), reader, gatherer);
}

void ZipFile::gatherEntry(std::uint64_t index, ZipEntryReader &reader, SkinFileGatherer &gatherer) const {
    zip_stat_t stat;
    if (zip_stat_index(m_archive.get(), index, 0, &stat) != 0 || !(stat.valid & ZIP_STAT_NAME))
        return;
    const QString path = QString::fromUtf8(stat.name);
    if (!isRegularFile(m_archive.get(), index, path))
        return;
    // The two methods that packers of skins use.
    const bool deflated = stat.comp_method == ZIP_CM_DEFLATE;
    if (!deflated && stat.comp_method != ZIP_CM_STORE)
        return;
    const auto declared = static_cast<std::int64_t>(std::min<zip_uint64_t>(stat.size, INT64_MAX));
    const QString key = gatherer.wantedKey(path, declared);
    if (key.isEmpty() || !reader.open(m_archive.get(), index, deflated))
        return;
    gatherer.take(key, declared, [&](char *buffer, std::int64_t size) { return reader.read(buffer, size); });
}

} // namespace vantor
