#include "SkinKit/Decoding/ByteReader.h"
#include "SkinKit/Loading/SkinError.h"
#include "SkinKit/Loading/SkinFileGatherer_p.h"
#include "SkinKit/Loading/ZipEntryReader_p.h"
#include "SkinKit/Loading/ZipFile_p.h"

#include <QFile>

#include <sys/stat.h>
#include <zip.h>

#include <algorithm>

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

constexpr QByteArrayView endSignature = "PK\5\6";

/// What an end-of-directory record says about the directory in front of it.
struct Directory {
    std::uint64_t entries = 0;
    std::uint64_t bytes = 0;
};

std::uint64_t u64(ByteReader &reader) {
    const std::uint64_t low = reader.u32().value_or(0);
    return low | std::uint64_t{reader.u32().value_or(0)} << 32;
}

QByteArray readAt(zip_source_t *source, std::uint64_t position, qsizetype size) {
    QByteArray bytes(size, Qt::Uninitialized);
    if (position > INT64_MAX || zip_source_seek(source, static_cast<zip_int64_t>(position), SEEK_SET) != 0)
        return {};
    const zip_int64_t count = zip_source_read(source, bytes.data(), static_cast<zip_uint64_t>(size));
    bytes.truncate(std::max<zip_int64_t>(count, 0));
    return bytes;
}

/// `end`: where the record is in the file's tail. The 64-bit record, if there is one, holds instead of it.
Directory directoryAt(zip_source_t *source, QByteArrayView tail, qsizetype end) {
    constexpr qsizetype locatorBytes = 20;
    constexpr qsizetype wideBytes = 56;
    if (end >= locatorBytes && tail.sliced(end - locatorBytes).startsWith("PK\6\7")) {
        ByteReader locator(tail, end - locatorBytes + 8);
        const QByteArray wide = readAt(source, u64(locator), wideBytes);
        if (wide.size() == wideBytes && wide.startsWith("PK\6\6")) {
            ByteReader reader(wide, 32);
            const std::uint64_t entries = u64(reader);
            return {entries, u64(reader)};
        }
    }
    ByteReader reader(tail, end + 10);
    const std::uint64_t entries = reader.u16().value_or(0);
    return {entries, reader.u32().value_or(0)};
}

/// libzip takes time in the square of the entries when their names are made to share one hash, and reads the
/// directory of every end record it comes across: together they must stay small.
void checkDirectories(zip_source_t *source, std::uint64_t fileBytes) {
    constexpr std::uint64_t maxEntries = 20'000;
    constexpr std::uint64_t maxDirectoryBytes = 1'048'576;
    constexpr std::uint64_t maxTailBytes = 65'535 + 22 + 20; // comment, end record, locator
    if (zip_source_open(source) != 0)
        return; // opening the archive fails too, and says why
    const std::uint64_t tailBytes = std::min(fileBytes, maxTailBytes);
    const QByteArray tail = readAt(source, fileBytes - tailBytes, static_cast<qsizetype>(tailBytes));
    Directory room{maxEntries, maxDirectoryBytes};
    bool fits = true;
    for (qsizetype end = tail.indexOf(endSignature); fits && end >= 0;
         end = tail.indexOf(endSignature, end + 1)) {
        const Directory directory = directoryAt(source, tail, end);
        if (directory.bytes > fileBytes) // a signature by chance; libzip does not believe it either
            continue;
        fits = directory.entries <= room.entries && directory.bytes <= room.bytes;
        room.entries -= directory.entries;
        room.bytes -= directory.bytes;
    }
    zip_source_close(source);
    if (!fits)
        throw SkinError::unreadableArchive(QStringLiteral("Too many entries"));
}

struct FreeSource {
    void operator()(zip_source_t *source) const { zip_source_free(source); }
};

zip_t *openSource(zip_source_t *created, ErrorText &error, std::int64_t &fileBytes) {
    std::unique_ptr<zip_source_t, FreeSource> source(created);
    if (!source)
        throw error.asSkinError();
    zip_stat_t stat;
    if (zip_source_stat(created, &stat) == 0 && (stat.valid & ZIP_STAT_SIZE)) {
        if (stat.size == 0) {
            zip_error_set(&error.error, ZIP_ER_NOZIP, 0); // libzip takes nothing at all for an empty archive
            throw error.asSkinError();
        }
        fileBytes = static_cast<std::int64_t>(stat.size);
        checkDirectories(created, stat.size);
    }
    zip_t *archive = zip_open_from_source(created, ZIP_RDONLY, &error.error);
    if (!archive)
        throw error.asSkinError(); // the source is still ours
    (void)source.release();
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
    ZipFile file;
    file.m_archive.reset(
        openSource(zip_source_file_create(QFile::encodeName(path).constData(), 0, -1, &error.error), error,
                   file.m_bytes));
    return file;
}

ZipFile ZipFile::view(const QByteArray &data) {
    ErrorText error;
    ZipFile file;
    const auto size = static_cast<zip_uint64_t>(data.size());
    file.m_archive.reset(
        openSource(zip_source_buffer_create(data.constData(), size, 0, &error.error), error, file.m_bytes));
    return file;
}

void ZipFile::gather(SkinFileGatherer &gatherer) const {
    ZipEntryReader reader;
    const zip_int64_t count = zip_get_num_entries(m_archive.get(), 0);
    // Entries may share their bytes, and those may inflate to nothing, so that no limit on the output ever
    // ends the walk. Sound entries never overlap.
    for (zip_int64_t index = 0; index < count && !gatherer.isFull() && reader.packedBytes() <= m_bytes;
         ++index)
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
