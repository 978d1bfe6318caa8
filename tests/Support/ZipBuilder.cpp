#include "tests/Support/ZipBuilder.h"

#include <QtEndian>

#include <zip.h>

#include <stdexcept>

namespace vantor::test {

namespace {

// Unique names of the right length; the real ones, which may repeat, are patched in afterwards.
QByteArray placeholder(std::size_t index, qsizetype length) {
    QByteArray name(length, '#');
    name[0] = static_cast<char>('A' + index / 26);
    name[1] = static_cast<char>('A' + index % 26);
    return name;
}

QByteArray soundFile(const std::vector<ZipEntry> &entries) {
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t *file = zip_source_buffer_create(nullptr, 0, 0, &error);
    zip_t *archive = zip_open_from_source(file, ZIP_TRUNCATE, &error);
    zip_source_keep(file);
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const ZipEntry &entry = entries[i];
        zip_source_t *data = zip_source_buffer(archive, entry.data.constData(),
                                               static_cast<zip_uint64_t>(entry.data.size()), 0);
        const QByteArray name = placeholder(i, entry.name.size());
        const zip_int64_t index = zip_file_add(archive, name.constData(), data, 0);
        if (index < 0)
            throw std::runtime_error(zip_strerror(archive));
        zip_set_file_compression(archive, static_cast<zip_uint64_t>(index),
                                 entry.stored ? ZIP_CM_STORE : ZIP_CM_DEFLATE, 0);
        // The same entries make the same bytes whenever they are packed.
        zip_file_set_mtime(archive, static_cast<zip_uint64_t>(index), 1'000'000'000, 0);
        if (entry.unixMode) {
            zip_file_set_external_attributes(archive, static_cast<zip_uint64_t>(index), 0, ZIP_OPSYS_UNIX,
                                             *entry.unixMode << 16);
        }
    }
    if (zip_close(archive) != 0)
        throw std::runtime_error(zip_strerror(archive));
    zip_stat_t stat;
    zip_source_stat(file, &stat);
    QByteArray bytes(static_cast<qsizetype>(stat.size), Qt::Uninitialized);
    zip_source_open(file);
    zip_source_read(file, bytes.data(), stat.size);
    zip_source_close(file);
    zip_source_free(file);
    return bytes;
}

template <class T>
T number(const char *at) {
    return qFromLittleEndian<T>(at);
}

/// `fields`: the general-purpose flags of a central or a local header, after which both agree.
void patchHeader(char *fields, const ZipEntry &entry) {
    if (entry.encryptedFlag)
        fields[0] = static_cast<char>(fields[0] | 1);
    if (entry.method)
        qToLittleEndian(*entry.method, fields + 2);
    if (entry.crc)
        qToLittleEndian(*entry.crc, fields + 8);
    if (entry.compressedSize)
        qToLittleEndian(*entry.compressedSize, fields + 12);
    if (entry.declaredSize)
        qToLittleEndian(*entry.declaredSize, fields + 16);
}

} // namespace

QByteArray zipFile(const std::vector<ZipEntry> &entries) {
    QByteArray bytes = soundFile(entries);
    if (entries.empty())
        return bytes;
    char *base = bytes.data();
    char *central = base + number<quint32>(base + bytes.size() - 22 + 16);
    for (const ZipEntry &entry : entries) {
        char *local = base + number<quint32>(central + 42);
        char *data = local + 30 + number<quint16>(local + 26) + number<quint16>(local + 28);
        const std::size_t advance = std::size_t{46} + number<quint16>(central + 28) +
                                    number<quint16>(central + 30) + number<quint16>(central + 32);
        std::ranges::copy(entry.name, central + 46);
        std::ranges::copy(entry.name, local + 30);
        patchHeader(central + 8, entry);
        patchHeader(local + 6, entry);
        if (entry.damaged)
            data[0] = '\x07';
        central += advance;
    }
    return bytes;
}

} // namespace vantor::test
